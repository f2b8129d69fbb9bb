// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/segment_chain.h"

#include <iterator>

#include "mail/store_layout.h"
#include "text/byte_order.h"

namespace quillbox {

std::uint64_t Segment::End() const {
  return std::uint64_t{offset} + kSegmentHeadSize + room;
}

std::optional<Segment> SegmentChain::Next() {
  if (ended_) return std::nullopt;
  Segment segment;
  segment.offset = next_;
  if (const auto fault = Load(segment)) {
    damage_ = fault->At(next_, StorePart::Segment);
    ended_ = true;
    return std::nullopt;
  }
  ended_ = segment.next == 0;
  next_ = segment.next;
  return segment;
}

std::optional<ReadFault> SegmentChain::Load(Segment& segment) {
  const auto head = input_.Read(segment.offset, kSegmentHeadSize);
  if (const auto* fault = std::get_if<ReadFault>(&head)) return *fault;
  const std::uint8_t* at = std::get<ByteView>(head).data();
  if (std::int64_t{Load32(at)} != std::int64_t{segment.offset} + shift_) {
    return ReadFault{DamageReason::WrongOwnOffset};
  }
  segment.room = Load32(at + kSegmentRoomAt);
  const std::uint32_t used = Load32(at + kSegmentUsedAt);
  const std::uint32_t next = Load32(at + kSegmentNextAt);
  if (segment.room > kMaxRoom || used > segment.room) return ReadFault{DamageReason::BadLength};
  if (next != 0) {
    const std::int64_t place = std::int64_t{next} - shift_;
    if (place <= 0 || place > UINT32_MAX) return ReadFault{DamageReason::OutsideFile};
    segment.next = static_cast<std::uint32_t>(place);
  }
  if (const auto reason = Claim(segment)) return ReadFault{*reason};
  const auto data = input_.Read(std::uint64_t{segment.offset} + kSegmentHeadSize, used);
  if (const auto* fault = std::get_if<ReadFault>(&data)) return *fault;
  const ByteView bytes = std::get<ByteView>(data);
  segment.text = {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  return std::nullopt;
}

/// A segment that overlaps what was given out before is refused: its chain turns back into itself.
std::optional<DamageReason> SegmentChain::Claim(const Segment& segment) {
  const std::uint64_t start = segment.offset;
  // Mostly the segment is right behind the one before.
  const bool follows = last_ != stretches_.end() && last_->second == start;
  const auto after = follows ? std::next(last_) : stretches_.lower_bound(start);
  if (after != stretches_.end() && after->first < segment.End()) return DamageReason::UsedTwice;
  if (after != stretches_.begin()) {
    const auto before = std::prev(after);
    if (before->second > start) return DamageReason::UsedTwice;
    if (before->second == start) {
      before->second = segment.End();
      last_ = before;
      return std::nullopt;
    }
  }
  if (stretches_.size() == kMaxStretches) return DamageReason::TooMany;
  last_ = stretches_.emplace_hint(after, start, segment.End());
  return std::nullopt;
}

TextResult ReadChain(StoreInput& input, const ChainPart& part, const TextSink& sink) {
  SegmentChain chain(input, part.first, part.shift);
  TextResult result;
  for (std::uint64_t count = 0; count < part.segments; ++count) {
    const auto segment = chain.Next();
    if (!segment) {
      result.damage = chain.Damage();
      break;
    }
    result.length += segment->text.size();
    sink(segment->text);
  }
  return result;
}

}  // namespace quillbox
