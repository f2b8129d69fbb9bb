// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/drive_map.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "host/host_names.h"

namespace quillbox {

namespace {

bool IsHostRoot(const DriveFolder& drive) {
  return drive.folder.IsRoot();
}

}  // namespace

DriveMap::DriveMap(const HostPath& cFolder, const std::map<char, HostPath>& more) {
  std::map<char, HostPath> given = more;
  given[kHostDrive] = HostPath::Root();
  given[kSystemDrive] = cFolder;
  std::vector<DriveFolder> ofTheDisk;
  for (const auto& [letter, folder] : given) {
    Drive drive{DriveFolder(folder), std::nullopt};
    if (letter == kSystemDrive || !IsHostRoot(drive.folder)) {
      drive.inBounds = ofTheDisk.size();
      ofTheDisk.push_back(drive.folder);
    }
    drives_.emplace(letter, std::move(drive));
  }
  bounds_ = std::make_shared<const DiskBounds>(std::move(ofTheDisk));
}

void DriveMap::Add(char letter, const HostPath& folder) {
  std::map<char, HostPath> folders;
  for (const auto& [other, drive] : drives_) folders.emplace(other, drive.folder.folder);
  folders[letter] = folder;
  DriveMap more(folders.at(kSystemDrive), folders);
  more.leftAlone_ = leftAlone_;
  *this = std::move(more);
}

const HostPath* DriveMap::FolderOf(char letter) const {
  const auto drive = drives_.find(letter);
  return drive == drives_.end() ? nullptr : &drive->second.folder.folder;
}

bool DriveMap::IsHostDrive(char letter) const {
  const auto drive = drives_.find(letter);
  return drive != drives_.end() && IsHostRoot(drive->second.folder);
}

bool DriveMap::IsLeftAlone(char letter) const {
  const auto drive = drives_.find(letter);
  return leftAlone_ && drive != drives_.end() && drive->second.inBounds.has_value();
}

PlaceResult DriveMap::PlaceOf(const WinPath& path, LastStep last) const {
  const auto drive = drives_.find(path.Drive());
  if (drive == drives_.end() || !path.IsAbsolute()) return DiskFault::NoSuchDrive;
  if (last == LastStep::NoLink && IsLeftAlone(path.Drive())) return DiskFault::LeftAlone;
  const std::optional<std::size_t>& inBounds = drive->second.inBounds;
  const HostPlace root = inBounds ? HostPlace::Beneath(bounds_, *inBounds) : HostPlace::Anywhere(HostPath::Root());
  return FindPlace(root, path.Names(), last);
}

std::optional<WinPath> DriveMap::WindowsPathOf(const HostPath& hostPath) const {
  const DriveFolder place(hostPath);
  char bestLetter = 0;
  HostPath best;
  std::size_t bestLength = 0;
  for (const auto& [letter, drive] : drives_) {
    std::optional<HostPath> below = place.folder.Below(drive.folder.folder);
    if (!below) below = place.canonical.Below(drive.folder.canonical);
    const std::size_t length = drive.folder.folder.Names().size();
    if (!below || (bestLetter != 0 && length <= bestLength)) continue;
    bestLetter = letter;
    best = *below;
    bestLength = length;
  }
  if (bestLetter == 0) return std::nullopt;

  WinPath result(std::string{bestLetter, ':', '\\'});
  for (const std::string& name : best.Names()) result = result.Join(WindowsName(name));
  return result;
}

}  // namespace quillbox
