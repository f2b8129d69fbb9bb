#include "platform/offline/host_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/offline/folder_names.h"
#include "platform/offline/host_io.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kReadChunk = std::size_t{256} * 1024;
constexpr mode_t kAllModeBits = 07777;
constexpr mode_t kNewFileMode = 0666;
constexpr std::string_view kTemporaryName = ".quillbox-";
constexpr std::size_t kTemporaryEnd = 6;  // random letters after it
constexpr int kMaxNameAttempts = 100;

mode_t ProcessUmask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

/// A target anywhere on the host that is a link: what it leads to.
HostPlace FollowHostLink(const HostPlace& target) {
  std::error_code code;
  if (target.IsBeneathDrive() || !fs::is_symlink(fs::symlink_status(target.Path(), code))) return target;
  const fs::path led = fs::weakly_canonical(target.Path(), code);
  return code ? target : HostPlace::Anywhere(led);
}

std::string RandomTemporaryName() {
  static constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  std::array<unsigned char, kTemporaryEnd> bytes = {};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) ThrowErrno(errno);
  std::string name(kTemporaryName);
  for (const unsigned char byte : bytes) name += kLetters[byte % kLetters.size()];
  return name;
}

/// What `target` replaces, or nothing; refuses what cannot be replaced by a file.
std::optional<struct stat> ReplacedBy(const HostPlace& place, const OpenPlace& target) {
  struct stat existing = {};
  if (fstatat(target.folder.Get(), target.name.c_str(), &existing, target.follow) != 0) {
    if (errno != ENOENT) ThrowErrno(errno);
    return std::nullopt;
  }
  if (S_ISLNK(existing.st_mode)) ThrowAbout(place, ELOOP, LastStep::NoLink);
  if (S_ISDIR(existing.st_mode)) ThrowErrno(EISDIR);
  // Replacing a device, pipe or socket by a file would take it away from everybody.
  if (!S_ISREG(existing.st_mode)) ThrowFault(HostFault::NotOrdinary);
  if (faccessat(target.folder.Get(), target.name.c_str(), W_OK, AT_EACCESS) != 0) ThrowErrno(errno);
  return existing;
}

}  // namespace

void FlushFolder(int folder) {
  if (fsync(folder) == 0) return;
  // A folder that may not be read is open for its names only (EBADF).
  if (errno == EINVAL || errno == ENOTSUP || errno == EBADF || errno == ENOSYS) return;
  throw FolderFlushError(SystemCode(errno));
}

NewFile::NewFile(const HostPlace& given) {
  const HostPlace place = FollowHostLink(given);
  target_ = OpenFolderOf(place);
  const std::optional<struct stat> replaced = ReplacedBy(place, target_);

  for (int attempt = 0; !fd_ && attempt < kMaxNameAttempts; ++attempt) {
    temporary_ = RandomTemporaryName();
    fd_ = HostFd(openat(target_.folder.Get(), temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                        S_IRUSR | S_IWUSR));
    if (!fd_ && errno != EEXIST) break;
  }
  if (!fd_) {
    const int code = errno;
    temporary_.clear();
    ThrowErrno(code);
  }
  // The lock lets RemoveAbandonedFiles see that the file is in use.
  flock(fd_.Get(), LOCK_EX | LOCK_NB);
  // File systems without modes refuse this.
  static_cast<void>(fchmod(fd_.Get(), replaced ? replaced->st_mode & kAllModeBits : kNewFileMode & ~ProcessUmask()));
}

NewFile::~NewFile() {
  if (!temporary_.empty()) unlinkat(target_.folder.Get(), temporary_.c_str(), 0);
}

void NewFile::Write(std::string_view bytes) {
  flushed_ = false;
  WriteAll(fd_.Get(), bytes);
}

void NewFile::SetTimes(const timespec& accessed, const timespec& modified) {
  flushed_ = false;
  const std::array<timespec, 2> times = {accessed, modified};
  if (futimens(fd_.Get(), times.data()) != 0) ThrowErrno(errno);
}

void NewFile::Flush() {
  if (flushed_) return;
  if (fsync(fd_.Get()) != 0) ThrowErrno(errno);
  flushed_ = true;
}

void NewFile::Commit() {
  Flush();
  const int folder = target_.folder.Get();
  if (renameat(folder, temporary_.c_str(), folder, target_.name.c_str()) != 0) ThrowErrno(errno);
  temporary_.clear();
  FlushFolder(folder);
}

bool IsStream(const HostPlace& file) {
  if (file.IsBeneathDrive()) return false;
  const std::optional<struct stat> existing = StatPlace(file);
  return existing && !S_ISREG(existing->st_mode) && !S_ISDIR(existing->st_mode);
}

void RemoveAbandonedFiles(int folder) {
  EachName(folder, [folder](const char* stored) {
    const std::string_view name = stored;
    if (name.size() != kTemporaryName.size() + kTemporaryEnd || !name.starts_with(kTemporaryName)) return false;
    struct stat info = {};
    if (fstatat(folder, stored, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(info.st_mode)) return false;
    const HostFd fd(openat(folder, stored, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (fd && flock(fd.Get(), LOCK_EX | LOCK_NB) == 0) unlinkat(folder, stored, 0);
    return false;
  });
}

void RemoveAbandonedFiles(const HostPlace& folder) {
  try {
    RemoveAbandonedFiles(OpenFolder(folder).Get());
  } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): nothing was left where there is no folder
  }
}

std::string ReadWholeFile(const HostPlace& file) {
  const HostFd fd = OpenForReading(file);
  struct stat info = {};
  if (fstat(fd.Get(), &info) != 0) ThrowErrno(errno);
  if (S_ISDIR(info.st_mode)) ThrowErrno(EISDIR);

  std::string content;
  content.reserve(static_cast<std::size_t>(info.st_size));
  for (;;) {
    const std::size_t length = content.size();
    content.resize(length + kReadChunk);
    const std::size_t got = ReadUpTo(fd.Get(), std::span(content).subspan(length));
    content.resize(length + got);
    if (got < kReadChunk) return content;
  }
}

}  // namespace quillbox
