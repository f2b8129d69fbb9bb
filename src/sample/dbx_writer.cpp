#include "sample/dbx_writer.h"

#include <algorithm>
#include <array>

#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kHeaderSize = 0x24BC;
constexpr std::size_t kNodeSize = 0x27C;
constexpr std::size_t kNodeEntries = 51;
constexpr std::size_t kNodeEntriesOffset = 0x18;
constexpr std::size_t kNodeEntrySize = 12;
constexpr std::size_t kSegmentData = 0x200;
constexpr std::size_t kSegmentSize = kSegmentData + 16;
constexpr std::uint32_t kMaxDirect = 0xFFFFFF;
constexpr std::uint8_t kDirect = 0x80;

// Offsets in the header.
constexpr std::size_t kVersionAt = 0x14;
constexpr std::size_t kRecordSpaceAt = 0x24;
constexpr std::size_t kTreeSpaceAt = 0x30;
constexpr std::size_t kMessageSpaceAt = 0x3C;
constexpr std::size_t kTreeCountAt = 0x5C;
constexpr std::size_t kFileSizeAt = 0x7C;
constexpr std::size_t kRecordCountAt = 0xC4;
constexpr std::size_t kTreeRootAt = 0xE4;

using ClassId = std::array<std::uint8_t, 16>;
constexpr ClassId StoreClass(std::uint8_t first) {
  return {first, 0xFD, 0x74, 0x6F, 0x66, 0xE3, 0xD1, 0x11, 0x9A, 0x4E, 0x00, 0xC0, 0x4F, 0xA3, 0x09, 0xD4};
}
// By DbxKind.
constexpr ClassId kClassIds[] = {
    StoreClass(0xC5),
    StoreClass(0xC6),
    StoreClass(0xC7),
    {0x30, 0x9D, 0xFE, 0x26, 0x8F, 0x1A, 0xD2, 0x11, 0xAA, 0xBF, 0x00, 0x60, 0x97, 0xD4, 0x74, 0xC4}};

constexpr std::uint32_t kReadFlag = 0x80;
constexpr std::uint32_t kMailFlag = 0x01000001;
constexpr std::uint32_t kNormalPriority = 3;

std::uint32_t Offset(std::size_t position) {
  return static_cast<std::uint32_t>(position);
}

enum class FieldId : std::uint8_t {};

/// One record's fields: small numbers are in the index itself, everything else in the data after it.
class Record {
 public:
  void Number(FieldId field, std::uint32_t number) {
    if (number <= kMaxDirect) {
      index_.push_back(static_cast<std::uint8_t>(field) | kDirect);
      AppendNumber<3>(index_, number);
    } else {
      Begin(field);
      AppendNumber<4>(data_, number);
    }
    ++count_;
  }

  void Time(FieldId field, std::uint64_t time) {
    Begin(field);
    AppendNumber<8>(data_, time);
    ++count_;
  }

  void Text(FieldId field, std::string_view text) {
    Begin(field);
    data_.insert(data_.end(), text.begin(), text.end());
    data_.push_back(0);
    ++count_;
  }

  /// The record as it is written at `offset` of the file.
  Bytes At(std::size_t offset) const {
    const std::size_t padded = (data_.size() + 3) / 4 * 4;
    Bytes bytes;
    AppendNumber<4>(bytes, offset);
    AppendNumber<4>(bytes, index_.size() + padded);
    AppendNumber<2>(bytes, 12 + index_.size() + padded);
    AppendNumber<2>(bytes, count_);
    bytes.insert(bytes.end(), index_.begin(), index_.end());
    bytes.insert(bytes.end(), data_.begin(), data_.end());
    bytes.resize(12 + index_.size() + padded);
    return bytes;
  }

 private:
  void Begin(FieldId field) {
    index_.push_back(static_cast<std::uint8_t>(field));
    AppendNumber<3>(index_, data_.size());
  }

  Bytes index_;
  Bytes data_;
  std::uint32_t count_ = 0;
};

class Store {
 public:
  explicit Store(DbxKind kind) : file_(kHeaderSize) {
    constexpr std::array<std::uint8_t, 4> kMagic = {0xCF, 0xAD, 0x12, 0xFE};
    const ClassId& classId = kClassIds[static_cast<std::size_t>(kind)];
    std::copy(kMagic.begin(), kMagic.end(), file_.begin());
    std::copy(classId.begin(), classId.end(), file_.begin() + kMagic.size());
    Put(kVersionAt, 5);
    Put(kVersionAt + 4, 5);
  }

  /// Puts a text into a chain of segments; the offset of the first.
  std::uint32_t AddText(std::string_view text) {
    const std::size_t start = file_.size();
    while (!text.empty()) {
      const std::size_t at = file_.size();
      const std::string_view piece = text.substr(0, kSegmentData);
      text.remove_prefix(piece.size());
      AppendNumber<4>(file_, at);
      AppendNumber<4>(file_, kSegmentData);
      AppendNumber<4>(file_, piece.size());
      AppendNumber<4>(file_, text.empty() ? 0 : at + kSegmentSize);
      file_.insert(file_.end(), piece.begin(), piece.end());
      file_.resize(at + kSegmentSize);
    }
    NoteSpace(kMessageSpaceAt, start);
    return Offset(start);
  }

  void AddRecord(const Record& record) {
    const std::size_t at = file_.size();
    const Bytes bytes = record.At(at);
    file_.insert(file_.end(), bytes.begin(), bytes.end());
    records_.push_back(Offset(at));
    NoteSpace(kRecordSpaceAt, at);
  }

  Bytes Finish() {
    if (records_.size() > kMaxDbxRecords) {
      throw Error("writing a message store", {},
                  std::to_string(records_.size()) + " records are too many for one file");
    }
    if (!records_.empty()) WriteTree();
    Put(kRecordCountAt, Offset(records_.size()));
    Put(kFileSizeAt, Offset(file_.size()));
    return std::move(file_);
  }

 private:
  void Put(std::size_t at, std::uint32_t number) { Store32(&file_[at], number); }

  /// The header names the last space of each kind: where it is, how long, how much is used.
  void NoteSpace(std::size_t headerField, std::size_t start) {
    Put(headerField, Offset(start));
    Put(headerField + 4, Offset(file_.size() - start));
    Put(headerField + 8, Offset(file_.size() - start));
  }

  // All records in one node, or a root whose entries are between the leaves.
  void WriteTree() {
    const std::size_t root = file_.size();
    const std::size_t total = records_.size();
    Put(kTreeRootAt, Offset(root));
    if (total <= kNodeEntries) {
      WriteNode(0, {0, total}, {});
    } else {
      const std::size_t between = total / (kNodeEntries + 1);
      const std::size_t leaves = between + 1;
      std::vector<Span> spans;
      std::size_t first = 0;
      for (std::size_t leaf = 0; leaf < leaves; ++leaf) {
        const std::size_t size = (total - between) * (leaf + 1) / leaves - (total - between) * leaf / leaves;
        spans.push_back({first, size});
        first += size + 1;
      }
      WriteNode(0, {0, between}, spans);
      for (const Span& span : spans) WriteNode(Offset(root), span, {});
    }
    Put(kTreeCountAt, Offset((file_.size() - root) / kNodeSize));
    NoteSpace(kTreeSpaceAt, root);
  }

  struct Span {
    std::size_t first, size;
  };

  /// A leaf with the records of `entries`; or, with `leaves`, the root, whose entries are the records between them.
  void WriteNode(std::uint32_t parent, Span entries, std::span<const Span> leaves) {
    const std::size_t at = file_.size();
    file_.resize(at + kNodeSize);
    const auto leafAt = [&](std::size_t leaf) { return Offset(at + kNodeSize * (leaf + 1)); };
    Put(at, Offset(at));
    Put(at + 0x0C, parent);
    file_[at + 0x11] = static_cast<std::uint8_t>(entries.size);
    if (!leaves.empty()) {
      Put(at + 0x08, leafAt(0));
      Put(at + 0x14, Offset(leaves[0].size));
    }
    for (std::size_t i = 0; i < entries.size; ++i) {
      const std::size_t entry = at + kNodeEntriesOffset + i * kNodeEntrySize;
      Put(entry, records_[leaves.empty() ? entries.first + i : leaves[i].first + leaves[i].size]);
      if (leaves.empty()) continue;
      Put(entry + 4, leafAt(i + 1));
      Put(entry + 8, Offset(leaves[i + 1].size));
    }
  }

  Bytes file_;
  std::vector<std::uint32_t> records_;
};

}  // namespace

Bytes MessageStore(std::span<const DbxMessage> messages) {
  Store store(DbxKind::Messages);
  std::uint32_t id = 0;
  for (const DbxMessage& message : messages) {
    const std::uint32_t text = store.AddText(message.text);
    const auto lines = static_cast<std::uint32_t>(std::count(message.text.begin(), message.text.end(), '\n'));
    Record record;
    record.Number(FieldId{0x00}, ++id);
    record.Number(FieldId{0x01}, kMailFlag | (message.read ? kReadFlag : 0));
    record.Time(FieldId{0x02}, message.sent);
    record.Number(FieldId{0x03}, lines);
    record.Number(FieldId{0x04}, text);
    record.Text(FieldId{0x05}, message.subject);
    record.Time(FieldId{0x06}, message.sent);
    record.Text(FieldId{0x07}, message.messageId);
    record.Text(FieldId{0x08}, message.subject);
    record.Text(FieldId{0x0D}, message.senderName);
    record.Text(FieldId{0x0E}, message.senderAddress);
    record.Number(FieldId{0x10}, kNormalPriority);
    record.Number(FieldId{0x11}, Offset(message.text.size()));
    record.Time(FieldId{0x12}, message.sent);
    record.Text(FieldId{0x13}, message.receiverName);
    record.Text(FieldId{0x14}, message.receiverAddress);
    record.Text(FieldId{0x1A}, message.account);
    record.Text(FieldId{0x1B}, "00000001");
    store.AddRecord(record);
  }
  return store.Finish();
}

Bytes FolderList(std::span<const DbxFolder> folders) {
  Store store(DbxKind::FolderList);
  for (const DbxFolder& folder : folders) {
    Record record;
    record.Number(FieldId{0x00}, folder.id);
    record.Number(FieldId{0x01}, folder.parent);
    record.Text(FieldId{0x02}, folder.name);
    if (!folder.file.empty()) record.Text(FieldId{0x03}, folder.file);
    record.Number(FieldId{0x06}, 0x4);
    record.Number(FieldId{0x07}, folder.messages);
    record.Number(FieldId{0x08}, folder.unread);
    store.AddRecord(record);
  }
  return store.Finish();
}

Bytes EmptyStore(DbxKind kind) {
  return Store(kind).Finish();
}

}  // namespace quillbox
