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

struct FoundRecord {
  std::uint32_t offset;
  std::int64_t shift;
};

/// Finds records, segments and nodes by their shape.
class ShapeScan {
 public:
  ShapeScan(StoreInput& input, bool isFolderList) : input_(input), isFolderList_(isFolderList) {}

  void Scan(std::uint64_t start, std::uint64_t end) {
    std::uint64_t at = (start + kAlignment - 1) / kAlignment * kAlignment;
    while (at + kSegmentHeadSize <= end && at < UINT32_MAX) {
      const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kScanPiece, end - at));
      const auto read = input_.Read(at, size);
      if (const auto* bytes = std::get_if<ByteView>(&read)) {
        piece_.assign(bytes->begin(), bytes->end());
        at = ScanPiece(at, end);
      } else {
        at += size;
      }
    }
  }

  std::vector<Stretch> stretches;
  std::vector<FoundRecord> records;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> found;  ///< offset and length of everything
  bool full = false;

 private:
  /// Where to go on.
  std::uint64_t ScanPiece(std::uint64_t start, std::uint64_t end) {
    std::size_t at = 0;
    while (at + kSegmentHeadSize <= piece_.size()) {
      const std::uint64_t offset = start + at;
      const std::uint64_t length = offset <= UINT32_MAX ? Recognise(&piece_[at], offset, end) : 0;
      if (length != 0) Note(offset, length);
      at += length == 0 ? kAlignment : static_cast<std::size_t>((length + kAlignment - 1) / kAlignment * kAlignment);
    }
    return start + at;
  }

  void Note(std::uint64_t offset, std::uint64_t length) {
    const auto start = static_cast<std::uint32_t>(offset);
    if (!found.empty() && found.back().first + found.back().second == start) {
      found.back().second += static_cast<std::uint32_t>(length);
    } else if (found.size() < kMaxStretches + kMaxRecords) {
      found.emplace_back(start, static_cast<std::uint32_t>(length));
    }
  }

  /// The length of the part whose first 16 bytes are at `head`; 0 when there is none.
  std::uint64_t Recognise(const std::uint8_t* head, std::uint64_t offset, std::uint64_t end) {
    const std::uint32_t own = Load32(head);
    if (own == 0 || own % kAlignment != 0) return 0;
    const std::int64_t shift = std::int64_t{own} - static_cast<std::int64_t>(offset);
    const std::uint32_t second = Load32(head + 4);
    if (second == kSegmentRoom) {
      if (const std::uint64_t length = Segment(head, offset, end, shift)) return length;
    }
    if (second == 0) return shift == 0 ? Node(offset, end) : 0;
    return Record(head, offset, end, shift);
  }

  std::uint64_t Segment(const std::uint8_t* head, std::uint64_t offset, std::uint64_t end, std::int64_t shift) {
    const std::uint32_t used = Load32(head + kSegmentUsedAt);
    const std::uint32_t next = Load32(head + kSegmentNextAt);
    const std::int64_t nextPlace = next == 0 ? 0 : std::int64_t{next} - shift;
    if (used == 0 || used > kSegmentRoom || nextPlace < 0 || nextPlace > UINT32_MAX) return 0;
    if (offset + kSegmentHeadSize + used > end) return 0;
    if (shift != 0 && next != 0 && !HoldsNumber(static_cast<std::uint64_t>(nextPlace), next)) return 0;
    AddSegment(static_cast<std::uint32_t>(offset), used, static_cast<std::uint32_t>(nextPlace), shift);
    return std::min<std::uint64_t>(kSegmentSize, end - offset);
  }

  bool HoldsNumber(std::uint64_t offset, std::uint32_t number) {
    const auto read = input_.Read(offset, 4);
    const auto* bytes = std::get_if<ByteView>(&read);
    return bytes != nullptr && Load32(bytes->data()) == number;
  }

  void AddSegment(std::uint32_t offset, std::uint32_t used, std::uint32_t next, std::int64_t shift) {
    if (!stretches.empty()) {
      Stretch& last = stretches.back();
      if (last.shift == shift && last.next == offset && last.End() == offset) {
        ++last.segments;
        last.bytes += used;
        last.next = next;
        return;
      }
    }
    full = full || stretches.size() == kMaxStretches;
    if (!full) stretches.push_back({offset, 1, used, next, shift});
  }

  std::uint64_t Node(std::uint64_t offset, std::uint64_t end) {
    if (offset + kNodeSize > end) return 0;
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

  std::uint64_t Record(const std::uint8_t* head, std::uint64_t offset, std::uint64_t end, std::int64_t shift) {
    const std::uint32_t length = Load32(head + kRecordLengthAt);
    const std::size_t fields = head[kRecordFieldsAt];
    if (length < kMinRecordLength || length > kMaxRecordLength || length % kAlignment != 0) return 0;
    if (fields < kMinFields || fields > kMaxFields || offset + kRecordHeadSize + length > end) return 0;
    const std::size_t total = Load16(head + kRecordTotalAt);
    if (shift != 0 && total != 0 && total != length + kRecordHeadSize) return 0;
    const auto read = StoreRecord::Read(input_, offset, shift);
    const auto* record = std::get_if<StoreRecord>(&read);
    if (record == nullptr || record->FieldFault() || !record->FieldsRise()) return 0;
    if (!record->Has(isFolderList_ ? kFolderName : kMessageText)) return 0;
    full = full || records.size() == kMaxRecords;
    if (!full && !isFolderList_) records.push_back({static_cast<std::uint32_t>(offset), shift});
    return record->Size();
  }

  StoreInput& input_;
  bool isFolderList_;
  Bytes piece_;
};

/// Joins stretches to messages.
class Joiner {
 public:
  Joiner(StoreInput& input, const StoreExtents& extents, const std::vector<Stretch>& stretches)
      : input_(input), extents_(extents), stretches_(stretches), taken_(stretches.size()) {}

  std::vector<RecoveredMessage> Join(const std::vector<FoundRecord>& records) {
    for (const FoundRecord& record : records) JoinRecord(record);
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

  void JoinRecord(const FoundRecord& found) {
    const auto read = StoreRecord::Read(input_, found.offset, found.shift);
    const auto* record = std::get_if<StoreRecord>(&read);
    if (record == nullptr) return;
    const StoredMessage message = MessageOf(*record, found.offset);
    if (!message.text) return;
    const std::int64_t place = std::int64_t{*message.text} - found.shift;
    if (place < 0 || place > UINT32_MAX) return;
    const auto first = static_cast<std::uint32_t>(place);
    // An older copy of a record whose message is still in the tree.
    if (extents_.UseAt(first) == ByteUse::Messages && found.shift == 0) return;
    RecoveredMessage recovered{RecoveryState::RecordOnly, found.offset, found.shift, first};
    if (const auto stretch = Find(first, found.shift)) {
      // An older copy of a record that was found before.
      if (taken_[*stretch]) return;
      const Chain chain = Follow(first, found.shift);
      recovered.segments = chain.segments;
      const bool isWhole = chain.ends && BeginsWithHeader(first, found.shift) && !IsTooShort(chain, message);
      recovered.state = isWhole ? RecoveryState::Whole : RecoveryState::Partly;
    }
    messages_.push_back(recovered);
  }

  void JoinAlone(const Stretch& stretch) {
    const Chain chain = Follow(stretch.first, stretch.shift);
    const bool isWhole = chain.ends && BeginsWithHeader(stretch.first, stretch.shift);
    messages_.push_back({isWhole ? RecoveryState::Whole : RecoveryState::Partly, std::nullopt, stretch.shift,
                         stretch.first, chain.segments});
  }

  /// The size on record is off by some lines in real stores, even for messages in the tree.
  static bool IsTooShort(const Chain& chain, const StoredMessage& message) {
    return chain.bytes + chain.bytes / 3 < message.size.value_or(0);
  }

  bool BeginsWithHeader(std::uint32_t first, std::int64_t shift) {
    SegmentChain chain(input_, first, shift);
    const auto segment = chain.Next();
    return segment && LooksLikeHeader(segment->text);
  }

  Chain Follow(std::uint32_t place, std::int64_t shift) {
    Chain chain;
    while (const auto index = Find(place, shift)) {
      if (taken_[*index]) return chain;
      taken_[*index] = true;
      const Stretch& stretch = stretches_[*index];
      const std::uint32_t skipped = (place - stretch.first) / kSegmentSize;
      chain.segments += stretch.segments - skipped;
      chain.bytes += stretch.bytes - std::min(stretch.bytes, skipped * kSegmentRoom);
      place = stretch.next;
      if (place == 0) {
        chain.ends = true;
        return chain;
      }
    }
    return chain;
  }

  /// The stretch that has a segment at `place`.
  std::optional<std::size_t> Find(std::uint32_t place, std::int64_t shift) const {
    const auto after = std::upper_bound(stretches_.begin(), stretches_.end(), place,
                                        [](std::uint32_t at, const Stretch& stretch) { return at < stretch.first; });
    if (after == stretches_.begin()) return std::nullopt;
    const auto stretch = std::prev(after);
    const std::uint32_t distance = place - stretch->first;
    if (stretch->shift != shift || distance % kSegmentSize != 0 || distance / kSegmentSize >= stretch->segments) {
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
  extents.ForEachGap([&](std::uint64_t start, std::uint64_t end) { scan.Scan(start, end); });
  DeletedPieces pieces;
  if (scan.full) {
    pieces.damage.Add({0, StorePart::Store, DamageReason::TooMany, "not all deleted messages are recovered"});
  }
  if (!isFolderList) pieces.messages = Joiner(input, extents, scan.stretches).Join(scan.records);
  for (const auto& [offset, length] : scan.found) extents.Claim(offset, length, ByteUse::Deleted);
  extents.Settle();
  return pieces;
}

}  // namespace quillbox
