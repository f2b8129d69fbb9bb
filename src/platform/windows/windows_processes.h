// SPDX-License-Identifier: GPL-3.0-or-later
// Starts programs of the Windows that the program runs on: its own registry editor.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/hosted/hosted_drives.h"
#include "platform/platform.h"
#include "platform/windows/elevation.h"

namespace quillbox {

/// A program's end; where it could not be started, the system's error.
struct SystemProcessEnd {
  std::uint32_t error = 0;
  int exitCode = 0;
};
/// Runs a command line in a folder to its end.
using RunSystemProcess =
    std::function<SystemProcessEnd(const std::string& commandLine, const HostPath& directory, ShowStyle style)>;
/// By the system. "regedit" is the one in Windows' folder, whatever lies beside this program.
SystemProcessEnd RunInSystem(const std::string& commandLine, const HostPath& directory, ShowStyle style);

class WindowsProcesses : public Processes {
 public:
  /// All must outlive this object.
  WindowsProcesses(HostedDrives& drives, Elevation& elevation, Log& log, RunSystemProcess run = RunInSystem)
      : drives_(drives), elevation_(elevation), log_(log), run_(std::move(run)) {}

  /// Where Windows starts the editor for administrators only, offers to start this program again as one.
  ProcessEnd RunAndWait(const std::string& commandLine, ShowStyle style) override;

 private:
  HostedDrives& drives_;
  Elevation& elevation_;
  Log& log_;
  RunSystemProcess run_;
};

}  // namespace quillbox
