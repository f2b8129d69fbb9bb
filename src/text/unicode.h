// SPDX-License-Identifier: GPL-3.0-or-later
// Conversions between the program's inner text and UTF-16, and Windows' case rule.
//
// Inner text is UTF-8 with one extension: a UTF-16 surrogate without its partner, which registry data may hold, is
// written as the three bytes that its number would have (WTF-8). So any sequence of UTF-16 units survives the way
// in and out unchanged.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillbox {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

/// `text` as UTF-16 units. Bytes that are not UTF-8 become U+FFFD each.
std::u16string ToUtf16(std::string_view text);
/// `units` as inner text; lone surrogates are kept (see above).
std::string ToUtf8(std::u16string_view units);
/// True when `text` is well-formed UTF-8, lone surrogates in WTF-8 form included.
bool IsInnerText(std::string_view text);
/// True when every byte is below 0x80. Such text needs no decoding, and AsciiUpper is all of its upper case.
bool IsAscii(std::string_view text);
inline char AsciiUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
/// One code point as inner text.
void AppendUtf8(std::string& text, char32_t codePoint);

/// UTF-16 units as little-endian bytes, as the registry stores text.
Bytes Utf16Bytes(std::u16string_view units);
/// Little-endian bytes as UTF-16 units; an odd last byte is dropped.
std::u16string Utf16FromBytes(ByteView bytes);

/// Windows' upper case of one UTF-16 unit: simple one-to-one pairs of Unicode 3.2, nothing that depends on a language.
char16_t UpperCase(char16_t unit);
std::u16string UpperCase(std::u16string units);
/// `text` in Windows' upper case.
std::string UpperCase(std::string_view text);
/// Compares as the registry and the file system do: upper-cased, unit by unit. <0, 0, >0.
int CompareIgnoreCase(std::u16string_view a, std::u16string_view b);
bool EqualIgnoreCase(std::string_view a, std::string_view b);
/// True when `text` begins with `prefix` without regard to case.
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);

}  // namespace quillbox
