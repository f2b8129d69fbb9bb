// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_file.h"

#include "host/host_fault.h"
#include "host/win32/host_io.h"
#include "host/win32/open_entry.h"
#include "host/win32/win32.h"

namespace quillbox {

HostFile HostFile::Open(const HostPath& path) {
  return {OrThrow(OpenThere(path, {}, Links::Follow)), path.Name()};
}

EntryInfo HostFile::Info() const {
  return InfoOfHandle(Raw(handle_));
}

std::size_t HostFile::Read(std::span<char> buffer) const {
  return ReadUpTo(handle_, buffer);
}

void HostFile::GoTo(std::uint64_t offset) const {
  LARGE_INTEGER to = {};
  to.QuadPart = static_cast<LONGLONG>(offset);
  if (!SetFilePointerEx(Raw(handle_), to, nullptr, FILE_BEGIN)) ThrowLast();
}

std::size_t HostFile::ReadAt(std::uint64_t offset, std::span<char> buffer) const {
  return ReadUpToAt(handle_, offset, buffer);
}

std::size_t HostFile::ReadOnceAt(std::uint64_t offset, std::span<char> buffer) const {
  return ReadOnce(handle_, offset, buffer);
}

// The system decides it when a file is opened, and reads ahead only where it finds that reads follow each other.
void HostFile::StopReadingAhead() const {}

}  // namespace quillbox
