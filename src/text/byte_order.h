// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers from and to bytes, low byte first, as Windows' files have them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "text/unicode.h"

namespace quillbox {

inline std::uint16_t Load16(const std::uint8_t* at) {
  return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}
inline std::uint32_t Load32(const std::uint8_t* at) {
  return static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8 |
         static_cast<std::uint32_t>(at[2]) << 16 | static_cast<std::uint32_t>(at[3]) << 24;
}
inline std::uint64_t Load64(const std::uint8_t* at) {
  return Load32(at) | static_cast<std::uint64_t>(Load32(at + 4)) << 32;
}
inline void Store16(std::uint8_t* at, std::uint16_t number) {
  at[0] = static_cast<std::uint8_t>(number);
  at[1] = static_cast<std::uint8_t>(number >> 8);
}
inline void Store32(std::uint8_t* at, std::uint32_t number) {
  Store16(at, static_cast<std::uint16_t>(number));
  Store16(at + 2, static_cast<std::uint16_t>(number >> 16));
}
inline void Store64(std::uint8_t* at, std::uint64_t number) {
  Store32(at, static_cast<std::uint32_t>(number));
  Store32(at + 4, static_cast<std::uint32_t>(number >> 32));
}

/// Appends the low `Size` bytes of a number.
template <std::size_t Size>
void AppendNumber(Bytes& bytes, std::uint64_t number) {
  static_assert(Size <= 8);
  for (std::size_t at = 0; at < Size; ++at) bytes.push_back(static_cast<std::uint8_t>(number >> (8 * at)));
}

/// The four bytes of a number.
inline Bytes NumberBytes(std::uint32_t number) {
  Bytes bytes;
  AppendNumber<4>(bytes, number);
  return bytes;
}

}  // namespace quillbox
