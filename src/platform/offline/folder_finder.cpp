#include "platform/offline/folder_finder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <utility>

#include "platform/offline/drive_map.h"
#include "platform/offline/host_file.h"

namespace quillbox {

namespace {

constexpr std::array kDots = {".", ".."};

bool IsDots(const char* name) {
  return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

}  // namespace

std::optional<FileEntry> ReadHostEntry(int folderFd, const std::string& storedName, const AttributeReader* attributes) {
  struct stat info = {};
  if (fstatat(folderFd, storedName.c_str(), &info, 0) != 0 &&
      fstatat(folderFd, storedName.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
    return std::nullopt;
  }
  FileEntry entry;
  entry.isDirectory = S_ISDIR(info.st_mode);
  entry.size = entry.isDirectory ? 0 : static_cast<std::uint64_t>(info.st_size);
  entry.modified = ToFileTime(info.st_mtim);
  const FileAttributes flags = attributes != nullptr ? attributes->Of(storedName) : FileAttributes();
  entry.isHidden = flags.isHidden;
  entry.isSystem = flags.isSystem;
  return entry;
}

FolderFinder::FolderFinder(const std::filesystem::path& folder, const std::string& pattern, Options options)
    : dir_(opendir(folder.c_str())),
      pattern_(pattern),
      namesOnly_(options.namesOnly),
      dotsGiven_(options.isRoot ? 2 : 0) {
  if (dir_ && !namesOnly_) attributes_.emplace(folder);
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
    FileEntry entry = ReadHostEntry(dirfd(dir_.get()), name, nullptr).value_or(FileEntry());
    entry.name = name;
    entry.isDirectory = true;
    return entry;
  }
  return std::nullopt;
}

std::optional<FileEntry> FolderFinder::Read(const dirent& stored) const {
  const bool typeIsKnown = stored.d_type != DT_UNKNOWN && stored.d_type != DT_LNK;
  if (!namesOnly_ || !typeIsKnown) {
    return ReadHostEntry(dirfd(dir_.get()), stored.d_name, attributes_ ? &*attributes_ : nullptr);
  }
  FileEntry entry;
  entry.isDirectory = stored.d_type == DT_DIR;
  return entry;
}

}  // namespace quillbox
