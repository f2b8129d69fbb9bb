#include "platform/offline/offline_drives.h"

#include <utility>

#include "host/host_names.h"
#include "host/host_paths.h"
#include "host/volume.h"
#include "platform/offline/host_open.h"

namespace quillbox {

OfflineDrives::OfflineDrives(DriveMap map) : map_(std::move(map)) {}

WinPath OfflineDrives::CurrentDirectoryOf(char letter) const {
  const auto directory = currentDirectories_.find(letter);
  return directory != currentDirectories_.end() ? directory->second : WinPath(std::string{letter, ':', '\\'});
}

WinPath OfflineDrives::Absolute(const WinPath& path) const {
  const char letter = path.Drive() != 0 ? path.Drive() : currentDrive_;
  return Resolve(path, CurrentDirectoryOf(letter));
}

PlaceResult OfflineDrives::PlaceOf(const WinPath& path, LastStep last) const {
  return map_.PlaceOf(Absolute(path), last);
}

HostPath OfflineDrives::HostPathOf(const WinPath& path) const {
  const PlaceResult place = PlaceOf(path);
  return place ? place->Path() : HostPath();
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

std::optional<std::string> OfflineDrives::VolumeLabel(const WinPath& root) {
  const HostPath* folder = map_.FolderOf(root.Drive());
  if (folder == nullptr || !IsFolder(*folder)) return std::nullopt;
  return WindowsName(LabelOfVolume(*folder));
}

Status OfflineDrives::SetCurrentDrive(char letter) {
  const char upper = WinPath(std::string{letter, ':'}).Drive();
  if (map_.FolderOf(upper) == nullptr) return Status::PathNotFound;
  currentDrive_ = upper;
  return Status::Success;
}

Status OfflineDrives::SetCurrentDirectory(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const PlaceResult place = map_.PlaceOf(absolute);
  if (path.Empty() || !place || !IsFolder(*place)) return Status::PathNotFound;
  currentDirectories_[absolute.Drive()] = absolute;
  return Status::Success;
}

}  // namespace quillbox
