// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <memory>

#include "host/host_fault.h"
#include "host/posix/open_beneath.h"
#include "host/posix/posix.h"

namespace quillbox {

namespace {

constexpr int kListFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
constexpr int kNamesOnlyFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr int kReadFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr mode_t kNewFolderMode = 0777;
constexpr std::size_t kListBytes = std::size_t{64} * 1024;

/// Opens a folder with the function, which gets the flags.
template <class Opener>
HostHandle OpenAsFolder(const Opener& openWith) {
  HostHandle opened = openWith(kListFlags);
  if (!opened && errno == EACCES) opened = openWith(kNamesOnlyFlags);
  if (!opened) ThrowErrno(errno);
  return opened;
}

std::error_code CodeOf(int result) {
  return result == 0 ? std::error_code() : SystemCode(errno);
}

int StatFlags(Links links) {
  return links == Links::Keep ? AT_SYMLINK_NOFOLLOW : 0;
}

bool IsDots(const char* name) {
  return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

std::optional<EntryKind> KindOf(unsigned char type) {
  switch (type) {
    case DT_REG:
      return EntryKind::File;
    case DT_DIR:
      return EntryKind::Folder;
    case DT_LNK:
      return EntryKind::Link;
    case DT_UNKNOWN:
      return std::nullopt;
    default:
      return EntryKind::Other;
  }
}

}  // namespace

HostFolder HostFolder::Open(const HostPath& path) {
  const std::filesystem::path native = NativePath(path);
  return HostFolder(OpenAsFolder([&](int flags) { return HostHandle(open(native.c_str(), flags)); }));
}

// NOLINTNEXTLINE(bugprone-easily-swappable-parameters): the second is relative to the first
HostFolder HostFolder::OpenBeneath(const HostPath& root, const HostPath& below) {
  const HostHandle top(open(NativePath(root).c_str(), kNamesOnlyFlags));
  if (!top) ThrowErrno(errno);
  return HostFolder(OpenAsFolder([&](int flags) { return quillbox::OpenBeneath(top, below, flags); }));
}

EntryInfo HostFolder::Info() const {
  return InfoOfStat(StatOf(handle_));
}

EntryInfo HostFolder::InfoOf(const std::string& name, Links links) const {
  struct stat info = {};
  if (fstatat(Fd(handle_), name.c_str(), &info, StatFlags(links)) != 0) ThrowErrno(errno);
  return InfoOfStat(info);
}

std::optional<EntryInfo> HostFolder::Find(const std::string& name, Links links) const {
  struct stat info = {};
  if (fstatat(Fd(handle_), name.c_str(), &info, StatFlags(links)) != 0) return std::nullopt;
  return InfoOfStat(info);
}

std::string HostFolder::StoredName(const std::string& name) const {
  return name;
}

std::optional<HostPath> HostFolder::ReadLink(const std::string& name) const {
  std::array<char, PATH_MAX> target = {};
  const ssize_t size = readlinkat(Fd(handle_), name.c_str(), target.data(), target.size());
  if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return std::nullopt;
  return HostPath(std::string_view(target.data(), static_cast<std::size_t>(size)));
}

HostFolder HostFolder::OpenFolder(const std::string& name, Links links, FolderUse use) const {
  const auto open = [&](int flags) {
    return links == Links::Keep ? OpenEntry(Fd(handle_), name, flags)
                                : HostHandle(openat(Fd(handle_), name.c_str(), flags));
  };
  if (use == FolderUse::Names) return HostFolder(OpenAsFolder(open));
  HostFolder listed(open(kListFlags));
  if (!listed) ThrowErrno(errno);
  return listed;
}

HostFile HostFolder::OpenFile(const std::string& name, Links links) const {
  const int noFollow = links == Links::Keep ? O_NOFOLLOW : 0;
  HostHandle file(openat(Fd(handle_), name.c_str(), kReadFlags | noFollow));
  if (!file) ThrowErrno(errno);
  return {std::move(file), name};
}

bool HostFolder::ListSome(std::vector<ListedEntry>& entries) const {
  alignas(dirent64) std::array<char, kListBytes> buffer;
  entries.clear();
  for (;;) {
    const ssize_t size = getdents64(Fd(handle_), buffer.data(), buffer.size());
    // A folder that may not be read is open for its names only.
    if (size < 0) ThrowErrno(errno == EBADF ? EACCES : errno);
    if (size == 0) return false;
    for (ssize_t at = 0; at < size;) {
      const auto& stored = *reinterpret_cast<const dirent64*>(buffer.data() + at);
      if (!IsDots(stored.d_name)) entries.push_back({stored.d_name, KindOf(stored.d_type)});
      at += stored.d_reclen;
    }
    if (!entries.empty()) return true;
  }
}

HostFolder HostFolder::OpenAgain() const {
  HostFolder own(HostHandle(openat(Fd(handle_), ".", kListFlags)));
  if (!own) ThrowErrno(errno);
  return own;
}

std::error_code HostFolder::MakeFolder(const std::string& name) const {
  return CodeOf(mkdirat(Fd(handle_), name.c_str(), kNewFolderMode));
}

std::error_code HostFolder::Remove(const std::string& name) const {
  return CodeOf(unlinkat(Fd(handle_), name.c_str(), 0));
}

std::error_code HostFolder::RemoveFolder(const std::string& name) const {
  return CodeOf(unlinkat(Fd(handle_), name.c_str(), AT_REMOVEDIR));
}

std::error_code HostFolder::Rename(const EntryRename& rename) const {
  return CodeOf(renameat(Fd(handle_), rename.from.c_str(), Fd(handle_), rename.to.c_str()));
}

std::error_code HostFolder::MoveNew(const std::string& name, const HostFolder& to) const {
  const char* const entry = name.c_str();
  if (renameat2(Fd(handle_), entry, Fd(to.handle_), entry, RENAME_NOREPLACE) == 0) return {};
  // Not every file system can do it in one step.
  if (errno != EINVAL && errno != ENOSYS) return SystemCode(errno);
  if (to.Find(name)) return SystemCode(EEXIST);
  return CodeOf(renameat(Fd(handle_), entry, Fd(to.handle_), entry));
}

std::error_code HostFolder::Link(const std::string& name, const HostFolder& folder, const std::string& second) const {
  return CodeOf(linkat(Fd(handle_), name.c_str(), Fd(folder.handle_), second.c_str(), 0));
}

std::error_code HostFolder::WriteFaultOf(const std::string& name, Links links) const {
  const int noFollow = links == Links::Keep ? O_NOFOLLOW : 0;
  const HostHandle file(openat(Fd(handle_), name.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | noFollow));
  return CodeOf(file ? 0 : -1);
}

void HostFolder::Flush() const {
  if (fsync(Fd(handle_)) == 0) return;
  // A folder that may not be read is open for its names only (EBADF).
  if (errno == EINVAL || errno == ENOTSUP || errno == EBADF || errno == ENOSYS) return;
  throw FolderFlushError(SystemCode(errno));
}

void HostFolder::FlushFileSystem() const {
  if (syncfs(Fd(handle_)) != 0) ThrowErrno(errno);
}

bool HostFolder::MayWrite() const {
  return faccessat(Fd(handle_), ".", W_OK | X_OK, AT_EACCESS) == 0;
}

bool HostFolder::CanMakeFiles() const {
  if (HostHandle(openat(Fd(handle_), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR))) return true;
  if (ForbidsWriting(SystemCode(errno))) return false;
  // The file system does not know files without a name.
  struct statvfs info = {};
  if (fstatvfs(Fd(handle_), &info) != 0 || (info.f_flag & ST_RDONLY) != 0) return false;
  return MayWrite();
}

}  // namespace quillbox
