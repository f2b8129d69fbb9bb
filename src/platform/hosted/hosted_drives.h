// SPDX-License-Identifier: GPL-3.0-or-later
// Drives whose files are on the computer that the program runs on: the way from any Windows path to its place there,
// and a current directory for each drive.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/drives.h"
#include "platform/host_paths.h"
#include "platform/hosted/host_place.h"
#include "platform/hosted/place_finder.h"

namespace quillbox {

class HostedDrives : public Drives, public HostPaths {
 public:
  /// `path` made absolute with the current drive and directories.
  WinPath Absolute(const WinPath& path) const;
  /// Where `path` is on the host, whether it exists or not; why not, when it is not on a known drive or must not be
  /// used.
  PlaceResult PlaceOf(const WinPath& path, LastStep last = LastStep::Follow) const;
  /// True for a drive on which nothing may be written, whatever it allows.
  virtual bool IsLeftAlone(char /*letter*/) const { return false; }

  HostPath HostPathOf(const WinPath& path) const override;
  std::optional<std::string> VolumeLabel(const WinPath& root) override;
  Status SetCurrentDrive(char letter) override;
  Status SetCurrentDirectory(const WinPath& path) override;
  WinPath CurrentDirectory() override { return CurrentDirectoryOf(currentDrive_); }

 protected:
  /// Every current directory is its drive's root.
  explicit HostedDrives(char currentDrive) : currentDrive_(currentDrive) {}

  /// The host's folder that is the drive's root, whether it is there or not; nothing when there is no such drive.
  /// Letters in upper case.
  virtual std::optional<HostPath> FolderOf(char letter) const = 0;
  /// The place of a path that is absolute.
  virtual PlaceResult PlaceOfAbsolute(const WinPath& path, LastStep last) const = 0;

 private:
  WinPath CurrentDirectoryOf(char letter) const;

  char currentDrive_;
  std::map<char, WinPath> currentDirectories_;  ///< a drive without an entry is at its root
};

}  // namespace quillbox
