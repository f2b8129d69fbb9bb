// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/host_place.h"

#include <algorithm>

#include "host/host_paths.h"

namespace quillbox {

DriveFolder::DriveFolder(const HostPath& given) : folder(Absolute(given)) {
  const RealPath real = RealPathAsFarAsThere(folder);
  canonical = real.fault ? folder : real.path;
}

std::optional<DiskBounds::Inside> DiskBounds::Find(const HostPath& absolute) const {
  std::optional<Inside> best;
  std::size_t bestLength = 0;
  for (std::size_t drive = 0; drive < drives_.size(); ++drive) {
    for (const HostPath& folder : {drives_[drive].folder, drives_[drive].canonical}) {
      std::optional<HostPath> below = absolute.Below(folder);
      const std::size_t length = folder.Names().size();
      if (!below || (best && length <= bestLength)) continue;
      best = {drive, std::move(*below)};
      bestLength = length;
    }
  }
  return best;
}

HostPlace HostPlace::Anywhere(const HostPath& path) {
  return {nullptr, 0, path};
}

HostPlace HostPlace::Beneath(std::shared_ptr<const DiskBounds> bounds, std::size_t drive, HostPath below) {
  return {std::move(bounds), drive, std::move(below)};
}

HostPlace HostPlace::DiskRoot(const HostPath& folder, const std::vector<HostPath>& more) {
  std::vector<DriveFolder> drives = {DriveFolder(folder)};
  for (const HostPath& other : more) drives.emplace_back(other);
  return Beneath(std::make_shared<const DiskBounds>(std::move(drives)), 0);
}

HostPlace HostPlace::Folder() const {
  return {bounds_, drive_, names_.Parent()};
}

HostPlace HostPlace::Join(const std::string& hostName) const {
  return {bounds_, drive_, names_.Join(hostName)};
}

HostPath HostPlace::Path() const {
  return IsBeneathDrive() ? Drive().folder.Join(names_) : names_;
}

}  // namespace quillbox
