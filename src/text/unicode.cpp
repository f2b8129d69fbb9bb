// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/unicode.h"

#include <algorithm>
#include <array>

#include "text/upper_case_table.h"

namespace quillbox {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

char32_t JoinSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

struct Decoded {
  char32_t codePoint = kReplacement;
  std::size_t length = 0;  // 0: no character begins here
};

// The character at `position`, surrogates in WTF-8 form included.
Decoded DecodeAt(std::string_view text, std::size_t position) {
  struct Form {
    unsigned char mask, lead;
    char32_t least;
  };
  static constexpr Form kForms[] = {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
  const auto first = static_cast<unsigned char>(text[position]);
  for (std::size_t extra = 0; extra < std::size(kForms); ++extra) {
    const Form& form = kForms[extra];
    if ((first & form.mask) != form.lead) continue;
    if (text.size() - position <= extra) return {};
    char32_t codePoint = first & static_cast<unsigned char>(~form.mask);
    for (std::size_t i = 1; i <= extra; ++i) {
      const auto next = static_cast<unsigned char>(text[position + i]);
      if ((next & 0xC0) != 0x80) return {};
      codePoint = (codePoint << 6) | (next & 0x3Fu);
    }
    if (codePoint < form.least || codePoint > 0x10FFFF) return {};
    return {codePoint, extra + 1};
  }
  return {};
}

using UpperCaseLookup = std::array<char16_t, 0x10000>;

UpperCaseLookup MakeUpperCaseLookup() {
  UpperCaseLookup lookup{};
  for (std::size_t i = 0; i < lookup.size(); ++i) lookup[i] = static_cast<char16_t>(i);
  for (const UpperCaseRange& range : UpperCaseRanges()) {
    for (unsigned unit = range.first; unit <= range.last; unit += range.stride) {
      lookup[unit] = static_cast<char16_t>(static_cast<int>(unit) + range.delta);
    }
  }
  return lookup;
}

}  // namespace

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void AppendUtf8(std::string& text, char32_t codePoint) {
  if (codePoint > 0x10FFFF) codePoint = kReplacement;
  const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (codePoint < 0x80) {
    append(codePoint);
    return;
  }
  if (codePoint < 0x800) {
    append(0xC0 | (codePoint >> 6));
  } else {
    if (codePoint < 0x10000) {
      append(0xE0 | (codePoint >> 12));
    } else {
      append(0xF0 | (codePoint >> 18));
      append(0x80 | ((codePoint >> 12) & 0x3F));
    }
    append(0x80 | ((codePoint >> 6) & 0x3F));
  }
  append(0x80 | (codePoint & 0x3F));
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const Decoded decoded = DecodeAt(text, position);
    position += std::max<std::size_t>(decoded.length, 1);
    if (decoded.codePoint < 0x10000) {
      units += static_cast<char16_t>(decoded.codePoint);
    } else {
      units += static_cast<char16_t>(0xD800 + ((decoded.codePoint - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((decoded.codePoint - 0x10000) & 0x3FF));
    }
  }
  return units;
}

std::string ToUtf8(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (IsHighSurrogate(units[i]) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
      AppendUtf8(text, JoinSurrogates(units[i], units[i + 1]));
      ++i;
    } else {
      AppendUtf8(text, units[i]);
    }
  }
  return text;
}

bool IsInnerText(std::string_view text) {
  bool afterHigh = false;
  for (std::size_t position = 0; position < text.size();) {
    const Decoded decoded = DecodeAt(text, position);
    if (decoded.length == 0) return false;
    // Two halves side by side would come back from UTF-16 as one character.
    if (afterHigh && IsLowSurrogate(decoded.codePoint)) return false;
    afterHigh = IsHighSurrogate(decoded.codePoint);
    position += decoded.length;
  }
  return true;
}

Bytes Utf16Bytes(std::u16string_view units) {
  Bytes bytes;
  bytes.reserve(units.size() * 2);
  for (const char16_t unit : units) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

std::u16string Utf16FromBytes(ByteView bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(bytes[i] | (bytes[i + 1] << 8));
  }
  return units;
}

char16_t UpperCase(char16_t unit) {
  static const UpperCaseLookup lookup = MakeUpperCaseLookup();
  return lookup[unit];
}

std::u16string UpperCase(std::u16string units) {
  std::transform(units.begin(), units.end(), units.begin(), [](char16_t unit) { return UpperCase(unit); });
  return units;
}

std::string UpperCase(std::string_view text) {
  if (!IsAscii(text)) return ToUtf8(UpperCase(ToUtf16(text)));
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), AsciiUpper);
  return upper;
}

int CompareIgnoreCase(std::u16string_view a, std::u16string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = static_cast<int>(UpperCase(a[i])) - static_cast<int>(UpperCase(b[i]));
    if (difference != 0) return difference;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool EqualIgnoreCase(std::string_view a, std::string_view b) {
  if (IsAscii(a) && IsAscii(b)) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return AsciiUpper(x) == AsciiUpper(y); });
  }
  return CompareIgnoreCase(ToUtf16(a), ToUtf16(b)) == 0;
}

bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix) {
  const std::u16string units = ToUtf16(text);
  const std::u16string start = ToUtf16(prefix);
  return units.size() >= start.size() &&
         CompareIgnoreCase(std::u16string_view(units).substr(0, start.size()), start) == 0;
}

}  // namespace quillbox
