// Files of the host at the level of its system calls: descriptors that close themselves, files read whole, and files
// written whole or not at all. Failures are std::system_error; callers know the name that a person would recognise.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "platform/status.h"

namespace quillbox {

/// An open file descriptor, or none. Closes itself.
class HostFd {
 public:
  HostFd() = default;
  explicit HostFd(int fd) : fd_(fd) {}
  HostFd(HostFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  HostFd& operator=(HostFd&& other) noexcept;
  ~HostFd() { Close(); }

  explicit operator bool() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  void Close();

 private:
  int fd_ = -1;
};

/// Throws std::system_error for an errno.
[[noreturn]] void ThrowErrno(int code);

/// A file in the making: written under a temporary name beside its target, and in the target's place with Commit(),
/// after a flush to the disk. Destroyed before that, it leaves what was there. A target that is a symbolic link is
/// followed; the permissions of a file that is replaced are kept. Every call throws std::system_error when it fails.
class NewFile {
 public:
  explicit NewFile(std::filesystem::path target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  int Fd() const { return fd_.Get(); }
  void Write(std::string_view bytes);
  void SetTimes(const timespec& accessed, const timespec& modified);
  void Commit();

 private:
  std::filesystem::path target_;
  std::string temporary_;  ///< empty when there is none (any more)
  HostFd fd_;
};

/// True for a device, pipe or socket, which is written to and never replaced.
bool IsStream(const std::filesystem::path& file);
/// Writes all of `bytes`. Throws std::system_error.
void WriteAll(int fd, std::string_view bytes);

/// Removes what killed programs have left in a folder: temporary files of NewFile that nobody is writing any more.
void RemoveAbandonedFiles(const std::filesystem::path& folder);

/// A whole file. Throws std::system_error.
std::string ReadWholeFile(const std::filesystem::path& file);

/// A host time as FILETIME (100 ns since 1601 UTC); 0 for times before.
std::uint64_t ToFileTime(const timespec& time);

/// The platform's status for an errno.
Status StatusOfErrno(int code);

}  // namespace quillbox
