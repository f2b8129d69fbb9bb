// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_file.h"

#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <vector>

#include "host/host_fault.h"
#include "host/new_folder.h"
#include "host/posix/host_io.h"
#include "host/posix/posix.h"
#include "host/temporary_name.h"

namespace quillbox {

namespace {

constexpr mode_t kAllModeBits = 07777;
constexpr mode_t kNewFileMode = 0666;
constexpr int kMaxNameAttempts = 100;
constexpr std::size_t kMaxAttributeBytes = 65'536;

// Attributes of the NTFS drivers that they do not list.
constexpr std::array kNtfsAttributes = {"system.ntfs_attrib", "system.ntfs_crtime", "system.ntfs_acl"};

mode_t ProcessUmask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

/// The permissions of what is replaced, or nothing; refuses what cannot be replaced by a file.
std::optional<mode_t> ModeOfReplaced(const HostFolder& folder, const std::string& name, Links links) {
  struct stat existing = {};
  const int noFollow = links == Links::Keep ? AT_SYMLINK_NOFOLLOW : 0;
  if (fstatat(Fd(folder.Handle()), name.c_str(), &existing, noFollow) != 0) {
    if (errno != ENOENT) ThrowErrno(errno);
    return std::nullopt;
  }
  if (S_ISLNK(existing.st_mode)) ThrowErrno(ELOOP);
  if (S_ISDIR(existing.st_mode)) ThrowErrno(EISDIR);
  // Replacing a device, pipe or socket by a file would take it away from everybody.
  if (!S_ISREG(existing.st_mode)) ThrowFault(HostFault::NotOrdinary);
  if (faccessat(Fd(folder.Handle()), name.c_str(), W_OK, AT_EACCESS) != 0) ThrowErrno(errno);
  return existing.st_mode & kAllModeBits;
}

/// Two open files.
struct FromTo {
  int from;
  int to;
};

void CopyAttribute(FromTo files, const char* name) {
  std::vector<char> value(kMaxAttributeBytes);
  const ssize_t size = fgetxattr(files.from, name, value.data(), value.size());
  if (size >= 0) static_cast<void>(fsetxattr(files.to, name, value.data(), static_cast<std::size_t>(size), 0));
}

void CopyExtendedAttributes(FromTo files) {
  std::vector<char> names(kMaxAttributeBytes);
  const ssize_t size = flistxattr(files.from, names.data(), names.size());
  const std::string_view list(names.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  for (std::size_t at = 0; at < list.size();) {
    const std::string name(list.substr(at, list.find('\0', at) - at));
    CopyAttribute(files, name.c_str());
    at += name.size() + 1;
  }
  for (const char* name : kNtfsAttributes) CopyAttribute(files, name);
}

timespec AsTimespec(const HostTime& time) {
  return {.tv_sec = time.seconds, .tv_nsec = static_cast<long>(time.nanoseconds)};
}

}  // namespace

void NewFile::Begin(Links links) {
  const std::optional<mode_t> replaced = ModeOfReplaced(folder_, name_, links);
  const int folder = Fd(folder_.Handle());
  for (int attempt = 0; !handle_ && attempt < kMaxNameAttempts; ++attempt) {
    temporary_ = RandomTemporaryName();
    handle_ = HostHandle(
        openat(folder, temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!handle_ && errno != EEXIST) break;
  }
  if (!handle_) {
    const int code = errno;
    temporary_.clear();
    ThrowErrno(code);
  }
  // The lock lets RemoveAbandonedFiles see that the file is in use.
  flock(Fd(handle_), LOCK_EX | LOCK_NB);
  // File systems without modes refuse this.
  static_cast<void>(fchmod(Fd(handle_), replaced.value_or(kNewFileMode & ~ProcessUmask())));
}

NewFile::~NewFile() {
  if (!temporary_.empty()) folder_.Remove(temporary_);
}

void NewFile::Write(std::string_view bytes) {
  flushed_ = false;
  WriteAll(handle_, bytes);
}

std::size_t NewFile::Append(const HostFile& from, FilePart part) {
  flushed_ = false;
  auto position = static_cast<off_t>(part.offset);
  const ssize_t copied = copy_file_range(Fd(from.Handle()), &position, Fd(handle_), nullptr, part.size, 0);
  if (copied < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) ThrowErrno(errno);
  return copied > 0 ? static_cast<std::size_t>(copied) : 0;
}

void NewFile::BeginWriteBack(FilePart part) {
  // If this fails, the flush at the end does it.
  sync_file_range(Fd(handle_), static_cast<off64_t>(part.offset), static_cast<off64_t>(part.size),
                  SYNC_FILE_RANGE_WRITE);
}

std::size_t NewFile::ReadAt(std::uint64_t offset, std::span<char> buffer) {
  return ReadUpToAt(handle_, offset, buffer);
}

EntryInfo NewFile::Info() const {
  return InfoOfStat(StatOf(handle_));
}

void NewFile::SetTimes(const HostTime& accessed, const HostTime& modified) {
  flushed_ = false;
  const std::array<timespec, 2> times = {AsTimespec(accessed), AsTimespec(modified)};
  if (futimens(Fd(handle_), times.data()) != 0) ThrowErrno(errno);
}

void NewFile::TakeAttributesOf(const HostFile& like) {
  const int from = Fd(like.Handle());
  const int to = Fd(handle_);
  struct stat info = {};
  if (fstat(from, &info) != 0) return;
  static_cast<void>(!fchown(to, info.st_uid, info.st_gid));
  static_cast<void>(!fchmod(to, info.st_mode & kAllModeBits));  // after the owner, whose change clears bits
  CopyExtendedAttributes({from, to});
  __u32 fatAttributes = 0;
  if (ioctl(from, FAT_IOCTL_GET_ATTRIBUTES, &fatAttributes) == 0) {
    ioctl(to, FAT_IOCTL_SET_ATTRIBUTES, &fatAttributes);
  }
}

void NewFile::Flush() {
  if (flushed_) return;
  if (fsync(Fd(handle_)) != 0) ThrowErrno(errno);
  flushed_ = true;
}

void NewFile::Commit() {
  Flush();
  if (const std::error_code fault = folder_.Rename({.from = temporary_, .to = name_})) ThrowFault(fault);
  temporary_.clear();
  folder_.Flush();
}

void RemoveAbandonedFiles(const HostFolder& folder) {
  folder.EachName([&](const std::string& name) {
    if (!IsTemporaryName(name)) return false;
    const std::optional<EntryInfo> info = folder.Find(name);
    if (info && info->IsFolder()) RemoveAbandonedFolder(folder, name);
    if (!info || !info->IsFile()) return false;
    const HostHandle file(openat(Fd(folder.Handle()), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file && flock(Fd(file), LOCK_EX | LOCK_NB) == 0) folder.Remove(name);
    return false;
  });
}

HostStream::HostStream(const HostPath& path) : handle_(open(NativePath(path).c_str(), O_WRONLY | O_CLOEXEC)) {
  if (!handle_) ThrowErrno(errno);
}

void HostStream::Write(std::string_view bytes) {
  WriteAll(handle_, bytes);
}

}  // namespace quillbox
