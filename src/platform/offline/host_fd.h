// An open file of the host that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace quillbox {

/// An open file descriptor, or none. Closes itself.
class HostFd {
 public:
  HostFd() = default;
  explicit HostFd(int fd) : fd_(fd) {}
  HostFd(HostFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  HostFd& operator=(HostFd&& other) noexcept {
    if (this != &other) {
      Close();
      fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
  }
  ~HostFd() { Close(); }

  explicit operator bool() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  /// Gives the descriptor away; the caller closes it.
  int Release() { return std::exchange(fd_, -1); }
  void Close() {
    if (fd_ >= 0) close(std::exchange(fd_, -1));
  }

 private:
  int fd_ = -1;
};

}  // namespace quillbox
