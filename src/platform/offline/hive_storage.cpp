#include "platform/offline/hive_storage.h"

#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/offline/host_file.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

// A hive's offsets have 31 useful bits.
constexpr std::uint64_t kMaxFileBytes = 1ull << 31;
constexpr std::size_t kMaxAttributeBytes = 65'536;

// Attributes of the NTFS drivers that they do not list.
constexpr std::array kNtfsAttributes = {"system.ntfs_attrib", "system.ntfs_crtime", "system.ntfs_acl"};

std::string_view AsText(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};  // NOLINT: bytes as they are
}

void CopyAttribute(int from, int to, const char* name) {
  std::vector<char> value(kMaxAttributeBytes);
  const ssize_t size = fgetxattr(from, name, value.data(), value.size());
  if (size >= 0) static_cast<void>(fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0));
}

void CopyExtendedAttributes(int from, int to) {
  std::vector<char> names(kMaxAttributeBytes);
  const ssize_t size = flistxattr(from, names.data(), names.size());
  const std::string_view list(names.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  for (std::size_t at = 0; at < list.size();) {
    const std::string name(list.substr(at, list.find('\0', at) - at));
    CopyAttribute(from, to, name.c_str());
    at += name.size() + 1;
  }
  for (const char* name : kNtfsAttributes) CopyAttribute(from, to, name);
}

/// Gives the open file `to` what hangs on `like`; what a file system refuses, its files do without.
void CopyFileAttributes(const fs::path& like, int to) {
  const HostFd from(open(like.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat info = {};
  if (!from || fstat(from.Get(), &info) != 0) return;
  static_cast<void>(!fchown(to, info.st_uid, info.st_gid));
  static_cast<void>(!fchmod(to, info.st_mode & 07777));  // after the owner, whose change clears bits
  CopyExtendedAttributes(from.Get(), to);
  __u32 fatAttributes = 0;
  if (ioctl(from.Get(), FAT_IOCTL_GET_ATTRIBUTES, &fatAttributes) == 0) {
    ioctl(to, FAT_IOCTL_SET_ATTRIBUTES, &fatAttributes);
  }
}

void KeepCopy(const fs::path& file, const fs::path& kept) {
  const std::string doing = "keeping the original hive";
  ReplaceHostFile(kept, ReadHostFile(file, doing), doing, file);
  struct stat info = {};
  if (stat(file.c_str(), &info) != 0) return;
  const std::array<timespec, 2> times = {info.st_atim, info.st_mtim};
  utimensat(AT_FDCWD, kept.c_str(), times.data(), 0);
}

bool ForbidsWriting(int code) {
  return code == EROFS || code == EACCES || code == EPERM;
}

}  // namespace

HostFileError::HostFileError(std::string doing, const fs::path& file, int code)
    : Error(std::move(doing), {file.string(), {}, {}}, SystemReason(code)), code_(code) {}

bool HostFileError::IsReadOnly() const {
  return ForbidsWriting(code_);
}

FileState StateOf(const fs::path& file) {
  struct stat info = {};
  if (stat(file.c_str(), &info) != 0) return {};
  return {info.st_dev, info.st_ino, static_cast<std::uint64_t>(info.st_size), info.st_mtim.tv_sec,
          info.st_mtim.tv_nsec};
}

Bytes ReadHostFile(const fs::path& file, const std::string& doing) {
  const HostFd fd(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat info = {};
  if (!fd || fstat(fd.Get(), &info) != 0) throw HostFileError(doing, file, errno);
  if (!S_ISREG(info.st_mode)) throw Error(doing, {file.string(), {}, {}}, "it is not a file");
  if (static_cast<std::uint64_t>(info.st_size) > kMaxFileBytes) throw HostFileError(doing, file, EFBIG);
  Bytes bytes(static_cast<std::size_t>(info.st_size));
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t got = read(fd.Get(), bytes.data() + length, bytes.size() - length);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw HostFileError(doing, file, errno);
    if (got == 0) throw Error(doing, {file.string(), {}, {}}, "it became shorter while it was read");
    length += static_cast<std::size_t>(got);
  }
  return bytes;
}

void ReplaceHostFile(const fs::path& file, ByteView bytes, const std::string& doing, const fs::path& like) {
  try {
    NewFile replacement(file);
    CopyFileAttributes(like, replacement.Fd());
    replacement.Write(AsText(bytes));
    replacement.Commit();
  } catch (const std::system_error& error) {
    throw HostFileError(doing, file, error.code().value());
  }
}

bool KeepBeside(const fs::path& file, const fs::path& kept, KeepHow how) {
  if (StateOf(kept) != FileState{}) return false;
  if (how == KeepHow::Copy || link(file.c_str(), kept.c_str()) != 0) KeepCopy(file, kept);
  return true;
}

bool CanWriteFolder(const fs::path& folder) {
  if (HostFd(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600))) return true;
  if (ForbidsWriting(errno)) return false;
  // The file system knows no nameless files.
  struct statvfs info = {};
  if (statvfs(folder.c_str(), &info) != 0 || (info.f_flag & ST_RDONLY) != 0) return false;
  return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

bool CanReplaceFile(const fs::path& file) {
  return HostFd(open(file.c_str(), O_RDWR | O_CLOEXEC)) && CanWriteFolder(file.parent_path());
}

}  // namespace quillbox
