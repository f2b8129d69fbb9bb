// SPDX-License-Identifier: GPL-3.0-or-later
// Where Windows' drives are on the host, and the two ways between a Windows path and a place on the host.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "platform/hosted/host_place.h"
#include "platform/hosted/place_finder.h"
#include "text/win_path.h"

namespace quillbox {

class DriveMap {
 public:
  static constexpr char kSystemDrive = 'C';
  static constexpr char kHostDrive = 'Z';  ///< the host's own root folder

  /// `cFolder` is C:\ ; `more` are further drives by upper-case letter. Z is the host's root, whatever `more` has.
  explicit DriveMap(const HostPath& cFolder, const std::map<char, HostPath>& more = {});

  /// One more drive of the disk, or another folder for one. Places that were found before stay what they are.
  void Add(char letter, const HostPath& folder);

  /// The host folder of a drive, or null when there is no such drive. Letters in upper case.
  const HostPath* FolderOf(char letter) const;
  /// True for the drive that is the host's own root.
  bool IsHostDrive(char letter) const;

  /// The place of an absolute path without "." and "..", as FindPlace finds it below the drive's folder. The host's
  /// drive is anywhere on the host, all others are beneath their folders. Refused for a path without a known drive,
  /// one with a name that would leave its folder, and one that leads out of the disk.
  PlaceResult PlaceOf(const WinPath& path, LastStep last = LastStep::Follow) const;
  /// From now on PlaceOf refuses places for writing (LastStep::NoLink) on any drive but the host's.
  void LeaveDiskAlone() { leftAlone_ = true; }
  bool IsLeftAlone(char letter) const;
  /// The Windows path of a host path: on the drive with the deepest folder that contains it. Nothing when no drive
  /// contains it.
  std::optional<WinPath> WindowsPathOf(const HostPath& hostPath) const;

 private:
  struct Drive {
    DriveFolder folder;
    std::optional<std::size_t> inBounds;  ///< its number in bounds_; none for the host's drive
  };
  std::map<char, Drive> drives_;
  std::shared_ptr<const DiskBounds> bounds_;
  bool leftAlone_ = false;
};

}  // namespace quillbox
