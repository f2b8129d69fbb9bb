#include "platform/offline/host_place.h"

#include <algorithm>
#include <iterator>

namespace quillbox {

namespace fs = std::filesystem;

namespace {

fs::path WithoutFinalSlash(const fs::path& path) {
  return path.has_relative_path() && !path.has_filename() ? path.parent_path() : path;
}

}  // namespace

DriveFolder::DriveFolder(const fs::path& given) {
  std::error_code code;
  folder = WithoutFinalSlash(fs::absolute(given, code).lexically_normal());
  const fs::path real = fs::weakly_canonical(folder, code);
  canonical = code ? folder : WithoutFinalSlash(real);
}

std::optional<fs::path> PartBelow(const fs::path& path, const fs::path& folder) {
  const auto [rest, end] = std::mismatch(path.begin(), path.end(), folder.begin(), folder.end());
  if (end != folder.end()) return std::nullopt;
  fs::path below;
  for (auto part = rest; part != path.end(); ++part) below /= *part;
  return below;
}

std::optional<DiskBounds::Inside> DiskBounds::Find(const fs::path& absolute) const {
  std::optional<Inside> best;
  std::ptrdiff_t bestLength = -1;
  for (std::size_t drive = 0; drive < drives_.size(); ++drive) {
    for (const fs::path& folder : {drives_[drive].folder, drives_[drive].canonical}) {
      std::optional<fs::path> below = PartBelow(absolute, folder);
      const std::ptrdiff_t length = std::distance(folder.begin(), folder.end());
      if (!below || length <= bestLength) continue;
      best = {drive, std::move(*below)};
      bestLength = length;
    }
  }
  return best;
}

HostPlace HostPlace::Anywhere(const fs::path& path) {
  return {nullptr, 0, WithoutFinalSlash(path)};
}

HostPlace HostPlace::Beneath(std::shared_ptr<const DiskBounds> bounds, std::size_t drive, fs::path below) {
  return {std::move(bounds), drive, std::move(below)};
}

HostPlace HostPlace::DiskRoot(const fs::path& folder, const std::vector<fs::path>& more) {
  std::vector<DriveFolder> drives = {DriveFolder(folder)};
  for (const fs::path& other : more) drives.emplace_back(other);
  return Beneath(std::make_shared<const DiskBounds>(std::move(drives)), 0);
}

HostPlace HostPlace::Folder() const {
  fs::path above = names_.parent_path();
  if (!IsBeneathDrive() && above.empty()) above = ".";
  return {bounds_, drive_, std::move(above)};
}

HostPlace HostPlace::Join(const std::string& hostName) const {
  return {bounds_, drive_, names_ / hostName};
}

fs::path HostPlace::Path() const {
  if (!IsBeneathDrive()) return names_;
  return names_.empty() ? Drive().folder : Drive().folder / names_;
}

}  // namespace quillbox
