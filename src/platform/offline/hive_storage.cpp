#include "platform/offline/hive_storage.h"

#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/offline/host_file.h"
#include "platform/offline/host_io.h"
#include "platform/offline/host_streams.h"

namespace quillbox {
namespace {

// A hive's offsets have 31 useful bits.
constexpr std::uint64_t kMaxFileBytes = 1ull << 31;
constexpr std::size_t kMaxAttributeBytes = 65'536;
constexpr const char* kKeeping = "keeping the original hive";

// The two sequence numbers and the time of the last write, in a hive's first block.
constexpr std::size_t kStampAt = 4;
constexpr std::size_t kStampEnd = 20;

// Attributes of the NTFS drivers that they do not list.
constexpr std::array kNtfsAttributes = {"system.ntfs_attrib", "system.ntfs_crtime", "system.ntfs_acl"};

std::string_view AsText(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};  // NOLINT: bytes as they are
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

/// Copies owner, permissions and attributes of `like` to the open file `to`, as far as the file system has them.
void CopyFileAttributes(const HostPlace& like, int to) try {
  const HostFd from = OpenForReading(like);
  struct stat info = {};
  if (fstat(from.Get(), &info) != 0) return;
  static_cast<void>(!fchown(to, info.st_uid, info.st_gid));
  static_cast<void>(!fchmod(to, info.st_mode & 07777));  // after the owner, whose change clears bits
  CopyExtendedAttributes({from.Get(), to});
  __u32 fatAttributes = 0;
  if (ioctl(from.Get(), FAT_IOCTL_GET_ATTRIBUTES, &fatAttributes) == 0) {
    ioctl(to, FAT_IOCTL_SET_ATTRIBUTES, &fatAttributes);
  }
} catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): what is not there hands nothing on
}

void KeepCopy(const HostPlace& file, const HostPlace& kept) {
  ReplaceHostFile(kept, ReadHostFile(file, kKeeping), kKeeping, file);
  const std::optional<struct stat> info = StatPlace(file);
  if (!info) return;
  const std::array<timespec, 2> times = {info->st_atim, info->st_mtim};
  const OpenPlace copy = OpenFolderOf(kept);
  utimensat(copy.folder.Get(), copy.name.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
}

bool LinkBeside(const OpenPlace& file, const OpenPlace& second) {
  return linkat(file.folder.Get(), file.name.c_str(), second.folder.Get(), second.name.c_str(), 0) == 0;
}

bool ForbidsWriting(int code) {
  return code == EROFS || code == EACCES || code == EPERM;
}

/// True for failures that do not mean that writing is forbidden: the next try may succeed.
bool MayPass(const std::error_code& code) {
  constexpr std::array kPassing = {EIO, ENOMEM, EMFILE, ENFILE, ENOSPC, EDQUOT};
  return std::find(kPassing.begin(), kPassing.end(), ErrnoOf(code)) != kPassing.end();
}

}  // namespace

HostFileError::HostFileError(std::string doing, const HostPlace& file, const std::error_code& code, bool inPlace)
    : Error(std::move(doing), {file.Path().string(), {}, {}},
            (inPlace ? "it was written, but its folder could not be flushed to the disk: " : "") + ReasonOf(code)),
      code_(code),
      inPlace_(inPlace) {}

HostFileError::HostFileError(std::string doing, const HostPlace& file, int code)
    : HostFileError(std::move(doing), file, SystemCode(code)) {}

bool HostFileError::IsReadOnly() const {
  return ForbidsWriting(ErrnoOf(code_));
}

FileState StateOf(const HostPlace& file) {
  const std::optional<struct stat> info = StatPlace(file);
  if (!info) return {};
  return {info->st_dev, info->st_ino, static_cast<std::uint64_t>(info->st_size), info->st_mtim.tv_sec,
          info->st_mtim.tv_nsec};
}

std::string HiveStamp(const HostPlace& hive) try {
  std::string block(kStampEnd, '\0');
  if (OpenHostFile(hive, {})->Read(block) < block.size()) return "none";
  std::string digits;
  for (std::size_t at = kStampAt; at < kStampEnd; ++at) {
    std::array<char, 3> byte = {};
    std::snprintf(byte.data(), byte.size(), "%02x", static_cast<unsigned char>(block[at]));
    digits += byte.data();
  }
  return digits;
} catch (const Error&) {
  return "none";
}

Bytes ReadHostFile(const HostPlace& file, const std::string& doing) try {
  const HostFd fd = OpenForReading(file);
  struct stat info = {};
  if (fstat(fd.Get(), &info) != 0) ThrowErrno(errno);
  if (!S_ISREG(info.st_mode)) ThrowFault(HostFault::NotOrdinary);
  if (static_cast<std::uint64_t>(info.st_size) > kMaxFileBytes) {
    throw Error(doing, {file.Path().string(), {}, {}}, "it is larger than 2 GB, and no hive or log has more");
  }
  Bytes bytes(static_cast<std::size_t>(info.st_size));
  if (ReadUpTo(fd.Get(), {reinterpret_cast<char*>(bytes.data()), bytes.size()}) < bytes.size()) {
    throw Error(doing, {file.Path().string(), {}, {}}, "it became shorter while it was read");
  }
  return bytes;
} catch (const std::system_error& error) {
  throw HostFileError(doing, file, error.code());
}

void ReplaceHostFile(const HostPlace& file, ByteView bytes, const std::string& doing, const HostPlace& like) {
  try {
    NewFile replacement(file);
    CopyFileAttributes(like, replacement.Fd());
    replacement.Write(AsText(bytes));
    replacement.Commit();
  } catch (const FolderFlushError& error) {
    throw HostFileError(doing, file, error.code(), true);
  } catch (const std::system_error& error) {
    throw HostFileError(doing, file, error.code());
  }
}

HostPlace Beside(const HostPlace& file, const char* suffix) {
  return file.Folder().Join(file.Name() + suffix);
}

void MoveIntoPlace(const HostMove& move, const std::string& doing) try {
  const OpenPlace target = OpenFolderOf(move.to);
  const int folder = target.folder.Get();
  if (renameat(folder, move.from.Name().c_str(), folder, target.name.c_str()) != 0) ThrowErrno(errno);
  FlushFolder(folder);
} catch (const FolderFlushError& error) {
  throw HostFileError(doing, move.to, error.code(), true);
} catch (const std::system_error& error) {
  throw HostFileError(doing, move.to, error.code());
}

bool IsOrdinaryEntry(const HostPlace& file) try {
  const OpenPlace entry = OpenFolderOf(file);
  struct stat info = {};
  return fstatat(entry.folder.Get(), entry.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(info.st_mode);
} catch (const std::system_error&) {
  return false;
}

bool RemoveEntry(const HostPlace& file) noexcept try {
  const OpenPlace entry = OpenFolderOf(file);
  return unlinkat(entry.folder.Get(), entry.name.c_str(), 0) == 0;
} catch (const std::exception&) {
  return false;
}

bool KeepBeside(const HostPlace& file, const HostPlace& kept, KeepHow how) try {
  if (StateOf(kept) != FileState{}) return false;
  if (how == KeepHow::Copy || !LinkBeside(OpenFolderOf(file), OpenFolderOf(kept))) KeepCopy(file, kept);
  return true;
} catch (const std::system_error& error) {
  throw HostFileError(kKeeping, file, error.code());
}

bool CanWriteFolder(const HostPlace& place) try {
  const HostFd folder = OpenFolder(place);
  if (HostFd(openat(folder.Get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600))) return true;
  if (ForbidsWriting(errno)) return false;
  // The file system does not know files without a name.
  struct statvfs info = {};
  if (fstatvfs(folder.Get(), &info) != 0 || (info.f_flag & ST_RDONLY) != 0) return false;
  return faccessat(folder.Get(), ".", W_OK | X_OK, AT_EACCESS) == 0;
} catch (const std::system_error&) {
  return false;
}

bool CanReplaceFile(const HostPlace& file) try {
  const OpenPlace entry = OpenFolderOf(file);
  const int noFollow = file.IsBeneathDrive() ? O_NOFOLLOW : 0;
  const HostFd fd(openat(entry.folder.Get(), entry.name.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | noFollow));
  if (!fd) ThrowErrno(errno);
  return CanWriteFolder(file.Folder());
} catch (const std::system_error& failure) {
  return MayPass(failure.code());
}

}  // namespace quillbox
