// SPDX-License-Identifier: GPL-3.0-or-later
// The contract's world on the Windows that the test runs on: a key and a folder of the test's own.
#include "platform/contract_world.h"
#include "platform/windows/windows_platform.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

class WindowsWorld : public ContractWorld {
 public:
  explicit WindowsWorld(Dialogs& dialogs) : platform_(temp_ / "state", dialogs) {
    const std::string own = "Contract" + platform_.GetGuids().Create();
    key = {RegistryRoot::CurrentUser, "Software\\" + own};
    folder = WinPath(platform_.GetSystemFacts().ExpandEnvironment("%SystemDrive%\\") + own);
    variable = "SystemRoot";
    platform_.GetFiles().MakeDirectory(folder);
  }
  ~WindowsWorld() override {
    platform_.GetRegistry().DeleteTree(key);
    std::filesystem::remove_all(NativePath(platform_.GetDrives().HostPathOf(folder)));
  }
  Platform& GetPlatform() override { return platform_; }

 private:
  TempFolder temp_;
  WindowsPlatform platform_;
};

}  // namespace

std::unique_ptr<ContractWorld> MakeContractWorld(Dialogs& dialogs) {
  return std::make_unique<WindowsWorld>(dialogs);
}

}  // namespace quillbox
