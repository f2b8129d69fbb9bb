// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/host_fault.h"
#include "host/posix/host_io.h"
#include "host/posix/posix.h"

namespace quillbox {

HostFile HostFile::Open(const HostPath& path) {
  HostHandle handle(open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!handle) ThrowErrno(errno);
  return {std::move(handle), path.Name()};
}

EntryInfo HostFile::Info() const {
  return InfoOfStat(StatOf(handle_));
}

std::size_t HostFile::Read(std::span<char> buffer) const {
  return ReadUpTo(handle_, buffer);
}

void HostFile::GoTo(std::uint64_t offset) const {
  if (lseek(Fd(handle_), static_cast<off_t>(offset), SEEK_SET) < 0) ThrowErrno(errno);
}

std::size_t HostFile::ReadAt(std::uint64_t offset, std::span<char> buffer) const {
  return ReadUpToAt(handle_, offset, buffer);
}

std::size_t HostFile::ReadOnceAt(std::uint64_t offset, std::span<char> buffer) const {
  for (;;) {
    const ssize_t got = pread(Fd(handle_), buffer.data(), buffer.size(), static_cast<off_t>(offset));
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EINTR) ThrowErrno(errno);
  }
}

void HostFile::StopReadingAhead() const {
  posix_fadvise(Fd(handle_), 0, 0, POSIX_FADV_RANDOM);
}

}  // namespace quillbox
