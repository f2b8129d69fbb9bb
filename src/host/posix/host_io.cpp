// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/posix/host_io.h"

#include <unistd.h>

#include <cerrno>

#include "host/host_fault.h"
#include "host/posix/posix.h"

namespace quillbox {

namespace {

/// Fills `buffer` with `readSome`, which is given what is still to be filled.
template <class ReadSome>
std::size_t Fill(std::span<char> buffer, const ReadSome& readSome) {
  std::size_t length = 0;
  while (length < buffer.size()) {
    const ssize_t got = readSome(buffer.subspan(length), length);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) ThrowErrno(errno);
    if (got == 0) break;
    length += static_cast<std::size_t>(got);
  }
  return length;
}

}  // namespace

std::size_t ReadUpTo(const HostHandle& file, std::span<char> buffer) {
  return Fill(buffer,
              [fd = Fd(file)](std::span<char> rest, std::size_t) { return read(fd, rest.data(), rest.size()); });
}

std::size_t ReadUpToAt(const HostHandle& file, std::uint64_t offset, std::span<char> buffer) {
  return Fill(buffer, [fd = Fd(file), offset](std::span<char> rest, std::size_t done) {
    return pread(fd, rest.data(), rest.size(), static_cast<off_t>(offset + done));
  });
}

void WriteAll(const HostHandle& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(Fd(file), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) ThrowErrno(written < 0 ? errno : EIO);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace quillbox
