// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/offline_drives.h"

#include "host/host_paths.h"

namespace quillbox {

std::optional<HostPath> OfflineDrives::FolderOf(char letter) const {
  const HostPath* folder = map_.FolderOf(letter);
  return folder != nullptr ? std::optional(*folder) : std::nullopt;
}

WinPath OfflineDrives::WindowsPathOf(const HostPath& path) const {
  return map_.WindowsPathOf(path).value_or(WinPath());
}

DriveType OfflineDrives::TypeOfDrive(const WinPath& root) {
  const HostPath* folder = map_.FolderOf(root.Drive());
  if (folder == nullptr || !IsFolder(*folder)) return DriveType::NoRoot;
  return map_.IsHostDrive(root.Drive()) ? DriveType::Remote : DriveType::Fixed;
}

bool OfflineDrives::IsOwnDrive(char letter) {
  const char upper = WinPath(std::string{letter, ':'}).Drive();
  return map_.FolderOf(upper) != nullptr && !map_.IsHostDrive(upper);
}

void OfflineDrives::OfferToAttach(const WinPath& path) {
  if (path.Drive() == 0 || map_.FolderOf(path.Drive()) != nullptr || !askForFolder) return;
  if (const std::optional<HostPath> folder = askForFolder(path)) map_.Add(path.Drive(), *folder);
}

}  // namespace quillbox
