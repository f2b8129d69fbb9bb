// SPDX-License-Identifier: GPL-3.0-or-later
// The drives of a Windows disk that isn't running: folders of the host under Windows' letters.
#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "platform/hosted/hosted_drives.h"
#include "platform/offline/drive_map.h"

namespace quillbox {

class OfflineDrives : public HostedDrives {
 public:
  /// The current drive is C:.
  explicit OfflineDrives(DriveMap map) : HostedDrives(DriveMap::kSystemDrive), map_(std::move(map)) {}

  /// From now on nothing is written on the disk's own drives: what the user asks for is refused with that reason.
  void LeaveDiskAlone() { map_.LeaveDiskAlone(); }
  /// Asks for the folder of a drive that is not there, for OfferToAttach(); nothing when there is none.
  std::function<std::optional<HostPath>(const WinPath& path)> askForFolder;

  std::optional<HostPath> FolderOf(char letter) const override;
  bool IsLeftAlone(char letter) const override { return map_.IsLeftAlone(letter); }
  WinPath WindowsPathOf(const HostPath& path) const override;
  DriveType TypeOfDrive(const WinPath& root) override;
  bool IsOwnDrive(char letter) override;
  void OfferToAttach(const WinPath& path) override;

 private:
  PlaceResult PlaceOfAbsolute(const WinPath& path, LastStep last) const override { return map_.PlaceOf(path, last); }

  DriveMap map_;
};

}  // namespace quillbox
