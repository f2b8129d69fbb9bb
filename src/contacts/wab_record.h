// SPDX-License-Identifier: GPL-3.0-or-later
// One record of an address book file, checked: its head, and its properties one after the other.
//
//   0x00  1 in use, 0 deleted          0x10  0x20, where the tags begin
//   0x04  1                            0x14  where the data begin
//   0x08  the record's number          0x18  the same or the data's end
//   0x0C  number of properties         0x1C  length of the data
//
// Then a tag for each property, then their data in the same order: the tag again, for arrays the number of elements,
// the length, the bytes; an array's element has its own length before it.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>

#include "contacts/contact_book.h"

namespace quillbox {

inline constexpr std::size_t kRecordHeadSize = 0x20;
/// Real records have a few dozen.
inline constexpr std::uint32_t kMostProperties = 4'096;
/// Elements of one array; a group has one for each member.
inline constexpr std::uint32_t kMostElements = 65'536;

struct WabRecordHead {
  bool inUse = false;
  std::uint32_t id = 0;
  std::uint32_t properties = 0;
  // Bytes from the start of the file.
  std::uint64_t start = 0;
  std::uint64_t tags = 0;
  std::uint64_t data = 0;
  std::uint64_t end = 0;  ///< of the data, which is beyond the file's end where the file is cut off
};

/// The head of the record at `offset`; its tags are all in the file. Else what is wrong with it.
std::variant<WabRecordHead, BookFaultKind> ReadRecordHead(ByteView file, std::uint64_t offset);

/// The low half of a tag.
enum class WabType : std::uint16_t {
  Number = 0x3,
  NarrowText = 0x1E,
  WideText = 0x1F,
  Time = 0x40,
  Binary = 0x102,
  Array = 0x1000,  ///< added to another one
};

struct WabProperty {
  std::uint32_t tag = 0;
  std::uint64_t offset = 0;    ///< of the tag before the data
  std::uint32_t elements = 0;  ///< of an array
  ByteView data;               ///< of an array: its elements with their lengths, which fit

  std::uint16_t Id() const { return static_cast<std::uint16_t>(tag >> 16); }
  std::uint16_t Type() const { return static_cast<std::uint16_t>(tag); }
};

/// Walks the properties of a record. Where one is damaged the rest cannot be found, and the walk ends.
class WabPropertyWalk {
 public:
  WabPropertyWalk(ByteView file, const WabRecordHead& head)
      : file_(file), head_(head), at_(head.data), position_(head.tags + head.properties * std::uint64_t{4}) {}

  /// The next property; nothing at the end and at a fault.
  std::optional<WabProperty> Next();
  const std::optional<BookFault>& Fault() const { return fault_; }
  /// Bytes from the start of the file to what comes after the last whole property.
  std::uint64_t Position() const { return position_; }
  /// How many properties and elements were looked at, as a measure of the work.
  std::uint64_t Steps() const { return steps_; }

 private:
  std::optional<std::uint32_t> Number();
  bool ReadData(WabProperty& property);
  bool ReadElements(WabProperty& property, std::uint32_t length);
  bool Fail(BookFaultKind kind, const WabProperty& property);
  /// Where the record's data end, or the file before them.
  std::uint64_t End() const { return head_.end < file_.size() ? head_.end : file_.size(); }

  ByteView file_;
  WabRecordHead head_;
  std::uint64_t at_;
  std::uint64_t position_;
  std::uint32_t next_ = 0;
  std::uint64_t steps_ = 0;
  std::optional<BookFault> fault_;
};

/// Takes the elements of an array property one after the other.
class WabElements {
 public:
  explicit WabElements(const WabProperty& property) : rest_(property.data), left_(property.elements) {}
  std::optional<ByteView> Next();

 private:
  ByteView rest_;
  std::uint32_t left_;
};

}  // namespace quillbox
