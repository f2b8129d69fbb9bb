// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/system_text.h"

#include "text/unicode.h"

namespace quillbox {

std::wstring WideText(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  return {units.begin(), units.end()};
}

std::string InnerText(std::wstring_view text) {
  return ToUtf8(std::u16string(text.begin(), text.end()));
}

}  // namespace quillbox
