// SPDX-License-Identifier: GPL-3.0-or-later
// An address book file:
//
//   0x00  signature, 16 bytes
//   0x10  two numbers that nothing here needs
//   0x18  six tables, four numbers each: room for it, bytes in use, where it is, number of entries
//
// The first table is the index of the records, 8 bytes an entry: number and place. The others are lists of names sorted
// for searching, which repeat what the records have; they are not read.
#include <algorithm>
#include <array>
#include <map>
#include <unordered_set>
#include <utility>

#include "contacts/contact_book.h"
#include "contacts/wab_groups.h"
#include "contacts/wab_properties.h"
#include "contacts/wab_record.h"
#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::array<std::uint8_t, 16> kSignature = {0x9C, 0xCB, 0xCB, 0x8D, 0x13, 0x75, 0xD2, 0x11,
                                                     0x91, 0x58, 0x00, 0xC0, 0x4F, 0x79, 0x56, 0xA4};
constexpr std::array<std::uint8_t, 8> kWindows95Signature = {0x81, 0x32, 0x84, 0xC1, 0x85, 0x05, 0xD0, 0x11};
constexpr std::size_t kHeaderSize = 0x78;
constexpr std::size_t kIndexTable = 0x18;
constexpr std::uint64_t kIndexEntrySize = 8;
/// Properties and elements of all records that are looked at. A sound file has fewer than it has bytes; one that is
/// full of records within records would take hours.
constexpr std::uint64_t kMostSteps = 4 * kLargestContactBook / 8;

template <std::size_t Size>
bool BeginsWith(ByteView file, const std::array<std::uint8_t, Size>& signature) {
  return file.size() >= Size && std::equal(signature.begin(), signature.end(), file.begin());
}

void CheckHeader(ByteView file, const std::string& name) {
  const auto refuse = [&](const char* why) { throw Error("reading the address book", {name, 0, {}}, why); };
  if (BeginsWith(file, kWindows95Signature)) {
    refuse("it is an address book of the Windows 95 era, whose format is another one and is not read");
  }
  if (!BeginsWith(file, kSignature)) refuse("it is not an address book: it begins otherwise");
  if (file.size() < kHeaderSize) refuse("its header is cut off");
  if (file.size() > kLargestContactBook) refuse("it is too large for an address book");
}

class BookReader {
 public:
  BookReader(ByteView file, const CodePage& codePage) : file_(file), codePage_(codePage) {}

  ContactBook Read() {
    ReadIndex();
    Search();
    ResolveGroups(book_, rawGroups_, entryIds_, [this](const BookFault& fault) { Add(fault); });
    return std::move(book_);
  }

 private:
  void Add(const BookFault& fault) {
    if (book_.faults.size() < kMostBookFaults) {
      book_.faults.push_back(fault);
    } else {
      ++book_.faultsNotListed;
    }
  }
  void AddIndexFault(const BookFault& fault) {
    indexIsWhole_ = false;
    Add(fault);
  }

  void ReadIndex() {
    const std::uint64_t used = Load32(&file_[kIndexTable + 4]);
    const std::uint64_t begin = Load32(&file_[kIndexTable + 8]);
    const std::uint64_t count = Load32(&file_[kIndexTable + 12]);
    const auto fault = [&](BookFaultKind kind) {
      AddIndexFault({.part = BookPart::Index, .kind = kind, .offset = begin});
    };
    if (count > kMostContacts) return fault(BookFaultKind::TooMany);
    if (used != count * kIndexEntrySize) fault(BookFaultKind::WrongLength);
    if (count > 0 && begin + count * kIndexEntrySize > file_.size()) fault(BookFaultKind::BeyondFile);
    for (std::uint64_t at = begin; at < begin + count * kIndexEntrySize; at += kIndexEntrySize) {
      if (at + kIndexEntrySize > file_.size()) return;
      ReadIndexEntry(at);
    }
  }

  void ReadIndexEntry(std::uint64_t at) {
    const std::uint32_t id = Load32(&file_[static_cast<std::size_t>(at)]);
    const std::uint64_t offset = Load32(&file_[static_cast<std::size_t>(at) + 4]);
    const auto fault = [&](BookFaultKind kind) {
      AddIndexFault({.part = BookPart::IndexEntry, .kind = kind, .offset = at, .recordId = id});
    };
    const auto head = ReadRecordHead(file_, offset);
    if (const auto* kind = std::get_if<BookFaultKind>(&head)) return fault(*kind);
    const auto& record = std::get<WabRecordHead>(head);
    if (record.id != id) fault(BookFaultKind::WrongNumber);
    // Deleted ones are counted by the search, listed or not.
    if (!record.inUse) return;
    if (const auto refusal = Take(record)) AddIndexFault(*refusal);
  }

  /// Reads a record, unless it shares bytes with one that was read or has the number of one: then that fault.
  std::optional<BookFault> Take(const WabRecordHead& head) {
    const auto refusal = [&](BookFaultKind kind) {
      return BookFault{.part = BookPart::Record, .kind = kind, .offset = head.start, .recordId = head.id};
    };
    if (SharesBytes(head.start, head.start + kRecordHeadSize)) return refusal(BookFaultKind::Overlap);
    if (ids_.contains(head.id)) return refusal(BookFaultKind::SeenBefore);
    if (ids_.size() == kMostContacts || steps_ > kMostSteps) return refusal(BookFaultKind::TooMany);
    WabPropertyWalk walk(file_, head);
    while (walk.Next()) continue;
    steps_ += walk.Steps();
    if (SharesBytes(head.start, walk.Position())) return refusal(BookFaultKind::Overlap);
    taken_[head.start] = walk.Position();
    ids_.insert(head.id);
    if (walk.Fault()) {
      Add(*walk.Fault());
    } else if (head.end > file_.size()) {
      Add(refusal(BookFaultKind::BeyondFile));
    }
    Keep(ContentOf(head), head);
    return std::nullopt;
  }

  bool SharesBytes(std::uint64_t begin, std::uint64_t end) const {
    const auto after = taken_.lower_bound(begin);
    if (after != taken_.end() && after->first < end) return true;
    return after != taken_.begin() && std::prev(after)->second > begin;
  }

  WabContent ContentOf(const WabRecordHead& head) {
    WabContent content;
    WabPropertyWalk walk(file_, head);
    while (const std::optional<WabProperty> property = walk.Next()) {
      const std::optional<BookFaultKind> kind = KeepProperty(*property, codePage_, content);
      if (!kind) continue;
      Add({.part = BookPart::Property,
           .kind = *kind,
           .offset = property->offset,
           .recordId = head.id,
           .property = property->Id()});
    }
    return content;
  }

  void Keep(WabContent content, const WabRecordHead& head) {
    if (!content.entryId.empty()) entryIds_.emplace(EntryKey(content.entryId), head.id);
    const auto guessed = content.members.empty() ? WabKind::Person : WabKind::Group;
    const std::uint32_t kind = content.kind.value_or(static_cast<std::uint32_t>(guessed));
    if (kind == static_cast<std::uint32_t>(WabKind::Group)) {
      ContactGroup group;
      group.recordId = head.id;
      group.name = std::move(content.contact.displayName);
      book_.groups.push_back(std::move(group));
      rawGroups_.push_back({head.start, std::move(content.members)});
    } else if (kind == static_cast<std::uint32_t>(WabKind::Person)) {
      book_.contacts.push_back(ContactOf(std::move(content), head.id));
    } else {
      ++book_.others;
    }
  }

  /// Goes through the file for what looks like a record and was not read: deleted ones are counted, and those in use
  /// are read if the index is damaged.
  void Search() {
    for (std::uint64_t at = kHeaderSize; at + kRecordHeadSize <= file_.size();) {
      const auto taken = taken_.upper_bound(at);
      if (taken != taken_.begin() && std::prev(taken)->second > at) {
        at = std::prev(taken)->second;
      } else if (const std::optional<WabRecordHead> head = Candidate(at)) {
        Found(*head);
        at += kRecordHeadSize;
      } else {
        ++at;
      }
    }
  }

  /// A head whose data begin right behind its tags, with the first of them, as every record's do.
  std::optional<WabRecordHead> Candidate(std::uint64_t at) const {
    const std::uint8_t* bytes = &file_[static_cast<std::size_t>(at)];
    if (Load32(bytes + 0x10) != kRecordHeadSize || Load32(bytes + 4) != 1) return std::nullopt;
    const auto read = ReadRecordHead(file_, at);
    const auto* head = std::get_if<WabRecordHead>(&read);
    if (head == nullptr || head->properties == 0) return std::nullopt;
    const std::uint64_t tagsEnd = head->tags + std::uint64_t{head->properties} * 4;
    if (head->data != tagsEnd || tagsEnd + 4 > file_.size()) return std::nullopt;
    if (Load32(&file_[static_cast<std::size_t>(tagsEnd)]) != Load32(bytes + kRecordHeadSize)) return std::nullopt;
    return *head;
  }

  void Found(const WabRecordHead& head) {
    if (!head.inUse) {
      ++book_.deleted;
    } else if (indexIsWhole_ || ids_.contains(head.id)) {
      ++book_.unlisted;
    } else if (const auto refusal = Take(head)) {
      Add(*refusal);
    } else {
      ++book_.searched;
    }
  }

  ByteView file_;
  const CodePage& codePage_;
  ContactBook book_;
  bool indexIsWhole_ = true;
  std::unordered_set<std::uint32_t> ids_;
  std::map<std::uint64_t, std::uint64_t> taken_;  ///< where records are that were read: begin and end
  std::vector<RawGroup> rawGroups_;
  EntryIds entryIds_;
  std::uint64_t steps_ = 0;
};

}  // namespace

bool LooksLikeContactBook(ByteView file) {
  return BeginsWith(file, kSignature) || BeginsWith(file, kWindows95Signature);
}

ContactBook ReadContactBook(ByteView file, const std::string& name, const CodePage& codePage) {
  CheckHeader(file, name);
  return BookReader(file, codePage).Read();
}

}  // namespace quillbox
