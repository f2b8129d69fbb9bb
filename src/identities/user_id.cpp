// SPDX-License-Identifier: GPL-3.0-or-later
#include "identities/user_id.h"

#include <charconv>

namespace quillbox {
namespace {

constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

}  // namespace

bool IsUserId(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    if (kForm[i] == 'x' ? !IsHexDigit(text[i]) : text[i] != kForm[i]) return false;
  }
  return true;
}

std::uint32_t DirectoryNumber(std::string_view userId) {
  constexpr std::size_t kDigits = 8;
  std::uint32_t number = 0;
  const std::string_view digits = userId.substr(1, kDigits);
  std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return number;
}

}  // namespace quillbox
