// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers as the settings windows show and accept them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

/// Shown for a number that turns something off.
inline constexpr const char* kOff = "Off";

/// Parses a decimal number, with "." before its decimal places and blanks around it allowed. Nothing for other texts.
std::optional<double> NumberFromText(std::string_view text);

/// `number` rounded, halves away from zero; nothing when 32 bits cannot hold the result.
std::optional<std::int32_t> WholeNumber(double number);

/// Milliseconds as minutes with as many decimal places as they need; "-1" for a negative number.
std::string MinutesText(std::int32_t milliseconds);

}  // namespace quillbox
