// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of hives share: hives of any version, and everything that a hive holds as lines of text to compare.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "registry/hive.h"
#include "registry/hive_layout.h"

namespace quillbox {

constexpr FileTime kMonday = 132000000000000000;
constexpr FileTime kTuesday = kMonday + 864000000000;

/// Sets a number of a hive's base block, and the checksum right.
inline void SetBase(Bytes& file, std::size_t field, std::uint32_t number) {
  Store32(file.data() + field, number);
  Store32(file.data() + BaseField::kChecksum, BaseChecksum(file.data()));
}

/// The record in a cell of a hive's file.
inline std::uint8_t* Record(Bytes& file, Cell cell) {
  return file.data() + kHivePage + cell.offset + kCellHeader;
}

/// What a field of the record in a cell holds.
template <typename Kind, typename T>
T Get(Bytes& file, std::type_identity_t<Kind> cell, RecordField<Kind, T> field) {
  return LoadField(Record(file, cell), field);
}
template <typename Kind, typename T>
void Put(Bytes& file, std::type_identity_t<Kind> cell, RecordField<Kind, T> field, std::type_identity_t<T> content) {
  StoreField(Record(file, cell), field, content);
}

/// An empty hive of version 1.`minor`.
inline Hive EmptyHive(std::uint32_t minor) {
  Bytes file = Hive::Create("Test", kMonday).Image(kMonday);
  SetBase(file, BaseField::kMinor, minor);
  return Hive::Load(file, "empty");
}

inline std::string Hex(ByteView bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) text.append({kDigits[byte >> 4], kDigits[byte & 15]});
  return text;
}

inline std::string ValueLine(const std::string& path, const HiveValue& value) {
  return path + " : " + value.name + " = " + std::to_string(value.type) + " " + Hex(value.data);
}

/// Keys in the hive's order with `path` before their names, each followed by its values; `details`: times, classes
/// and security descriptors too.
inline void AppendLines(std::vector<std::string>& lines, const Hive& hive, HiveKey key, const std::string& path,
                        bool details) {
  lines.push_back(path);
  if (details) {
    lines.push_back(std::to_string(hive.Time(key)) + " " + hive.ClassName(key) + " " + Hex(hive.Security(key)));
  }
  for (std::size_t at = 0; at < hive.ValueCount(key); ++at) lines.push_back(ValueLine(path, hive.ValueAt(key, at)));
  for (const HiveKey subkey : hive.Subkeys(key)) {
    AppendLines(lines, hive, subkey, path + "\\" + hive.Name(subkey), details);
  }
}

inline std::vector<std::string> Lines(const Hive& hive, HiveKey key, bool details = false) {
  std::vector<std::string> lines;
  AppendLines(lines, hive, key, "", details);
  return lines;
}

inline std::vector<std::string> Lines(const Hive& hive, bool details = false) {
  return Lines(hive, hive.Root(), details);
}

/// Which of the patterns of one size.
enum class Variant : std::size_t {};

/// Bytes that differ from one place to the next, so that pieces in a wrong order show.
inline Bytes Pattern(std::size_t size, Variant variant = Variant{1}) {
  const auto seed = static_cast<std::size_t>(variant);
  Bytes data(size);
  for (std::size_t at = 0; at < size; ++at) data[at] = static_cast<std::uint8_t>((at * 31 + at / 256 + seed) & 0xFF);
  return data;
}

/// A small hive of version 1.`minor` with every kind of record that fits into two pages.
inline Hive SmallHive(std::uint32_t minor = 5) {
  Hive hive = EmptyHive(minor);
  const HiveKey key = hive.CreatePath(hive.Root(), "One\\Two\\\xD0\x96");
  hive.SetValue(key, "text", 1, Pattern(20));
  hive.SetValue(key, "", 4, Pattern(4));
  hive.CreatePath(hive.Root(), "One\\Three");
  return hive;
}

/// One with lists of lists and big data.
inline Hive LargeHive() {
  Hive hive = SmallHive();
  for (int number = 0; number < 600; ++number) hive.CreatePath(hive.Root(), "Many\\" + std::to_string(number));
  hive.SetValue(hive.Root(), "big", 3, Bytes(40000));
  return hive;
}

/// The file with a page behind its bins that is not a bin. It cannot be opened, and nothing of it is lost.
inline Bytes WithBadPage(Bytes file) {
  SetBase(file, BaseField::kBinsSize, static_cast<std::uint32_t>(file.size()));
  file.resize(file.size() + kHivePage);
  return file;
}

inline KeyCell CellOf(const Hive& hive, std::string_view path) {
  return KeyCell(hive.Find(hive.Root(), path).value().cell);
}
inline KeyCell RootCell(const Hive& hive) {
  return KeyCell(hive.Root().cell);
}

/// Makes an `lf` or `lh` list one without hints or hashes (`li`).
inline void MakePlain(Bytes& file, ListCell list) {
  const RecordTag tag = LoadTag(Record(file, list));
  for (std::size_t entry = 0; entry < Get(file, list, ListField::kCount); ++entry) {
    Put(file, list, LeafEntry(kPlainLeafTag, entry), Get(file, list, LeafEntry(tag, entry)));
  }
  StoreTag(Record(file, list), kPlainLeafTag);
}

}  // namespace quillbox
