// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/reparse_point.h"

#include <winioctl.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "host/win32/system_path.h"
#include "text/byte_order.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

// A reparse point: its tag, the size of what follows the header, and for links the places of two names in the bytes
// behind. The name that counts is the first, the other is for showing.
constexpr std::size_t kNamePlace = 8;
constexpr std::size_t kJunctionNames = 16;
constexpr std::size_t kSymbolicLinkNames = 20;  // flags come before

}  // namespace

std::optional<HostPath> TargetOfReparsePoint(std::span<const std::uint8_t> stored) {
  if (stored.size() < kSymbolicLinkNames) return std::nullopt;
  const std::uint32_t tag = Load32(stored.data());
  if (tag != IO_REPARSE_TAG_SYMLINK && tag != IO_REPARSE_TAG_MOUNT_POINT) return std::nullopt;
  const std::size_t names = tag == IO_REPARSE_TAG_SYMLINK ? kSymbolicLinkNames : kJunctionNames;
  const std::size_t begin = names + Load16(stored.data() + kNamePlace);
  const std::size_t length = Load16(stored.data() + kNamePlace + 2);
  if (begin + length > stored.size() || length == 0) return std::nullopt;
  const std::u16string target = Utf16FromBytes(stored.subspan(begin, length));
  return PathOfSystem(std::wstring(target.begin(), target.end()));
}

std::optional<HostPath> TargetOfLink(HANDLE link) {
  std::array<std::uint8_t, MAXIMUM_REPARSE_DATA_BUFFER_SIZE> buffer = {};
  DWORD size = 0;
  if (!DeviceIoControl(link, FSCTL_GET_REPARSE_POINT, nullptr, 0, buffer.data(), static_cast<DWORD>(buffer.size()),
                       &size, nullptr)) {
    return std::nullopt;
  }
  return TargetOfReparsePoint(std::span(buffer).first(size));
}

}  // namespace quillbox
