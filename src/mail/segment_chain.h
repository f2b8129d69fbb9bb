// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a message: a chain of segments, given out piece by piece.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string_view>

#include "mail/store_input.h"

namespace quillbox {

/// Takes bytes in pieces of any length. What it throws goes through to the caller.
using TextSink = std::function<void(std::string_view piece)>;

/// What came of reading a text.
struct TextResult {
  std::uint64_t length = 0;           ///< bytes that the sink was given
  std::optional<StoreDamage> damage;  ///< where the text ended too early, and why
};

/// One segment of a chain as the file has it.
struct Segment {
  std::uint32_t offset = 0;
  std::uint32_t room = 0;  ///< bytes that it has for text, used or not
  std::uint32_t next = 0;  ///< 0 for the last
  std::string_view text;   ///< valid until the input is read again

  std::uint64_t End() const;
};

/// Walks a chain segment by segment. Each is checked, and none is given out twice.
class SegmentChain {
 public:
  /// A chain of more stretches than this, of segments one after another each, is not read on.
  static constexpr std::size_t kMaxStretches = 262'144;
  /// The most that one segment may hold; all that were ever seen have 512 bytes.
  static constexpr std::uint32_t kMaxRoom = 64 * 1024;

  /// The chain from the segment at `first`; offsets within it are too high by `shift` (see StoreRecord::Read).
  SegmentChain(StoreInput& input, std::uint32_t first, std::int64_t shift = 0)
      : input_(input), next_(first), shift_(shift) {}
  SegmentChain(const SegmentChain&) = delete;
  SegmentChain& operator=(const SegmentChain&) = delete;

  /// The next segment, or nothing after the last one and where the chain is damaged.
  std::optional<Segment> Next();
  const std::optional<StoreDamage>& Damage() const { return damage_; }

 private:
  std::optional<ReadFault> Load(Segment& segment);
  std::optional<DamageReason> Claim(const Segment& segment);

  StoreInput& input_;
  std::uint32_t next_;
  std::int64_t shift_;
  bool ended_ = false;
  using Stretches = std::map<std::uint64_t, std::uint64_t>;
  Stretches stretches_;                          ///< start and end of what was given out
  Stretches::iterator last_ = stretches_.end();  ///< that of the segment before
  std::optional<StoreDamage> damage_;
};

/// A chain, or its beginning.
struct ChainPart {
  std::uint32_t first = 0;  ///< the first segment
  std::int64_t shift = 0;   ///< see SegmentChain
  std::uint64_t segments = UINT64_MAX;
};

/// Gives a chain's text to `sink`, or what is before its first damaged segment.
TextResult ReadChain(StoreInput& input, const ChainPart& part, const TextSink& sink);

}  // namespace quillbox
