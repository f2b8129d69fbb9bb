// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_names.h"

#include <algorithm>
#include <array>

namespace quillbox {

namespace {

constexpr std::size_t kTableSize = 256;

std::array<char16_t, kTableSize> MakeUpperTable() {
  std::array<char16_t, kTableSize> table{};
  for (std::size_t unit = 0; unit < kTableSize; ++unit) table[unit] = UpperCase(static_cast<char16_t>(unit));
  return table;
}

char16_t Upper(char16_t unit) {
  static const std::array<char16_t, kTableSize> kTable = MakeUpperTable();
  return unit < kTableSize ? kTable[unit] : UpperCase(unit);
}

std::u16string Units(const StoredName& name) {
  std::u16string units(name.units, u'\0');
  for (std::size_t at = 0; at < name.units; ++at) units[at] = name.Unit(at);
  return units;
}

int CompareSizes(std::size_t a, std::size_t b) {
  if (a == b) return 0;
  return a < b ? -1 : 1;
}

}  // namespace

NewName::NewName(std::string_view text)
    : units(ToUtf16(text)),
      upper(UpperCase(units)),
      oneByte(std::all_of(units.begin(), units.end(), [](char16_t unit) { return unit < kTableSize; })) {}

void NewName::Store(std::uint8_t* at) const {
  for (const char16_t unit : units) {
    if (oneByte) {
      *at++ = static_cast<std::uint8_t>(unit);
    } else {
      Store16(at, unit);
      at += 2;
    }
  }
}

std::string NameText(const StoredName& name) {
  return ToUtf8(Units(name));
}

std::u16string UpperName(const StoredName& name) {
  std::u16string units = Units(name);
  std::transform(units.begin(), units.end(), units.begin(), Upper);
  return units;
}

int CompareName(const StoredName& name, std::u16string_view upper) {
  const std::size_t common = std::min(name.units, upper.size());
  for (std::size_t at = 0; at < common; ++at) {
    // Most are equal as they are, and an export compares with the names of every key on the way, each time.
    const char16_t stored = name.Unit(at);
    if (stored == upper[at]) continue;
    const char16_t unit = Upper(stored);
    if (unit != upper[at]) return unit < upper[at] ? -1 : 1;
  }
  return CompareSizes(name.units, upper.size());
}

int CompareName(const StoredName& a, const StoredName& b) {
  const std::size_t common = std::min(a.units, b.units);
  for (std::size_t at = 0; at < common; ++at) {
    const char16_t unitA = a.Unit(at);
    const char16_t unitB = b.Unit(at);
    if (unitA == unitB) continue;
    const char16_t upperA = Upper(unitA);
    const char16_t upperB = Upper(unitB);
    if (upperA != upperB) return upperA < upperB ? -1 : 1;
  }
  return CompareSizes(a.units, b.units);
}

std::uint32_t NameHash(std::u16string_view upper) {
  std::uint32_t hash = 0;
  for (const char16_t unit : upper) hash = hash * 37 + unit;
  return hash;
}

std::uint32_t NameHint(const StoredName& name) {
  std::uint32_t hint = 0;
  for (std::size_t at = 0; at < std::min<std::size_t>(name.units, 4); ++at) {
    const char16_t unit = name.Unit(at);
    if (unit >= kTableSize) return 0;
    hint |= static_cast<std::uint32_t>(unit) << (8 * at);
  }
  return hint;
}

}  // namespace quillbox
