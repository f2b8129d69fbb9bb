// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/deleted_pieces.h"

#include <algorithm>
#include <tuple>

#include "mail/message_header.h"
#include "mail/segment_chain.h"
#include "mail/store_layout.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

/// More deleted stretches or records than these are not joined. A store of 2 GB has room for more only when each
/// message has hardly any text.
constexpr std::size_t kMaxStretches = 500'000;
constexpr std::size_t kMaxRecords = 500'000;
constexpr std::size_t kScanPiece = std::size_t{64} * 1024;
constexpr std::size_t kAlignment = 4;
/// The shape of a record where nothing says that there is one.
constexpr std::uint32_t kMinRecordLength = 16;
constexpr std::uint32_t kMaxRecordLength = 64 * 1024;
constexpr std::size_t kMinFields = 2;
constexpr std::size_t kMaxFields = 40;
constexpr std::size_t kRecordTotalAt = 8;
constexpr RecordField kMessageText{0x04};
constexpr RecordField kFolderName{0x02};

/// Segments one after another, each the next one of that before it.
struct Stretch {
  std::uint32_t first;
  std::uint32_t segments;
  std::uint32_t bytes;  ///< of text
  std::uint32_t next;   ///< where the chain goes on; 0: it ends
  std::int64_t shift;

  std::uint32_t End() const { return first + segments * kSegmentSize; }
};

/// Where a record or segment is, and how much the offsets in it are too high.
struct Place {
  std::uint32_t offset;
  std::int64_t shift;
};

/// Finds records, segments and nodes by their shape.
class ShapeScan {
 public:
  ShapeScan(StoreInput& input, bool isFolderList) : input_(input), isFolderList_(isFolderList) {}

  void Scan(FileSpan gap) {
    end_ = gap.End();
    std::uint64_t at = (gap.start + kAlignment - 1) / kAlignment * kAlignment;
    while (at + kSegmentHeadSize <= end_ && at < UINT32_MAX) {
      const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kScanPiece, end_ - at));
      const auto read = input_.Read(at, size);
      if (const auto* bytes = std::get_if<ByteView>(&read)) {
        piece_.assign(bytes->begin(), bytes->end());
        at = ScanPiece(at);
      } else {
        at += size;
      }
    }
  }

  std::vector<Stretch> stretches;
  std::vector<Place> records;
  std::vector<FileSpan> found;  ///< everything
  bool full = false;

 private:
  /// Where to go on.
  std::uint64_t ScanPiece(std::uint64_t start) {
    std::size_t at = 0;
    while (at + kSegmentHeadSize <= piece_.size()) {
      if (!MayBegin(&piece_[at])) {
        at += kAlignment;
        continue;
      }
      const std::uint64_t offset = start + at;
      const std::uint64_t length = offset <= UINT32_MAX ? Recognise(&piece_[at], offset) : 0;
      if (length != 0) Note({offset, length});
      at += length == 0 ? kAlignment : static_cast<std::size_t>((length + kAlignment - 1) / kAlignment * kAlignment);
    }
    return start + at;
  }

  /// The first two numbers of every part: most of a free space is sorted out by them. Its own offset, and a node's 0, a
  /// segment's room or a record's length, both multiples of 4.
  static bool MayBegin(const std::uint8_t* head) {
    const std::uint32_t own = Load32(head);
    return own != 0 && own % kAlignment == 0 && head[4] % kAlignment == 0 && Load32(head + 4) <= kMaxRecordLength;
  }

  void Note(FileSpan span) {
    if (!found.empty() && found.back().End() == span.start) {
      found.back().length += span.length;
    } else if (found.size() < kMaxStretches + kMaxRecords) {
      found.push_back(span);
    }
  }

  /// The length of the part whose first 16 bytes are at `head`; 0 when there is none.
  std::uint64_t Recognise(const std::uint8_t* head, std::uint64_t offset) {
    const std::int64_t shift = std::int64_t{Load32(head)} - static_cast<std::int64_t>(offset);
    const Place place{static_cast<std::uint32_t>(offset), shift};
    const std::uint32_t second = Load32(head + 4);
    if (second == kSegmentRoom) {
      if (const std::uint64_t length = Segment(head, place)) return length;
    }
    if (second == 0) return shift == 0 ? Node(offset) : 0;
    return Record(head, place);
  }

  std::uint64_t Segment(const std::uint8_t* head, const Place& place) {
    const auto [offset, shift] = place;
    const std::uint32_t used = Load32(head + kSegmentUsedAt);
    const std::uint32_t next = Load32(head + kSegmentNextAt);
    const std::int64_t nextPlace = next == 0 ? 0 : std::int64_t{next} - shift;
    if (used == 0 || used > kSegmentRoom || nextPlace < 0 || nextPlace > UINT32_MAX) return 0;
    if (std::uint64_t{offset} + kSegmentHeadSize + used > end_) return 0;
    if (shift != 0 && next != 0 && NumberAt(static_cast<std::uint32_t>(nextPlace)) != next) return 0;
    AddSegment({offset, 1, used, static_cast<std::uint32_t>(nextPlace), shift});
    return std::min<std::uint64_t>(kSegmentSize, end_ - offset);
  }

  std::optional<std::uint32_t> NumberAt(std::uint32_t offset) {
    const auto read = input_.Read(offset, 4);
    const auto* bytes = std::get_if<ByteView>(&read);
    return bytes == nullptr ? std::nullopt : std::optional(Load32(bytes->data()));
  }

  void AddSegment(const Stretch& segment) {
    if (!stretches.empty()) {
      Stretch& last = stretches.back();
      if (last.shift == segment.shift && last.next == segment.first && last.End() == segment.first) {
        ++last.segments;
        last.bytes += segment.bytes;
        last.next = segment.next;
        return;
      }
    }
    full = full || stretches.size() == kMaxStretches;
    if (!full) stretches.push_back(segment);
  }

  std::uint64_t Node(std::uint64_t offset) {
    if (offset + kNodeSize > end_) return 0;
    const auto read = input_.Read(offset, kNodeSize);
    const auto* bytes = std::get_if<ByteView>(&read);
    if (bytes == nullptr) return 0;
    const std::size_t count = (*bytes)[kNodeCountAt];
    if (count == 0 || count > kMaxNodeEntries) return 0;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t record = Load32(&(*bytes)[kNodeEntriesAt + i * kNodeEntrySize]);
      if (record < kStoreHeaderSize || record >= input_.Size()) return 0;
    }
    return kNodeSize;
  }

  std::uint64_t Record(const std::uint8_t* head, const Place& place) {
    const auto [offset, shift] = place;
    const std::uint32_t length = Load32(head + kRecordLengthAt);
    const std::size_t fields = head[kRecordFieldsAt];
    if (length < kMinRecordLength || length > kMaxRecordLength || length % kAlignment != 0) return 0;
    if (fields < kMinFields || fields > kMaxFields || std::uint64_t{offset} + kRecordHeadSize + length > end_) return 0;
    const std::size_t total = Load16(head + kRecordTotalAt);
    if (shift != 0 && total != 0 && total != length + kRecordHeadSize) return 0;
    if (!HasFieldTable(offset, head)) return 0;
    const auto read = StoreRecord::Read(input_, offset, shift);
    const auto* record = std::get_if<StoreRecord>(&read);
    if (record == nullptr || !record->Has(isFolderList_ ? kFolderName : kMessageText)) return 0;
    full = full || records.size() == kMaxRecords;
    if (!full && !isFolderList_) records.push_back(place);
    return record->Size();
  }

  /// True for a table of fields whose numbers rise, as in every record seen, and whose places are within the record.
  /// Looked at before the record is read, so that bytes which only begin like one cost little.
  bool HasFieldTable(std::uint64_t offset, const std::uint8_t* head) {
    const std::size_t fields = head[kRecordFieldsAt];
    const std::uint32_t length = Load32(head + kRecordLengthAt);
    const auto read = input_.Read(offset + kRecordHeadSize, fields * 4);
    const auto* table = std::get_if<ByteView>(&read);
    if (table == nullptr || fields * 4 > length) return false;
    int last = -1;
    for (std::size_t i = 0; i < fields; ++i) {
      const std::uint32_t entry = Load32(&(*table)[i * 4]);
      const int number = static_cast<int>(entry & 0x7F);
      const bool isPlace = (entry & 0x80) == 0;
      if (number <= last || (isPlace && (entry >> 8) >= length - fields * 4)) return false;
      last = number;
    }
    return true;
  }

  StoreInput& input_;
  bool isFolderList_;
  std::uint64_t end_ = 0;  ///< of the gap
  Bytes piece_;
};

/// Joins stretches to messages.
class Joiner {
 public:
  Joiner(StoreInput& input, const StoreExtents& extents, const std::vector<Stretch>& stretches)
      : input_(input), extents_(extents), stretches_(stretches), taken_(stretches.size()) {}

  std::vector<RecoveredMessage> Join(const std::vector<Place>& records) {
    for (const Place& record : records) JoinRecord(record);
    FindContinuations();
    for (std::size_t i = 0; i < stretches_.size(); ++i) {
      if (!taken_[i] && !IsContinuation(stretches_[i])) JoinAlone(stretches_[i]);
    }
    // What is left are rings and ends whose beginning another message uses.
    for (std::size_t i = 0; i < stretches_.size(); ++i) {
      if (!taken_[i]) JoinAlone(stretches_[i]);
    }
    return std::move(messages_);
  }

 private:
  struct Chain {
    std::uint64_t segments = 0;
    std::uint64_t bytes = 0;
    bool ends = false;  ///< by a last segment
  };

  void JoinRecord(const Place& found) {
    const auto read = StoreRecord::Read(input_, found.offset, found.shift);
    const auto* record = std::get_if<StoreRecord>(&read);
    if (record == nullptr) return;
    const StoredMessage message = MessageOf(*record, found.offset);
    if (!message.text) return;
    const std::int64_t place = std::int64_t{*message.text} - found.shift;
    if (place < 0 || place > UINT32_MAX) return;
    const Place first{static_cast<std::uint32_t>(place), found.shift};
    // An older copy of a record whose message is still in the tree.
    if (extents_.UseAt(first.offset) == ByteUse::Messages && found.shift == 0) return;
    RecoveredMessage recovered{RecoveryState::RecordOnly, found.offset, found.shift, first.offset};
    if (const auto stretch = Find(first)) {
      // An older copy of a record that was found before.
      if (taken_[*stretch]) return;
      const Chain chain = Follow(first);
      recovered.segments = chain.segments;
      const bool isWhole = chain.ends && BeginsWithHeader(first) && !IsTooShort(chain, message);
      recovered.state = isWhole ? RecoveryState::Whole : RecoveryState::Partly;
    }
    messages_.push_back(recovered);
  }

  void JoinAlone(const Stretch& stretch) {
    const Chain chain = Follow({stretch.first, stretch.shift});
    const bool isWhole = chain.ends && BeginsWithHeader({stretch.first, stretch.shift});
    messages_.push_back({isWhole ? RecoveryState::Whole : RecoveryState::Partly, std::nullopt, stretch.shift,
                         stretch.first, chain.segments});
  }

  /// The size on record is off by some lines in real stores, even for messages in the tree.
  static bool IsTooShort(const Chain& chain, const StoredMessage& message) {
    return chain.bytes + chain.bytes / 3 < message.size.value_or(0);
  }

  bool BeginsWithHeader(const Place& first) {
    SegmentChain chain(input_, first.offset, first.shift);
    const auto segment = chain.Next();
    return segment && LooksLikeHeader(segment->text);
  }

  Chain Follow(Place place) {
    Chain chain;
    while (const auto index = Find(place)) {
      if (taken_[*index]) return chain;
      taken_[*index] = true;
      const Stretch& stretch = stretches_[*index];
      const std::uint32_t skipped = (place.offset - stretch.first) / kSegmentSize;
      chain.segments += stretch.segments - skipped;
      chain.bytes += stretch.bytes - std::min(stretch.bytes, skipped * kSegmentRoom);
      place.offset = stretch.next;
      if (place.offset == 0) {
        chain.ends = true;
        return chain;
      }
    }
    return chain;
  }

  /// The stretch that has a segment at `place`.
  std::optional<std::size_t> Find(const Place& place) const {
    const auto after = std::upper_bound(stretches_.begin(), stretches_.end(), place.offset,
                                        [](std::uint32_t at, const Stretch& stretch) { return at < stretch.first; });
    if (after == stretches_.begin()) return std::nullopt;
    const auto stretch = std::prev(after);
    const std::uint32_t distance = place.offset - stretch->first;
    if (stretch->shift != place.shift || distance % kSegmentSize != 0 || distance / kSegmentSize >= stretch->segments) {
      return std::nullopt;
    }
    return static_cast<std::size_t>(stretch - stretches_.begin());
  }

  void FindContinuations() {
    for (const Stretch& stretch : stretches_) {
      if (stretch.next != 0) continuations_.push_back(stretch.next);
    }
    std::sort(continuations_.begin(), continuations_.end());
  }

  bool IsContinuation(const Stretch& stretch) const {
    return std::binary_search(continuations_.begin(), continuations_.end(), stretch.first);
  }

  StoreInput& input_;
  const StoreExtents& extents_;
  const std::vector<Stretch>& stretches_;
  std::vector<bool> taken_;
  std::vector<std::uint32_t> continuations_;
  std::vector<RecoveredMessage> messages_;
};

}  // namespace

DeletedPieces FindDeletedPieces(StoreInput& input, StoreExtents& extents, bool isFolderList) {
  ShapeScan scan(input, isFolderList);
  extents.ForEachGap([&](FileSpan gap) { scan.Scan(gap); });
  DeletedPieces pieces;
  if (scan.full) {
    pieces.damage.Add({0, StorePart::Store, DamageReason::TooMany, "not all deleted messages are recovered"});
  }
  if (!isFolderList) pieces.messages = Joiner(input, extents, scan.stretches).Join(scan.records);
  for (const FileSpan& span : scan.found) extents.Claim(span, ByteUse::Deleted);
  extents.Settle();
  return pieces;
}

}  // namespace quillbox
