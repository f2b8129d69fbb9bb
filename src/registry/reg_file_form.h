// SPDX-License-Identifier: GPL-3.0-or-later
// What the writer and the reader of registry files must agree on: the first lines, and the value types that are not
// simply shown as the bytes they are.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillbox {

inline constexpr std::string_view kRegedit4Header = "REGEDIT4";
inline constexpr std::string_view kUnicode5Header = "Windows Registry Editor Version 5.00";
inline constexpr std::string_view kUtf16Mark = "\xFF\xFE";
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

inline constexpr std::uint32_t kRegSz = 1;
inline constexpr std::uint32_t kRegExpandSz = 2;
inline constexpr std::uint32_t kRegBinary = 3;
inline constexpr std::uint32_t kRegDword = 4;
inline constexpr std::uint32_t kRegMultiSz = 7;

/// True for the types whose hex digits show UTF-16 text in the Unicode form and 8-bit text in the 8-bit form.
constexpr bool IsTextInHex(std::uint32_t type) {
  return type == kRegExpandSz || type == kRegMultiSz;
}

}  // namespace quillbox
