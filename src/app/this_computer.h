// SPDX-License-Identifier: GPL-3.0-or-later
// The Windows that the program runs on, where it runs on one.
#pragma once

#include <functional>
#include <memory>

#include "host/host_path.h"
#include "platform/host_paths.h"
#include "platform/platform.h"

namespace quillbox {

/// That Windows while it is worked on.
class ThisComputer {
 public:
  virtual ~ThisComputer() = default;
  virtual Platform& GetPlatform() = 0;
  virtual const HostPaths& GetHostPaths() = 0;
  /// Offers what the user should know first, now that the windows are there.
  virtual void Greet() = 0;
  /// Called when the program was started once more with the rights that this one lacks: this one is to end.
  std::function<void()> onStartedAgain = [] {};
};

/// True when the program runs on Windows.
bool IsWindowsHere();
/// True when it does, and the user has identities there.
bool HasIdentitiesHere();
/// Null when the program does not run on Windows. `dialogs` and `clipboard` must outlive what is returned.
std::unique_ptr<ThisComputer> OpenThisComputer(const HostPath& stateFolder, Dialogs& dialogs, Clipboard& clipboard);

}  // namespace quillbox
