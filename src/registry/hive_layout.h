// SPDX-License-Identifier: GPL-3.0-or-later
// Where each field is in a hive file. Offsets in records count from the record's tag, after the four bytes of the
// cell's length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "registry/hive_cell_types.h"
#include "text/byte_order.h"

namespace quillbox {

inline constexpr std::size_t kHivePage = 4096;  ///< the base block's size, and the unit of bins
inline constexpr std::size_t kSector = 512;
inline constexpr std::size_t kBinHeader = 32;
inline constexpr std::size_t kCellHeader = 4;
inline constexpr std::size_t kCellUnit = 8;

/// Offsets at and above this belong to keys that are never stored, so the bins end below it.
inline constexpr std::size_t kMaxBinsSize = 0x7FFFF000;

constexpr std::uint16_t Tag16(char a, char b) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(a) | static_cast<unsigned char>(b) << 8);
}
constexpr std::uint32_t Tag32(char a, char b, char c, char d) {
  return Tag16(a, b) | static_cast<std::uint32_t>(Tag16(c, d)) << 16;
}

inline constexpr std::uint32_t kHiveTag = Tag32('r', 'e', 'g', 'f');
inline constexpr std::uint32_t kBinTag = Tag32('h', 'b', 'i', 'n');
inline constexpr RecordTag kKeyTag{Tag16('n', 'k')};
inline constexpr RecordTag kValueTag{Tag16('v', 'k')};
inline constexpr RecordTag kSecurityTag{Tag16('s', 'k')};
inline constexpr RecordTag kBigDataTag{Tag16('d', 'b')};
inline constexpr RecordTag kHintLeafTag{Tag16('l', 'f')};
inline constexpr RecordTag kHashLeafTag{Tag16('l', 'h')};
inline constexpr RecordTag kPlainLeafTag{Tag16('l', 'i')};
inline constexpr RecordTag kLeafIndexTag{Tag16('r', 'i')};

struct BaseField {
  static constexpr std::size_t kTag = 0;
  static constexpr std::size_t kSequence1 = 4;  ///< raised before a write
  static constexpr std::size_t kSequence2 = 8;  ///< raised after it
  static constexpr std::size_t kTime = 12;
  static constexpr std::size_t kMajor = 20;
  static constexpr std::size_t kMinor = 24;
  static constexpr std::size_t kType = 28;
  static constexpr std::size_t kFormat = 32;
  static constexpr std::size_t kRoot = 36;
  static constexpr std::size_t kBinsSize = 40;
  static constexpr std::size_t kCluster = 44;  ///< sectors in the base block of a log
  static constexpr std::size_t kName = 48;
  static constexpr std::size_t kNameUnits = 32;
  static constexpr std::size_t kFlags = 144;
  static constexpr std::size_t kChecksum = 508;
};

/// Of BaseField::kFlags, with minor version 6: the hive holds only differences to another hive.
inline constexpr std::uint32_t kDifferencingFlag = 2;

struct BinField {
  static constexpr std::size_t kTag = 0;
  static constexpr std::size_t kOffset = 4;
  static constexpr std::size_t kSize = 8;
  static constexpr std::size_t kTime = 20;  ///< in the first bin only
};

struct KeyField {
  template <typename T>
  using Of = RecordField<KeyCell, T>;
  static constexpr Of<std::uint16_t> kFlags{2};
  static constexpr Of<std::uint64_t> kTime{4};
  static constexpr Of<std::uint32_t> kAccess{12};
  static constexpr Of<KeyCell> kParent{16};
  static constexpr Of<std::uint32_t> kSubkeyCount{20};
  static constexpr Of<std::uint32_t> kVolatileCount{24};
  static constexpr Of<ListCell> kSubkeyList{28};
  static constexpr Of<ListCell> kVolatileList{32};
  static constexpr Of<std::uint32_t> kValueCount{36};
  static constexpr Of<ValueListCell> kValueList{40};
  static constexpr Of<SecurityCell> kSecurity{44};
  static constexpr Of<DataCell> kClass{48};
  static constexpr Of<std::uint16_t> kMaxSubkeyName{52};  ///< 16 bits; longest lengths are in bytes of UTF-16
  static constexpr Of<std::uint16_t> kMoreFlags{54};      ///< 16 bits, newer systems
  static constexpr Of<std::uint32_t> kMaxClass{56};
  static constexpr Of<std::uint32_t> kMaxValueName{60};
  static constexpr Of<std::uint32_t> kMaxValueData{64};
  static constexpr Of<std::uint32_t> kWork{68};
  static constexpr Of<std::uint16_t> kNameLength{72};
  static constexpr Of<std::uint16_t> kClassLength{74};
  static constexpr std::size_t kName = 76;
};

struct KeyFlag {
  static constexpr std::uint16_t kRoot = 0x04;
  static constexpr std::uint16_t kNoDelete = 0x08;
  static constexpr std::uint16_t kOneByteName = 0x20;
};

struct ValueField {
  template <typename T>
  using Of = RecordField<ValueCell, T>;
  static constexpr Of<std::uint16_t> kNameLength{2};
  static constexpr Of<std::uint32_t> kDataSize{4};
  static constexpr Of<DataCell> kData{8};
  static constexpr Of<std::uint32_t> kType{12};
  static constexpr Of<std::uint16_t> kFlags{16};
  static constexpr std::size_t kName = 20;
};

inline constexpr std::uint32_t kInlineData = 0x80000000;  ///< of ValueField::kDataSize: the data are in kData
inline constexpr std::size_t kMaxInlineData = 4;
inline constexpr std::uint16_t kOneByteValueName = 1;

struct SecurityField {
  template <typename T>
  using Of = RecordField<SecurityCell, T>;
  static constexpr Of<SecurityCell> kNext{4};
  static constexpr Of<SecurityCell> kPrevious{8};
  static constexpr Of<std::uint32_t> kCount{12};
  static constexpr Of<std::uint32_t> kSize{16};
  static constexpr std::size_t kDescriptor = 20;
};

/// Subkey lists of every kind.
struct ListField {
  template <typename T>
  using Of = RecordField<ListCell, T>;
  static constexpr Of<std::uint16_t> kCount{2};
  static constexpr std::size_t kEntries = 4;
};

inline bool IsLeafTag(RecordTag tag) {
  return tag == kHintLeafTag || tag == kHashLeafTag || tag == kPlainLeafTag;
}
/// Bytes of one entry of a list with this tag.
inline std::size_t EntrySize(RecordTag tag) {
  return tag == kPlainLeafTag || tag == kLeafIndexTag ? 4 : 8;
}
/// The subkey that an entry of a leaf names; the hint or hash after it in leaves that have one.
inline RecordField<ListCell, KeyCell> LeafEntry(RecordTag tag, std::size_t entry) {
  return {ListField::kEntries + entry * EntrySize(tag)};
}
inline RecordField<ListCell, std::uint32_t> LeafHint(std::size_t entry) {
  return {ListField::kEntries + entry * 8 + 4};
}
/// The leaf that an entry of an index of leaves names.
inline RecordField<ListCell, ListCell> IndexEntry(std::size_t entry) {
  return {ListField::kEntries + entry * 4};
}
/// Lists of values are nothing but entries.
inline RecordField<ValueListCell, ValueCell> ValueEntry(std::size_t entry) {
  return {entry * 4};
}

/// Records that lead to the pieces of data which are too large for one cell.
struct BigDataField {
  template <typename T>
  using Of = RecordField<DataCell, T>;
  static constexpr Of<std::uint16_t> kCount{2};
  static constexpr Of<DataCell> kSegments{4};
  static constexpr std::size_t kEnd = 8;
};
/// An entry of the list of pieces.
inline RecordField<DataCell, DataCell> PieceEntry(std::size_t entry) {
  return {entry * 4};
}

/// A leaf of this many entries fills a bin of one page, as Windows' own do.
inline constexpr std::size_t kMaxLeafEntries = 507;

/// What a field of the record at `record` holds.
template <typename Record, typename T>
T LoadField(const std::uint8_t* record, RecordField<Record, T> field) {
  if constexpr (std::is_same_v<T, std::uint16_t>) {
    return Load16(record + field.at);
  } else if constexpr (std::is_same_v<T, std::uint64_t>) {
    return Load64(record + field.at);
  } else {
    return T(Load32(record + field.at));
  }
}
template <typename Record, typename T>
void StoreField(std::uint8_t* record, RecordField<Record, T> field, std::type_identity_t<T> content) {
  if constexpr (std::is_same_v<T, std::uint16_t>) {
    Store16(record + field.at, content);
  } else if constexpr (std::is_same_v<T, std::uint32_t>) {
    Store32(record + field.at, content);
  } else if constexpr (std::is_same_v<T, std::uint64_t>) {
    Store64(record + field.at, content);
  } else {
    Store32(record + field.at, content.offset);
  }
}
inline RecordTag LoadTag(const std::uint8_t* record) {
  return RecordTag{Load16(record)};
}
inline void StoreTag(std::uint8_t* record, RecordTag tag) {
  Store16(record, static_cast<std::uint16_t>(tag));
}

/// The checksum for the base block at `base` (512 bytes).
std::uint32_t BaseChecksum(const std::uint8_t* base);

}  // namespace quillbox
