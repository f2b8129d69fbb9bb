// SPDX-License-Identifier: GPL-3.0-or-later
// The contract's world on a sample disk.
#include "platform/contract_world.h"
#include "platform/offline/offline_platform.h"
#include "sample/sample_disk.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

class OfflineWorld : public ContractWorld {
 public:
  explicit OfflineWorld(Dialogs& dialogs) : sample_(MakeSampleDisk(temp_ / "disk", {.smallStores = true})) {
    OfflineOptions options;
    options.folder = sample_.driveC;
    options.profile = sample_.profile;
    options.stateFolder = temp_ / "state";
    platform_ = std::make_unique<OfflinePlatform>(options, dialogs);
    key = {RegistryRoot::CurrentUser, "Contract"};
    folder = WinPath("C:\\Contract");
    variable = "USERPROFILE";
    platform_->GetFiles().MakeDirectory(folder);
  }
  Platform& GetPlatform() override { return *platform_; }

 private:
  TempFolder temp_;
  SampleDisk sample_;
  std::unique_ptr<OfflinePlatform> platform_;
};

}  // namespace

std::unique_ptr<ContractWorld> MakeContractWorld(Dialogs& dialogs) {
  return std::make_unique<OfflineWorld>(dialogs);
}

}  // namespace quillbox
