// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/message_text.h"

#include <algorithm>
#include <iterator>

#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::size_t kShownBegin = 260;
constexpr std::size_t kShownEnd = 100;

constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kControlPictures = 0x2400;
constexpr char16_t kPictureOfDelete = 0x2421;

/// Units that would end a line, turn the direction of what follows, or be shown as nothing.
struct UnitRange {
  char16_t first;
  char16_t last;
};
constexpr UnitRange kNotShown[] = {
    {0x80, 0x9F}, {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

bool IsHigh(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLow(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

char16_t Shown(char16_t unit) {
  if (unit < 0x20) return static_cast<char16_t>(kControlPictures + unit);
  if (unit == 0x7F) return kPictureOfDelete;
  const bool hidden = std::any_of(std::begin(kNotShown), std::end(kNotShown),
                                  [unit](const UnitRange& range) { return unit >= range.first && unit <= range.last; });
  return hidden ? kReplacement : unit;
}

}  // namespace

std::string ShortName(std::string_view name) {
  if (name.size() <= kLongestName) return std::string(name);
  const std::u16string units = ToUtf16(name);
  if (units.size() <= kLongestName) return std::string(name);
  std::size_t begin = kShownBegin;
  std::size_t end = units.size() - kShownEnd;
  if (IsLow(units[begin])) --begin;
  if (IsLow(units[end])) ++end;
  const std::u16string_view all = units;
  return ToUtf8(all.substr(0, begin)) + "…" + ToUtf8(all.substr(end)) + " [" + std::to_string(units.size()) +
         " characters]";
}

std::string OneLine(std::string_view text) {
  const bool isPlain = std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
  if (isPlain) return std::string(text);
  std::u16string units = ToUtf16(text);
  for (std::size_t at = 0; at < units.size(); ++at) {
    if (IsHigh(units[at]) && at + 1 < units.size() && IsLow(units[at + 1])) {
      ++at;
    } else {
      units[at] = IsHigh(units[at]) || IsLow(units[at]) ? kReplacement : Shown(units[at]);
    }
  }
  return ToUtf8(units);
}

std::string SeveralLines(std::string_view text) {
  std::string shown;
  for (std::size_t start = 0;;) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    shown += OneLine(text.substr(start, end - start));
    if (end == text.size()) return shown;
    shown += '\n';
    start = end + 1;
  }
}

}  // namespace quillbox
