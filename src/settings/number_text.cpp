// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "text/win_path.h"

namespace quillbox {
namespace {

constexpr double kMillisecondsPerMinute = 60000;
constexpr int kShownDigits = 15;

}  // namespace

std::optional<double> NumberFromText(std::string_view text) {
  const std::string trimmed = Trim(std::string(text));
  const char* end = trimmed.data() + trimmed.size();
  double number = 0;
  const auto parsed = std::from_chars(trimmed.data(), end, number);
  if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::optional<std::int32_t> WholeNumber(double number) {
  const double whole = std::round(number);
  if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(whole);
}

std::string MinutesText(std::int32_t milliseconds) {
  if (milliseconds < 0) return "-1";
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), milliseconds / kMillisecondsPerMinute,
                                 std::chars_format::general, kShownDigits);
  return {digits.data(), end.ptr};
}

}  // namespace quillbox
