// SPDX-License-Identifier: GPL-3.0-or-later
// The platform over the Windows that the program runs on, for the user who runs it.
#pragma once

#include <string>

#include "host/host_path.h"
#include "platform/hosted/hosted_files.h"
#include "platform/hosted/hosted_services.h"
#include "platform/hosted/log.h"
#include "platform/platform.h"
#include "platform/windows/elevation.h"
#include "platform/windows/windows_drives.h"
#include "platform/windows/windows_processes.h"
#include "platform/windows/windows_registry.h"
#include "platform/windows/windows_services.h"
#include "platform/windows/windows_shell.h"

namespace quillbox {

class WindowsPlatform : public Platform {
 public:
  /// Logs in `stateFolder`. The other two must outlive the platform.
  WindowsPlatform(const HostPath& stateFolder, Dialogs& dialogs, Clipboard* clipboard = nullptr);
  WindowsPlatform(const WindowsPlatform&) = delete;
  WindowsPlatform& operator=(const WindowsPlatform&) = delete;

  Registry& GetRegistry() override { return registry_; }
  HostedFiles& GetFiles() override { return files_; }
  WindowsDrives& GetDrives() override { return drives_; }
  SystemFacts& GetSystemFacts() override { return facts_; }
  Shell& GetShell() override { return shell_; }
  Processes& GetProcesses() override { return processes_; }
  Dialogs& GetDialogs() override { return dialogs_; }
  Clock& GetClock() override { return clock_; }
  Guids& GetGuids() override { return guids_; }
  Clipboard& GetClipboard() override { return clipboard_ != nullptr ? *clipboard_ : noClipboard_; }
  Log& GetLog() override { return log_; }
  ChosenFolders& GetChosenFolders() override { return chosenFolders_; }
  /// Each registry change was made when it was asked for.
  void EndCommand() override;
  std::string SystemDescription() override;

  Elevation& GetElevation() { return elevation_; }

 private:
  FileLog log_;
  SystemClock clock_;
  WindowsGuids guids_;
  NoClipboard noClipboard_;
  Dialogs& dialogs_;
  Clipboard* clipboard_;
  WindowsDrives drives_;
  HostedFiles files_;
  WindowsRegistry registry_;
  WindowsFacts facts_;
  OwnFolders chosenFolders_;
  Elevation elevation_;
  WindowsShell shell_;
  WindowsProcesses processes_;
};

}  // namespace quillbox
