// SPDX-License-Identifier: GPL-3.0-or-later
// The drives of the Windows that the program runs on. A Windows path is a path of this computer as it stands, shares of
// other computers included.
#pragma once

#include <optional>

#include "platform/hosted/hosted_drives.h"

namespace quillbox {

class WindowsDrives : public HostedDrives {
 public:
  /// The current drive is the one that has Windows.
  WindowsDrives();

  DriveType TypeOfDrive(const WinPath& root) override;
  bool IsOwnDrive(char letter) override;
  bool ReachesShares() override { return true; }
  WinPath WindowsPathOf(const HostPath& path) const override { return WinPath(path.Text()); }

 private:
  std::optional<HostPath> FolderOf(char letter) const override;
  PlaceResult PlaceOfAbsolute(const WinPath& path, LastStep last) const override;
};

}  // namespace quillbox
