// SPDX-License-Identifier: GPL-3.0-or-later
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
constexpr std::size_t kFirstChildAt = 0x08;
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
constexpr std::uint32_t kNoParent = 0xFFFFFFFF;

// Outlook Express 4.
constexpr std::size_t kOldHeaderSize = 0x54;
constexpr std::size_t kOldMessageHeadSize = 16;

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

  /// A record; the tree leads to it unless it is deleted.
  void AddRecord(const Record& record, bool deleted = false) {
    const std::size_t at = file_.size();
    const Bytes bytes = record.At(at);
    file_.insert(file_.end(), bytes.begin(), bytes.end());
    if (!deleted) records_.push_back(Offset(at));
    NoteSpace(kRecordSpaceAt, at);
  }

  Bytes Finish() {
    if (!records_.empty()) WriteTree();
    Put(kRecordCountAt, Offset(records_.size()));
    Put(kFileSizeAt, Offset(file_.size()));
    if (file_.size() > UINT32_MAX) throw Error("writing a message store", {}, "it would be larger than 4 GB");
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

  void WriteTree() {
    const std::size_t root = file_.size();
    Put(kTreeRootAt, Offset(root));
    WriteNode(0, {0, records_.size()});
    Put(kTreeCountAt, Offset((file_.size() - root) / kNodeSize));
    NoteSpace(kTreeSpaceAt, root);
  }

  struct Span {
    std::size_t first, size;
  };

  /// How many records fit below each child of a node with `total` of them; 0 for a leaf.
  static std::size_t RoomOfChildren(std::size_t total) {
    std::size_t room = 0;
    for (std::size_t next = kNodeEntries; next < total; next = room * (kNodeEntries + 1) + kNodeEntries) room = next;
    return room;
  }

  /// The records of a node's children: about as many each, with one entry of the node between two of them.
  static std::vector<Span> ShareAmongChildren(Span all) {
    const std::size_t room = RoomOfChildren(all.size);
    if (room == 0) return {};
    const std::size_t children = (all.size + room + 1) / (room + 1);
    const std::size_t shared = all.size - (children - 1);
    std::vector<Span> shares;
    std::size_t first = all.first;
    for (std::size_t child = 0; child < children; ++child) {
      const std::size_t size = shared * (child + 1) / children - shared * child / children;
      shares.push_back({first, size});
      first += size + 1;
    }
    return shares;
  }

  /// The node for `records`, and the nodes below it; its offset.
  std::uint32_t WriteNode(std::uint32_t parent, Span records) {
    const std::size_t at = file_.size();
    const std::vector<Span> children = ShareAmongChildren(records);
    const std::size_t entries = children.empty() ? records.size : children.size() - 1;
    file_.resize(at + kNodeSize);
    Put(at, Offset(at));
    Put(at + 0x0C, parent);
    file_[at + 0x11] = static_cast<std::uint8_t>(entries);
    for (std::size_t i = 0; i < entries; ++i) {
      const std::size_t record = children.empty() ? records.first + i : children[i].first + children[i].size;
      Put(at + kNodeEntriesOffset + i * kNodeEntrySize, records_[record]);
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
      const std::size_t entry = at + kNodeEntriesOffset + (i - 1) * kNodeEntrySize;
      Put(i == 0 ? at + kFirstChildAt : entry + 4, WriteNode(Offset(at), children[i]));
      Put(i == 0 ? at + kNodeEntriesOffset - 4 : entry + 8, Offset(children[i].size));
    }
    return Offset(at);
  }

  Bytes file_;
  std::vector<std::uint32_t> records_;
};

}  // namespace

Bytes MessageStore(std::span<const DbxMessage> messages) {
  Store store(DbxKind::Messages);
  std::uint32_t id = 0;
  for (const DbxMessage& message : messages) {
    const std::uint32_t text = message.text.empty() ? 0 : store.AddText(message.text);
    const auto lines = static_cast<std::uint32_t>(std::count(message.text.begin(), message.text.end(), '\n'));
    Record record;
    record.Number(FieldId{0x00}, ++id);
    record.Number(FieldId{0x01}, kMailFlag | message.flags | (message.read ? kReadFlag : 0));
    record.Time(FieldId{0x02}, message.sent);
    record.Number(FieldId{0x03}, lines);
    if (text != 0) record.Number(FieldId{0x04}, text);
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
    store.AddRecord(record, message.deleted);
  }
  return store.Finish();
}

Bytes FolderListFile(std::span<const DbxFolder> folders) {
  Store store(DbxKind::FolderList);
  for (const DbxFolder& folder : folders) {
    Record record;
    // Zeros are left out.
    const auto number = [&](std::uint8_t field, std::uint32_t value) {
      if (value != 0) record.Number(FieldId{field}, value);
    };
    number(0x00, folder.id);
    number(0x01, folder.parent.value_or(kNoParent));
    record.Text(FieldId{0x02}, folder.name);
    if (!folder.file.empty()) record.Text(FieldId{0x03}, folder.file);
    number(0x06, 0x1);
    number(0x07, folder.messages);
    number(0x08, folder.unread);
    number(0x09, folder.special);
    number(0x0A, folder.tree);
    store.AddRecord(record);
  }
  return store.Finish();
}

Bytes OldMessageStore(std::span<const std::string> texts) {
  Bytes file = {'J', 'M', 'F', '6', 1, 0, 1, 0};
  AppendNumber<4>(file, texts.size());
  AppendNumber<4>(file, texts.size());
  file.resize(kOldHeaderSize);
  std::uint32_t number = 0;
  for (const std::string& text : texts) {
    file.insert(file.end(), {0x00, 0x7F, 0x00, 0x7F});
    AppendNumber<4>(file, ++number);
    AppendNumber<4>(file, kOldMessageHeadSize + text.size());
    AppendNumber<4>(file, text.size());
    file.insert(file.end(), text.begin(), text.end());
  }
  Store32(&file[0x10], Offset(file.size()));
  return file;
}

Bytes EmptyStore(DbxKind kind) {
  return Store(kind).Finish();
}

}  // namespace quillbox
