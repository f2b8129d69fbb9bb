// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/this_computer.h"

#include "platform/windows/windows_platform.h"

namespace quillbox {
namespace {

const RegistryPath kIdentities = {RegistryRoot::CurrentUser, "Identities"};

class RunningWindows : public ThisComputer {
 public:
  RunningWindows(const HostPath& stateFolder, Dialogs& dialogs, Clipboard& clipboard)
      : platform_(stateFolder, dialogs, &clipboard) {
    platform_.GetElevation().onStartedAgain = [this] { onStartedAgain(); };
  }
  Platform& GetPlatform() override { return platform_; }
  const HostPaths& GetHostPaths() override { return platform_.GetDrives(); }
  void Greet() override { platform_.GetElevation().OfferAtStart(); }

 private:
  WindowsPlatform platform_;
};

}  // namespace

bool IsWindowsHere() {
  return true;
}

bool HasIdentitiesHere() {
  const WindowsDrives drives;
  WindowsRegistry registry(drives);
  return registry.Info(registry.Open(kIdentities, Access::Read).key).subkeys > 0;
}

std::unique_ptr<ThisComputer> OpenThisComputer(const HostPath& stateFolder, Dialogs& dialogs, Clipboard& clipboard) {
  return std::make_unique<RunningWindows>(stateFolder, dialogs, clipboard);
}

}  // namespace quillbox
