// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/reg_value.h"

#include <charconv>

#include "text/error.h"
#include "text/win_path.h"

namespace quillbox {

std::string RegValue::AsText() const {
  if (const std::string* text = Text()) return *text;
  if (const std::int32_t* number = Number()) return std::to_string(*number);
  if (Data()) throw Error("reading a registry value as text", {}, "it holds bytes");
  return {};
}

std::optional<std::int32_t> RegValue::AsNumber() const {
  if (const std::int32_t* number = Number()) return *number;
  const std::string* text = Text();
  if (!text) return std::nullopt;
  const std::string digits = Trim(*text);
  std::int32_t number = 0;
  const char* end = digits.data() + digits.size();
  const auto parsed = std::from_chars(digits.data(), end, number);
  if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
  return number;
}

}  // namespace quillbox
