// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/wab_writer.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "text/byte_order.h"
#include "text/code_page.h"

namespace quillbox {
namespace {

constexpr std::array<std::uint8_t, 16> kSignature = {0x9C, 0xCB, 0xCB, 0x8D, 0x13, 0x75, 0xD2, 0x11,
                                                     0x91, 0x58, 0x00, 0xC0, 0x4F, 0x79, 0x56, 0xA4};
constexpr std::size_t kHeaderSize = 0x80;
constexpr std::size_t kIndexRoom = 4'000;
constexpr std::size_t kNamesRoom = 34'000;
constexpr std::size_t kNameSize = 64;  // bytes of UTF-16, the rest zeros
// Display name, last name, first name, address; and a table that nothing is in.
constexpr std::array<std::uint16_t, 5> kListed = {0x3001, 0x3A11, 0x3A06, 0x3003, 0};
constexpr std::size_t kTables = 1 + kListed.size();

struct Table {
  std::size_t room;  // what a table without too many entries has
  Bytes bytes;
  std::size_t entries = 0;
};

Table NameTable(std::span<const WabRecord> records, std::uint16_t property) {
  std::vector<std::pair<std::u16string, std::uint32_t>> names;
  for (const WabRecord& record : records) {
    const std::u16string name = record.TextOf(property);
    if (!record.IsDeleted() && !name.empty()) names.emplace_back(name.substr(0, kNameSize / 2 - 1), record.Id());
  }
  std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) {
    const int order = CompareIgnoreCase(a.first, b.first);
    return order != 0 ? order < 0 : a.second < b.second;
  });
  Table table{kNamesRoom, {}, names.size()};
  for (const auto& [name, id] : names) {
    Bytes entry = Utf16Bytes(name);
    entry.resize(kNameSize);
    AppendNumber<4>(entry, id);
    table.bytes.insert(table.bytes.end(), entry.begin(), entry.end());
  }
  return table;
}

std::size_t RoomOf(const Table& table, WabRoom room) {
  if (room == WabRoom::Least) return table.bytes.size();
  return std::max<std::size_t>(1, (table.bytes.size() + table.room - 1) / table.room) * table.room;
}

}  // namespace

Bytes WabRecord::TextBytes(std::string_view text) const {
  const std::string withEnd = std::string(text) + '\0';
  if (form_ == WabTextForm::Wide) return Utf16Bytes(ToUtf16(withEnd));
  static const CodePage kWestern;
  const std::string narrow = kWestern.EncodeLossy(withEnd);
  return {narrow.begin(), narrow.end()};
}

std::uint32_t WabRecord::TextTag(std::uint16_t property) const {
  return std::uint32_t{property} << 16 | (form_ == WabTextForm::Wide ? 0x1F : 0x1E);
}

WabRecord& WabRecord::Raw(std::uint32_t tag, const Bytes& bytes) {
  tags_.push_back(tag);
  AppendNumber<4>(data_, tag);
  AppendNumber<4>(data_, bytes.size());
  data_.insert(data_.end(), bytes.begin(), bytes.end());
  return *this;
}

void WabRecord::Array(std::uint32_t tag, std::span<const Bytes> elements) {
  Bytes bytes;
  for (const Bytes& element : elements) {
    AppendNumber<4>(bytes, element.size());
    bytes.insert(bytes.end(), element.begin(), element.end());
  }
  tags_.push_back(tag);
  AppendNumber<4>(data_, tag);
  AppendNumber<4>(data_, elements.size());
  AppendNumber<4>(data_, bytes.size());
  data_.insert(data_.end(), bytes.begin(), bytes.end());
}

WabRecord& WabRecord::Text(std::uint16_t property, std::string_view text) {
  if (text.empty()) return *this;
  texts_.push_back({property, ToUtf16(text)});
  return Raw(TextTag(property), TextBytes(text));
}

WabRecord& WabRecord::Texts(std::uint16_t property, std::span<const std::string_view> texts) {
  std::vector<Bytes> elements;
  for (const std::string_view text : texts) elements.push_back(TextBytes(text));
  Array(TextTag(property) | 0x1000, elements);
  return *this;
}

WabRecord& WabRecord::Number(std::uint16_t property, std::uint32_t number) {
  return Raw(std::uint32_t{property} << 16 | 0x3, NumberBytes(number));
}

WabRecord& WabRecord::Time(std::uint16_t property, WabTime time) {
  Bytes bytes;
  AppendNumber<8>(bytes, time.value);
  return Raw(std::uint32_t{property} << 16 | 0x40, bytes);
}

WabRecord& WabRecord::Binary(std::uint16_t property, const Bytes& bytes) {
  return Raw(std::uint32_t{property} << 16 | 0x102, bytes);
}

WabRecord& WabRecord::Binaries(std::uint16_t property, std::span<const Bytes> all) {
  Array(std::uint32_t{property} << 16 | 0x1102, all);
  return *this;
}

WabRecord& WabRecord::Delete() {
  deleted_ = true;
  return *this;
}

std::u16string WabRecord::TextOf(std::uint16_t property) const {
  for (const NamedText& text : texts_) {
    if (text.property == property) return text.text;
  }
  return {};
}

Bytes WabRecord::Image() const {
  constexpr std::size_t kHeadSize = 0x20;
  Bytes image;
  AppendNumber<4>(image, deleted_ ? 0 : 1);
  AppendNumber<4>(image, 1);
  AppendNumber<4>(image, id_);
  AppendNumber<4>(image, tags_.size());
  AppendNumber<4>(image, kHeadSize);
  AppendNumber<4>(image, kHeadSize + tags_.size() * 4);
  AppendNumber<4>(image, kHeadSize + tags_.size() * 4);
  AppendNumber<4>(image, data_.size());
  for (const std::uint32_t tag : tags_) AppendNumber<4>(image, tag);
  image.insert(image.end(), data_.begin(), data_.end());
  return image;
}

Bytes WabFile(std::span<const WabRecord> records, WabRoom room) {
  std::vector<Table> tables;
  const auto listed = static_cast<std::size_t>(
      std::count_if(records.begin(), records.end(), [](const WabRecord& record) { return !record.IsDeleted(); }));
  tables.push_back({kIndexRoom, Bytes(listed * 8), listed});
  for (const std::uint16_t property : kListed) tables.push_back(NameTable(records, property));

  Bytes file(kSignature.begin(), kSignature.end());
  AppendNumber<4>(file, 1);
  AppendNumber<4>(file, kTables);
  std::size_t at = kHeaderSize;
  for (const Table& table : tables) {
    AppendNumber<4>(file, RoomOf(table, room));
    AppendNumber<4>(file, table.bytes.size());
    AppendNumber<4>(file, at);
    AppendNumber<4>(file, table.entries);
    at += RoomOf(table, room);
  }
  file.resize(kHeaderSize);

  Bytes index;
  Bytes images;
  for (const WabRecord& record : records) {
    if (!record.IsDeleted()) {
      AppendNumber<4>(index, record.Id());
      AppendNumber<4>(index, at + images.size());
    }
    const Bytes image = record.Image();
    images.insert(images.end(), image.begin(), image.end());
  }
  tables[0].bytes = std::move(index);
  for (const Table& table : tables) {
    const std::size_t end = file.size() + RoomOf(table, room);
    file.insert(file.end(), table.bytes.begin(), table.bytes.end());
    file.resize(end);
  }
  file.insert(file.end(), images.begin(), images.end());
  return file;
}

}  // namespace quillbox
