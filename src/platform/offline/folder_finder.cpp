#include "platform/offline/folder_finder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <system_error>
#include <utility>

#include "platform/offline/folder_names.h"
#include "platform/offline/host_file.h"
#include "platform/offline/place_finder.h"
#include "platform/offline/windows_names.h"
#include "text/file_time.h"

namespace quillbox {

namespace {

constexpr std::array kDots = {".", ".."};

DIR* OpenForEntries(const HostPlace& place) try {
  HostFd folder = OpenFolder(place);
  DIR* dir = fdopendir(folder.Get());
  if (dir != nullptr) folder.Release();
  return dir;
} catch (const std::system_error&) {
  return nullptr;
}

}  // namespace

std::optional<struct stat> StatEntry(const OpenedFolder& folder, const std::string& storedName) {
  struct stat info = {};
  if (fstatat(folder.fd, storedName.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  if (!S_ISLNK(info.st_mode)) return info;
  if (!folder.place.IsBeneathDrive()) {
    struct stat target = {};
    return fstatat(folder.fd, storedName.c_str(), &target, 0) == 0 ? target : info;
  }
  const PlaceResult led = FollowEntry(folder.place, storedName);
  return led ? StatPlace(*led).value_or(info) : info;
}

FileEntry EntryOf(const struct stat& info) {
  FileEntry entry;
  entry.isDirectory = S_ISDIR(info.st_mode);
  entry.size = entry.isDirectory ? 0 : static_cast<std::uint64_t>(info.st_size);
  entry.modified = FileTimeOfUnix(info.st_mtim.tv_sec, static_cast<std::uint64_t>(info.st_mtim.tv_nsec));
  return entry;
}

std::optional<FileEntry> ReadHostEntry(const OpenedFolder& folder, const std::string& storedName,
                                       const AttributeReader* attributes) {
  const std::optional<struct stat> info = StatEntry(folder, storedName);
  if (!info) return std::nullopt;
  FileEntry entry = EntryOf(*info);
  const FileAttributes flags = attributes != nullptr ? attributes->Of(storedName) : FileAttributes();
  entry.isHidden = flags.isHidden;
  entry.isSystem = flags.isSystem;
  return entry;
}

FolderFinder::FolderFinder(const HostPlace& folder, const std::string& pattern, Options options)
    : place_(folder),
      dir_(OpenForEntries(folder)),
      pattern_(pattern),
      namesOnly_(options.namesOnly),
      dotsGiven_(options.isRoot ? 2 : 0) {
  if (dir_ && !namesOnly_) attributes_.emplace(dirfd(dir_.get()));
}

std::optional<FileEntry> FolderFinder::Next() {
  if (!dir_) return std::nullopt;
  if (std::optional<FileEntry> dots = NextDots()) return dots;
  while (const dirent* stored = readdir(dir_.get())) {
    if (IsDots(stored->d_name)) continue;
    std::string name = WindowsName(stored->d_name);
    if (!pattern_.Matches(name)) continue;
    std::optional<FileEntry> entry = Read(*stored);
    if (!entry) continue;
    entry->name = std::move(name);
    return entry;
  }
  return std::nullopt;
}

std::optional<FileEntry> FolderFinder::NextDots() {
  while (dotsGiven_ < 2) {
    const char* name = kDots[static_cast<std::size_t>(dotsGiven_++)];
    if (!pattern_.Matches(name)) continue;
    FileEntry entry = ReadHostEntry({place_, dirfd(dir_.get())}, name, nullptr).value_or(FileEntry());
    entry.name = name;
    entry.isDirectory = true;
    return entry;
  }
  return std::nullopt;
}

std::optional<FileEntry> FolderFinder::Read(const dirent& stored) const {
  const bool typeIsKnown = stored.d_type != DT_UNKNOWN && stored.d_type != DT_LNK;
  if (!namesOnly_ || !typeIsKnown) {
    return ReadHostEntry({place_, dirfd(dir_.get())}, stored.d_name, attributes_ ? &*attributes_ : nullptr);
  }
  FileEntry entry;
  entry.isDirectory = stored.d_type == DT_DIR;
  return entry;
}

}  // namespace quillbox
