// SPDX-License-Identifier: GPL-3.0-or-later
// What each byte of a store is used for: stretches of the file with their use, small enough for millions of them. The
// stretches never overlap, so that their lengths and the free rest add up to the file's size.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "mail/store_damage.h"

namespace quillbox {

enum class ByteUse : std::uint8_t {
  Index,     ///< header, tree nodes, and the records that the tree leads to
  Messages,  ///< the text segments of those records
  Deleted,   ///< records, segments and nodes that nothing leads to
  Damage,    ///< what should be a part of the store and cannot be read as one
  Free,      ///< everything else
};
inline constexpr std::size_t kByteUses = 5;

/// A stretch of the file.
struct FileSpan {
  std::uint64_t start = 0;
  std::uint64_t length = 0;

  std::uint64_t End() const { return start + length; }
};

/// How many bytes of a store are used for what.
struct StoreAccount {
  std::array<std::uint64_t, kByteUses> bytes = {};

  std::uint64_t& Of(ByteUse use) { return bytes[static_cast<std::size_t>(use)]; }
  std::uint64_t Of(ByteUse use) const { return bytes[static_cast<std::size_t>(use)]; }
  /// The size of the file, always.
  std::uint64_t Total() const;
};

class StoreExtents {
 public:
  /// More stretches than this are not kept; what is claimed after that counts as free. 8 bytes each.
  static constexpr std::size_t kMaxExtents = 2'000'000;

  explicit StoreExtents(std::uint64_t fileSize) : fileSize_(fileSize) {}

  /// Notes the use of `span`, as far as the file goes. Bytes that are claimed twice keep one of the two uses, and are
  /// noted as damage.
  void Claim(FileSpan span, ByteUse use);
  /// Sorts what was claimed; what is asked below is true for claims before the last Settle.
  void Settle();
  /// Calls `gap` for each stretch that nobody claimed. It may not claim.
  void ForEachGap(const std::function<void(FileSpan)>& gap) const;
  /// The use of the byte at `offset`; Free where nobody claimed it.
  ByteUse UseAt(std::uint64_t offset) const;
  /// The end of the unclaimed stretch that `offset` is in; nothing when it is claimed or beyond the file.
  std::optional<std::uint64_t> GapEndAt(std::uint64_t offset) const;
  StoreAccount Account() const;
  /// What was claimed twice, and that there were too many stretches.
  const DamageList& Damage() const { return damage_; }

 private:
  /// A stretch below 4 GB, which offsets in a store don't reach beyond. Longer than kMaxLength: several of them.
  struct Extent {
    static constexpr std::uint32_t kMaxLength = (std::uint32_t{1} << 29) - 1;

    std::uint32_t start;
    std::uint32_t lengthAndUse;  ///< the use in the upper three bits

    Extent(FileSpan span, ByteUse use)
        : start(static_cast<std::uint32_t>(span.start)),
          lengthAndUse(static_cast<std::uint32_t>(span.length) | static_cast<std::uint32_t>(use) << 29) {}
    std::uint32_t Length() const { return lengthAndUse & kMaxLength; }
    std::uint64_t End() const { return std::uint64_t{start} + Length(); }
    ByteUse Use() const { return static_cast<ByteUse>(lengthAndUse >> 29); }
    /// Grows by one that begins where this ends; false where they don't fit together.
    bool Join(const Extent& next);
  };
  static_assert(sizeof(Extent) == 8);

  void Append(const Extent& extent);
  std::vector<Extent>::const_iterator After(std::uint64_t offset) const;

  std::uint64_t fileSize_;
  std::vector<Extent> extents_;
  std::size_t settleAt_ = 65'536;
  bool full_ = false;
  DamageList damage_;
};

}  // namespace quillbox
