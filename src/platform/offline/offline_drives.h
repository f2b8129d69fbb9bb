// The drives of a Windows disk that isn't running: folders of the host under Windows' letters, with a current directory
// each, and so the way from any Windows path to its place on the host.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/drives.h"
#include "platform/host_paths.h"
#include "platform/offline/drive_map.h"

namespace quillbox {

class OfflineDrives : public Drives, public HostPaths {
 public:
  /// The current drive is C:, every current directory its drive's root.
  explicit OfflineDrives(DriveMap map);

  const DriveMap& Map() const { return map_; }
  /// From now on nothing is written on the disk's own drives: what the user asks for is refused with that reason.
  void LeaveDiskAlone() { map_.LeaveDiskAlone(); }
  /// Asks for the folder of a drive that is not there, for OfferToAttach(); nothing when there is none.
  std::function<std::optional<HostPath>(const WinPath& path)> askForFolder;

  /// `path` made absolute with the current drive and directories.
  WinPath Absolute(const WinPath& path) const;
  /// Where `path` is on the host, whether it exists or not; why not, when it is not on a known drive or leads out of
  /// the disk.
  PlaceResult PlaceOf(const WinPath& path, LastStep last = LastStep::Follow) const;
  HostPath HostPathOf(const WinPath& path) const override;
  WinPath WindowsPathOf(const HostPath& path) const override;

  DriveType TypeOfDrive(const WinPath& root) override;
  bool IsOwnDrive(char letter) override;
  void OfferToAttach(const WinPath& path) override;
  std::optional<std::string> VolumeLabel(const WinPath& root) override;
  Status SetCurrentDrive(char letter) override;
  Status SetCurrentDirectory(const WinPath& path) override;
  WinPath CurrentDirectory() override { return CurrentDirectoryOf(currentDrive_); }

 private:
  WinPath CurrentDirectoryOf(char letter) const;

  DriveMap map_;
  char currentDrive_ = DriveMap::kSystemDrive;
  std::map<char, WinPath> currentDirectories_;  ///< a drive without an entry is at its root
};

}  // namespace quillbox
