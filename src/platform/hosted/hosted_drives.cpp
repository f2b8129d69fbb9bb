// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/hosted_drives.h"

#include "host/host_names.h"
#include "host/host_paths.h"
#include "host/volume.h"
#include "platform/hosted/host_open.h"

namespace quillbox {

WinPath HostedDrives::CurrentDirectoryOf(char letter) const {
  const auto directory = currentDirectories_.find(letter);
  return directory != currentDirectories_.end() ? directory->second : WinPath(std::string{letter, ':', '\\'});
}

WinPath HostedDrives::Absolute(const WinPath& path) const {
  const char letter = path.Drive() != 0 ? path.Drive() : currentDrive_;
  return Resolve(path, CurrentDirectoryOf(letter));
}

PlaceResult HostedDrives::PlaceOf(const WinPath& path, LastStep last) const {
  return PlaceOfAbsolute(Absolute(path), last);
}

HostPath HostedDrives::HostPathOf(const WinPath& path) const {
  const PlaceResult place = PlaceOf(path);
  return place ? place->Path() : HostPath();
}

std::optional<std::string> HostedDrives::VolumeLabel(const WinPath& root) {
  const std::optional<HostPath> folder = FolderOf(root.Drive());
  if (!folder || !IsFolder(*folder)) return std::nullopt;
  return WindowsName(LabelOfVolume(*folder));
}

Status HostedDrives::SetCurrentDrive(char letter) {
  const char upper = WinPath(std::string{letter, ':'}).Drive();
  if (!FolderOf(upper)) return Status::PathNotFound;
  currentDrive_ = upper;
  return Status::Success;
}

Status HostedDrives::SetCurrentDirectory(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const PlaceResult place = PlaceOfAbsolute(absolute, LastStep::Follow);
  if (path.Empty() || !place || !IsFolder(*place)) return Status::PathNotFound;
  currentDirectories_[absolute.Drive()] = absolute;
  return Status::Success;
}

}  // namespace quillbox
