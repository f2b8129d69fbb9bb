// SPDX-License-Identifier: GPL-3.0-or-later
// The result of a registry read, and the value of a write: nothing, a text, a number or bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "text/unicode.h"

namespace quillbox {

class RegValue {
 public:
  RegValue() = default;
  RegValue(std::string text) : value_(std::move(text)) {}
  RegValue(const char* text) : value_(std::string(text)) {}
  RegValue(std::int32_t number) : value_(number) {}
  RegValue(Bytes bytes) : value_(std::move(bytes)) {}

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  const std::string* Text() const { return std::get_if<std::string>(&value_); }
  const std::int32_t* Number() const { return std::get_if<std::int32_t>(&value_); }
  const Bytes* Data() const { return std::get_if<Bytes>(&value_); }

  /// In text context: a number shows as its decimal digits, Empty as the empty text. Throws Error for bytes, which
  /// only their reader can turn into text.
  std::string AsText() const;
  /// As a 32-bit signed number: a number itself, a text of decimal digits its number; nothing for anything else.
  std::optional<std::int32_t> AsNumber() const;

  bool operator==(const RegValue&) const = default;

 private:
  std::variant<std::monostate, std::string, std::int32_t, Bytes> value_;
};

}  // namespace quillbox
