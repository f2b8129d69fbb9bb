// SPDX-License-Identifier: GPL-3.0-or-later
// Starts the one Windows program that this platform has: the registry editor, as our own host program that works on
// the same disk.
#pragma once

#include <string>
#include <vector>

#include "host/host_handle.h"
#include "host/host_path.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/offline_registry.h"
#include "platform/platform.h"

namespace quillbox {

/// How the registry editor is started for a disk.
struct RegistryEditor {
  HostPath program;
  std::vector<std::string> diskArguments;  ///< which disk, profile and drives
  std::vector<HandleNumber> locks;         ///< the disk's lock, which the editor shares
};

class OfflineProcesses : public Processes {
 public:
  /// All must outlive this object.
  OfflineProcesses(OfflineRegistry& registry, OfflineDrives& drives, Log& log, RegistryEditor editor);

  /// Only "regedit" is known; any other command is logged and not started. Throws Error when the registry changes so
  /// far could not be written (nothing is started then), and when what was changed could not be read back.
  ProcessEnd RunAndWait(const std::string& commandLine, ShowStyle style) override;

  /// Gives the editor one more option from now on.
  void PassOn(const std::string& option) { editor_.diskArguments.push_back(option); }

 private:
  ProcessEnd RunEditor(const std::string& commandLine);

  OfflineRegistry& registry_;
  OfflineDrives& drives_;
  Log& log_;
  RegistryEditor editor_;
};

/// The registry editor of the program in `programFolder`. Installed, it is in a private folder, which is found from the
/// program's so that the whole installation can be moved; else it is beside the program. The private folder comes
/// first: beside an installed program "regedit" may be another one's. On Windows the private folder is `offline` beside
/// the program, always, since a program that starts "regedit" there must get the system's own.
HostPath RegistryEditorOf(const HostPath& programFolder);

}  // namespace quillbox
