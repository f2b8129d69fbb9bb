// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/host_io.h"

#include <algorithm>

#include "host/host_fault.h"
#include "host/win32/win32.h"

namespace quillbox {

namespace {

/// Network drives refuse longer ones in one call.
constexpr std::size_t kMostInOneCall = std::size_t{16} * 1024 * 1024;
/// The offset that means the end of a file.
constexpr std::uint64_t kEnd = ~std::uint64_t{0};

OVERLAPPED PlaceAt(std::uint64_t offset) {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

DWORD LengthOf(std::size_t size) {
  return static_cast<DWORD>(std::min(size, kMostInOneCall));
}

}  // namespace

std::size_t ReadOnce(const HostHandle& file, std::optional<std::uint64_t> offset, std::span<char> buffer) {
  OVERLAPPED place = PlaceAt(offset.value_or(0));
  DWORD got = 0;
  if (ReadFile(Raw(file), buffer.data(), LengthOf(buffer.size()), &got, offset ? &place : nullptr)) return got;
  const DWORD error = GetLastError();
  if (error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE) return 0;
  ThrowFault(CodeOf(error));
}

std::size_t ReadUpTo(const HostHandle& file, std::span<char> buffer) {
  std::size_t length = 0;
  while (length < buffer.size()) {
    const std::size_t got = ReadOnce(file, std::nullopt, buffer.subspan(length));
    if (got == 0) break;
    length += got;
  }
  return length;
}

std::size_t ReadUpToAt(const HostHandle& file, std::uint64_t offset, std::span<char> buffer) {
  std::size_t length = 0;
  while (length < buffer.size()) {
    const std::size_t got = ReadOnce(file, offset + length, buffer.subspan(length));
    if (got == 0) break;
    length += got;
  }
  return length;
}

void WriteAll(const HostHandle& file, std::string_view bytes, WriteAt at) {
  while (!bytes.empty()) {
    OVERLAPPED place = PlaceAt(kEnd);
    DWORD written = 0;
    if (!WriteFile(Raw(file), bytes.data(), LengthOf(bytes.size()), &written, at == WriteAt::End ? &place : nullptr)) {
      ThrowLast();
    }
    if (written == 0) ThrowFault(SystemCode(std::errc::io_error));
    bytes.remove_prefix(written);
  }
}

}  // namespace quillbox
