// SPDX-License-Identifier: GPL-3.0-or-later
// Names as hives store them: how they are read, compared, and written. Comparisons work on the stored bytes, because
// every search of a subkey list compares many names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "text/byte_order.h"
#include "text/unicode.h"

namespace quillbox {

/// A name in a cell: one byte a character (the first 256 characters of Unicode), or UTF-16.
struct StoredName {
  const std::uint8_t* bytes = nullptr;
  std::size_t units = 0;
  bool oneByte = false;

  char16_t Unit(std::size_t index) const { return oneByte ? bytes[index] : Load16(bytes + index * 2); }
};

/// A name to look for or to store.
struct NewName {
  explicit NewName(std::string_view text);

  std::u16string units;
  std::u16string upper;
  bool oneByte;  ///< true when every unit is below 256

  std::size_t StoredSize() const { return oneByte ? units.size() : units.size() * 2; }
  void Store(std::uint8_t* at) const;
};

std::string NameText(const StoredName& name);
std::u16string UpperName(const StoredName& name);
/// In the order of subkey lists: <0, 0, >0. `upper` is in upper case already.
int CompareName(const StoredName& name, std::u16string_view upper);
int CompareName(const StoredName& a, const StoredName& b);

/// What an `lh` list holds with each key.
std::uint32_t NameHash(std::u16string_view upper);
/// What an `lf` list holds with each key.
std::uint32_t NameHint(const StoredName& name);

}  // namespace quillbox
