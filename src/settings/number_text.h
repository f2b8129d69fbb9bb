// Numbers as the settings windows show them and take them from a person.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillbox {

/// What is shown for a number that turns something off.
inline constexpr const char* kOff = "Off";

/// The number that `text` is, with a point before decimal places and blanks around it; nothing for any other text.
std::optional<double> NumberFromText(std::string_view text);

/// `number` as a whole one, halves away from zero; nothing where 32 bits cannot hold it.
std::optional<std::int32_t> WholeNumber(double number);

/// Milliseconds as minutes with as many decimal places as they need; "-1" for a negative number.
std::string MinutesText(std::int32_t milliseconds);

}  // namespace quillbox
