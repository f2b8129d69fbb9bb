#include "platform/offline/drive_map.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "platform/offline/windows_names.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

std::vector<std::string_view> Components(std::string_view text) {
  std::vector<std::string_view> components;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\\/"), text.size());
    if (end > 0) components.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return components;
}

bool IsHostRoot(const DriveFolder& drive) {
  return drive.folder == "/";
}

}  // namespace

DriveMap::DriveMap(const fs::path& cFolder, const std::map<char, fs::path>& more) {
  std::map<char, fs::path> given = more;
  given[kHostDrive] = "/";
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

void DriveMap::Add(char letter, const fs::path& folder) {
  std::map<char, fs::path> folders;
  for (const auto& [other, drive] : drives_) folders.emplace(other, drive.folder.folder);
  folders[letter] = folder;
  DriveMap more(folders.at(kSystemDrive), folders);
  more.leftAlone_ = leftAlone_;
  *this = std::move(more);
}

const fs::path* DriveMap::FolderOf(char letter) const {
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
  if (drive == drives_.end() || !path.IsAbsolute()) return HostFault::NoSuchDrive;
  if (last == LastStep::NoLink && IsLeftAlone(path.Drive())) return HostFault::LeftAlone;
  const std::optional<std::size_t>& inBounds = drive->second.inBounds;
  const HostPlace root = inBounds ? HostPlace::Beneath(bounds_, *inBounds) : HostPlace::Anywhere("/");
  return FindPlace(root, Components(std::string_view(path.Text()).substr(2)), last);
}

std::optional<WinPath> DriveMap::WindowsPathOf(const fs::path& hostPath) const {
  const DriveFolder place(hostPath);
  char bestLetter = 0;
  fs::path best;
  std::ptrdiff_t bestLength = -1;
  for (const auto& [letter, drive] : drives_) {
    std::optional<fs::path> below = PartBelow(place.folder, drive.folder.folder);
    if (!below) below = PartBelow(place.canonical, drive.folder.canonical);
    const std::ptrdiff_t length = std::distance(drive.folder.folder.begin(), drive.folder.folder.end());
    if (!below || length <= bestLength) continue;
    bestLetter = letter;
    best = *below;
    bestLength = length;
  }
  if (bestLetter == 0) return std::nullopt;

  WinPath result(std::string{bestLetter, ':', '\\'});
  for (const fs::path& part : best) {
    if (!part.empty()) result = result.Join(WindowsName(part.native()));
  }
  return result;
}

}  // namespace quillbox
