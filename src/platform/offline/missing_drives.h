// SPDX-License-Identifier: GPL-3.0-or-later
// Asks for drives that the disk's registry names and nobody has attached: a message store on D: of a disk that was
// opened without its second volume.
#pragma once

#include <functional>
#include <optional>
#include <set>

#include "platform/dialogs.h"
#include "platform/host_paths.h"
#include "text/win_path.h"

namespace quillbox {

class MissingDrives {
 public:
  /// Both must outlive this object; `paths` translates what the folder dialog answers.
  MissingDrives(Dialogs& dialogs, const HostPaths& paths) : dialogs_(dialogs), paths_(paths) {}

  /// The folder of this computer that is the drive of `path`; nothing when the user has none, which is asked once until
  /// EndCommand().
  std::optional<HostPath> FolderFor(const WinPath& path);
  void EndCommand() { declined_.clear(); }

  /// Called with each drive that the user has named.
  std::function<void(char letter, const HostPath& folder)> onNamed = [](char, const auto&) {};

 private:
  std::optional<HostPath> Ask(const WinPath& path);

  Dialogs& dialogs_;
  const HostPaths& paths_;
  std::set<char> declined_;
};

}  // namespace quillbox
