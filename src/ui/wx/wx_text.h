// The way between the program's inner text and the toolkit's strings.
#pragma once

#include <wx/string.h>

#include <string>

#include "text/unicode.h"

namespace quillbox {

/// `text` for showing. What the toolkit cannot hold (a lone surrogate) is shown as U+FFFD.
inline wxString ToWx(const std::string& text) {
  std::u16string units = ToUtf16(text);
  const auto isHigh = [](char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
  const auto isLow = [](char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (isHigh(units[i]) && i + 1 < units.size() && isLow(units[i + 1])) {
      ++i;
    } else if (isHigh(units[i]) || isLow(units[i])) {
      units[i] = 0xFFFD;
    }
  }
  return wxString::FromUTF8(ToUtf8(units));
}

inline std::string FromWx(const wxString& text) {
  return text.utf8_string();
}

}  // namespace quillbox
