#include "platform/offline/host_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kReadChunk = std::size_t{256} * 1024;
constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
constexpr mode_t kAllModeBits = 07777;
constexpr mode_t kNewFileMode = 0666;
constexpr std::string_view kTemporaryName = ".quillbox-";
constexpr std::string_view kTemporaryEnd = "XXXXXX";

mode_t ProcessUmask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

fs::path FollowLink(fs::path target) {
  std::error_code code;
  if (!fs::is_symlink(fs::symlink_status(target, code))) return target;
  fs::path led = fs::weakly_canonical(target, code);
  return code ? target : led;
}

void FlushFolder(const fs::path& folder) {
  const HostFd fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some file systems cannot flush a folder; the file is in its place by then.
  if (fd) fsync(fd.Get());
}

}  // namespace

HostFd& HostFd::operator=(HostFd&& other) noexcept {
  if (this != &other) {
    Close();
    fd_ = std::exchange(other.fd_, -1);
  }
  return *this;
}

void HostFd::Close() {
  if (fd_ >= 0) close(std::exchange(fd_, -1));
}

void ThrowErrno(int code) {
  throw std::system_error(code, std::generic_category());
}

NewFile::NewFile(fs::path target) : target_(FollowLink(std::move(target))) {
  struct stat existing = {};
  const bool replaces = stat(target_.c_str(), &existing) == 0;
  if (replaces && S_ISDIR(existing.st_mode)) ThrowErrno(EISDIR);
  // A device, pipe or socket has a place of its own: a file put there would take it away from everybody.
  if (replaces && !S_ISREG(existing.st_mode)) ThrowErrno(ENOTSUP);
  if (replaces && faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) ThrowErrno(errno);

  temporary_ = (target_.parent_path() / (std::string(kTemporaryName) + std::string(kTemporaryEnd))).string();
  fd_ = HostFd(mkostemp(temporary_.data(), O_CLOEXEC));
  if (!fd_) {
    const int code = errno;
    temporary_.clear();
    ThrowErrno(code);
  }
  // The lock tells RemoveAbandonedFiles that the file is in use.
  flock(fd_.Get(), LOCK_EX | LOCK_NB);
  // File systems without modes refuse this, and their files need none.
  static_cast<void>(fchmod(fd_.Get(), replaces ? existing.st_mode & kAllModeBits : kNewFileMode & ~ProcessUmask()));
}

NewFile::~NewFile() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void NewFile::Write(std::string_view bytes) {
  WriteAll(fd_.Get(), bytes);
}

void NewFile::SetTimes(const timespec& accessed, const timespec& modified) {
  const std::array<timespec, 2> times = {accessed, modified};
  if (futimens(fd_.Get(), times.data()) != 0) ThrowErrno(errno);
}

void NewFile::Commit() {
  if (fsync(fd_.Get()) != 0) ThrowErrno(errno);
  if (rename(temporary_.c_str(), target_.c_str()) != 0) ThrowErrno(errno);
  temporary_.clear();
  FlushFolder(target_.parent_path());
}

bool IsStream(const fs::path& file) {
  struct stat existing = {};
  return stat(file.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode) && !S_ISDIR(existing.st_mode);
}

void WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) ThrowErrno(written < 0 ? errno : EIO);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void RemoveAbandonedFiles(const fs::path& folder) {
  std::error_code code;
  for (fs::directory_iterator entry(folder, code), end; !code && entry != end; entry.increment(code)) {
    const std::string name = entry->path().filename().string();
    if (name.size() != kTemporaryName.size() + kTemporaryEnd.size() || !name.starts_with(kTemporaryName)) continue;
    const HostFd fd(open(entry->path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (fd && flock(fd.Get(), LOCK_EX | LOCK_NB) == 0) unlink(entry->path().c_str());
  }
}

std::string ReadWholeFile(const fs::path& file) {
  const HostFd fd(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!fd) ThrowErrno(errno);
  struct stat info = {};
  if (fstat(fd.Get(), &info) != 0) ThrowErrno(errno);
  if (S_ISDIR(info.st_mode)) ThrowErrno(EISDIR);

  std::string content;
  content.reserve(static_cast<std::size_t>(info.st_size));
  for (;;) {
    const std::size_t length = content.size();
    content.resize(length + kReadChunk);
    const ssize_t got = read(fd.Get(), content.data() + length, kReadChunk);
    content.resize(length + (got > 0 ? static_cast<std::size_t>(got) : 0));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) ThrowErrno(errno);
    if (got == 0) return content;
  }
}

std::uint64_t ToFileTime(const timespec& time) {
  const std::int64_t seconds = static_cast<std::int64_t>(time.tv_sec) + kSecondsFrom1601To1970;
  if (seconds < 0) return 0;
  return static_cast<std::uint64_t>(seconds) * 10'000'000 + static_cast<std::uint64_t>(time.tv_nsec) / 100;
}

Status StatusOfErrno(int code) {
  switch (code) {
    case 0:
      return Status::Success;
    case ENOENT:
      return Status::FileNotFound;
    case ENOTDIR:
      return Status::PathNotFound;
    case EEXIST:
      return Status::FileExists;
    case ENOSPC:
    case EDQUOT:
      return Status::DiskFull;
    case EINVAL:
    case EILSEQ:
    case ENAMETOOLONG:
      return Status::InvalidParameter;
    default:
      return Status::AccessDenied;
  }
}

}  // namespace quillbox
