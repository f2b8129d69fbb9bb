// SPDX-License-Identifier: GPL-3.0-or-later
// Where each field is in a registry file of Windows 95, 98 or Me. The public descriptions of the format differ in
// places; what is here agrees with real files of 95 and Me.
#pragma once

#include <cstddef>
#include <cstdint>

#include "registry/hive_layout.h"

namespace quillbox {

inline constexpr std::uint32_t kCregTag = Tag32('C', 'R', 'E', 'G');
inline constexpr std::uint32_t kCregTreeTag = Tag32('R', 'G', 'K', 'N');
inline constexpr std::uint32_t kCregBlockTag = Tag32('R', 'G', 'D', 'B');

/// From the start of the file.
struct CregHeader {
  static constexpr std::size_t kMinor = 4;  ///< 16 bits
  static constexpr std::size_t kMajor = 6;  ///< 16 bits
  static constexpr std::size_t kBlocks = 8;
  static constexpr std::size_t kBlockCount = 16;  ///< 16 bits
  static constexpr std::size_t kSize = 32;
};

/// From "RGKN", which follows the header.
struct CregTree {
  static constexpr std::size_t kAt = CregHeader::kSize;
  static constexpr std::size_t kLength = 4;  ///< with its head
  static constexpr std::size_t kRoot = 8;    ///< from "RGKN"
  static constexpr std::size_t kHead = 32;
};

/// A key's place in the tree. Offsets of other nodes count from "RGKN".
struct CregNode {
  static constexpr std::size_t kFlags = 0;
  static constexpr std::size_t kParent = 12;
  static constexpr std::size_t kFirstChild = 16;
  static constexpr std::size_t kNext = 20;
  static constexpr std::size_t kEntry = 24;  ///< 16 bits
  static constexpr std::size_t kBlock = 26;  ///< 16 bits
  static constexpr std::size_t kSize = 28;
  static constexpr std::size_t kUnit = 4;  ///< nodes begin at multiples
};
inline constexpr std::uint32_t kNoCregNode = 0xFFFFFFFF;
inline constexpr std::uint32_t kFreeCregNode = 0x80000000;  ///< of CregNode::kFlags

/// From the start of a block.
struct CregBlock {
  static constexpr std::size_t kLength = 4;   ///< with its head
  static constexpr std::size_t kNumber = 14;  ///< 16 bits: how many are before it
  static constexpr std::size_t kHead = 32;
};

/// What a key is called and the values that it has, from the start of the entry.
struct CregEntry {
  static constexpr std::size_t kLength = 0;
  static constexpr std::size_t kNumber = 4;  ///< 16 bits
  static constexpr std::size_t kBlock = 6;   ///< 16 bits
  static constexpr std::size_t kUsed = 8;
  static constexpr std::size_t kNameLength = 12;  ///< 16 bits
  static constexpr std::size_t kValueCount = 14;  ///< 16 bits
  static constexpr std::size_t kHead = 20;
};
inline constexpr std::uint16_t kNoCregEntry = 0xFFFF;  ///< as a number: the entry is free, the node has none

/// From the start of a value; its name and its data follow.
struct CregValue {
  static constexpr std::size_t kType = 0;
  static constexpr std::size_t kNameLength = 8;   ///< 16 bits
  static constexpr std::size_t kDataLength = 10;  ///< 16 bits
  static constexpr std::size_t kHead = 12;
};

}  // namespace quillbox
