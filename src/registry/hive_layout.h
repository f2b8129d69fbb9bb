// Where each field stands in a hive file. Offsets of cell records count from the record's signature, that is after
// the cell's own four bytes of length.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quillbox {

inline constexpr std::uint32_t kNoCell = 0xFFFFFFFF;
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
inline constexpr std::uint16_t kKeyTag = Tag16('n', 'k');
inline constexpr std::uint16_t kValueTag = Tag16('v', 'k');
inline constexpr std::uint16_t kSecurityTag = Tag16('s', 'k');
inline constexpr std::uint16_t kBigDataTag = Tag16('d', 'b');
inline constexpr std::uint16_t kHintLeafTag = Tag16('l', 'f');
inline constexpr std::uint16_t kHashLeafTag = Tag16('l', 'h');
inline constexpr std::uint16_t kPlainLeafTag = Tag16('l', 'i');
inline constexpr std::uint16_t kLeafIndexTag = Tag16('r', 'i');

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
  static constexpr std::size_t kFlags = 2;
  static constexpr std::size_t kTime = 4;
  static constexpr std::size_t kAccess = 12;
  static constexpr std::size_t kParent = 16;
  static constexpr std::size_t kSubkeyCount = 20;
  static constexpr std::size_t kVolatileCount = 24;
  static constexpr std::size_t kSubkeyList = 28;
  static constexpr std::size_t kVolatileList = 32;
  static constexpr std::size_t kValueCount = 36;
  static constexpr std::size_t kValueList = 40;
  static constexpr std::size_t kSecurity = 44;
  static constexpr std::size_t kClass = 48;
  static constexpr std::size_t kMaxSubkeyName = 52;  ///< 16 bits; longest lengths are in bytes of UTF-16
  static constexpr std::size_t kMoreFlags = 54;      ///< 16 bits, newer systems
  static constexpr std::size_t kMaxClass = 56;
  static constexpr std::size_t kMaxValueName = 60;
  static constexpr std::size_t kMaxValueData = 64;
  static constexpr std::size_t kWork = 68;
  static constexpr std::size_t kNameLength = 72;
  static constexpr std::size_t kClassLength = 74;
  static constexpr std::size_t kName = 76;
};

struct KeyFlag {
  static constexpr std::uint16_t kRoot = 0x04;
  static constexpr std::uint16_t kNoDelete = 0x08;
  static constexpr std::uint16_t kOneByteName = 0x20;
};

struct ValueField {
  static constexpr std::size_t kNameLength = 2;
  static constexpr std::size_t kDataSize = 4;
  static constexpr std::size_t kData = 8;
  static constexpr std::size_t kType = 12;
  static constexpr std::size_t kFlags = 16;
  static constexpr std::size_t kName = 20;
};

inline constexpr std::uint32_t kInlineData = 0x80000000;  ///< of ValueField::kDataSize: the data stand in kData
inline constexpr std::size_t kMaxInlineData = 4;
inline constexpr std::uint16_t kOneByteValueName = 1;

struct SecurityField {
  static constexpr std::size_t kNext = 4;
  static constexpr std::size_t kPrevious = 8;
  static constexpr std::size_t kCount = 12;
  static constexpr std::size_t kSize = 16;
  static constexpr std::size_t kDescriptor = 20;
};

/// Subkey lists of every kind, and `db` records.
struct ListField {
  static constexpr std::size_t kCount = 2;
  static constexpr std::size_t kEntries = 4;
};
struct BigDataField {
  static constexpr std::size_t kCount = 2;
  static constexpr std::size_t kSegments = 4;
  static constexpr std::size_t kEnd = 8;
};

/// A leaf of this many entries fills a bin of one page, as Windows' own do.
inline constexpr std::size_t kMaxLeafEntries = 507;

inline std::uint16_t Load16(const std::uint8_t* at) {
  return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}
inline std::uint32_t Load32(const std::uint8_t* at) {
  return static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8 |
         static_cast<std::uint32_t>(at[2]) << 16 | static_cast<std::uint32_t>(at[3]) << 24;
}
inline std::uint64_t Load64(const std::uint8_t* at) {
  return Load32(at) | static_cast<std::uint64_t>(Load32(at + 4)) << 32;
}
inline void Store16(std::uint8_t* at, std::uint16_t number) {
  at[0] = static_cast<std::uint8_t>(number);
  at[1] = static_cast<std::uint8_t>(number >> 8);
}
inline void Store32(std::uint8_t* at, std::uint32_t number) {
  Store16(at, static_cast<std::uint16_t>(number));
  Store16(at + 2, static_cast<std::uint16_t>(number >> 16));
}
inline void Store64(std::uint8_t* at, std::uint64_t number) {
  Store32(at, static_cast<std::uint32_t>(number));
  Store32(at + 4, static_cast<std::uint32_t>(number >> 32));
}

/// The checksum that belongs into the base block at `base` (512 bytes).
std::uint32_t BaseChecksum(const std::uint8_t* base);

}  // namespace quillbox
