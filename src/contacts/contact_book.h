// SPDX-License-Identifier: GPL-3.0-or-later
// Address book files (.wab) of Outlook Express: their people and groups, and what in them is damaged. The whole file is
// in memory, and what is kept of it is at most ten times its size, whatever its counts and lengths say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contacts/contact.h"
#include "text/code_page.h"
#include "text/unicode.h"

namespace quillbox {

/// Larger files are refused: real books have less than a kilobyte for a person.
inline constexpr std::uint64_t kLargestContactBook = std::uint64_t{64} << 20;
/// People and groups that are read from one book.
inline constexpr std::size_t kMostContacts = 100'000;
/// Faults that are listed; what is beyond is only counted.
inline constexpr std::size_t kMostBookFaults = 1'000;

/// The part of an address book file that a fault is in.
enum class BookPart { Index, IndexEntry, Record, Property, Member, Group };

enum class BookFaultKind {
  BeyondFile,      ///< it reaches beyond the end of the file
  BeyondRecord,    ///< it reaches beyond the end of its record
  WrongLength,     ///< its length isn't that of what is in it
  TooMany,         ///< it has more entries than a book can have
  NotARecord,      ///< what is there doesn't begin as a record does
  WrongTag,        ///< the tag before the data isn't the one in the record's list
  WrongNumber,     ///< the record there has another number
  SeenBefore,      ///< there was a record of that number already
  Overlap,         ///< it shares bytes with another record
  NoSuchMember,    ///< the book has no such record
  UnknownMember,   ///< the entry is in a form that names no record
  Loop,            ///< the group contains itself
  DateOutOfRange,  ///< the year is beyond 9999
};

/// One fault of a book. What was readable in spite of it is in the book.
struct BookFault {
  BookPart part = BookPart::Record;
  BookFaultKind kind = BookFaultKind::NotARecord;
  std::uint64_t offset = 0;                              ///< bytes from the start of the file
  std::optional<std::uint32_t> recordId = std::nullopt;  ///< of the record that it is about, where that is known
  std::uint16_t property = 0;                            ///< of a property's fault
};

struct ContactBook {
  std::vector<Contact> contacts;  ///< in the order of the file's index, then those that were searched for
  std::vector<ContactGroup> groups;
  std::size_t deleted = 0;   ///< records marked as deleted that are still in the file
  std::size_t unlisted = 0;  ///< records in use that a sound index leaves out, such as older copies; not read
  std::size_t others = 0;    ///< records that are neither people nor groups; not read
  std::size_t searched = 0;  ///< records that were read although the index does not lead to them
  std::vector<BookFault> faults;
  std::size_t faultsNotListed = 0;

  bool IsWhole() const { return faults.empty(); }
};

/// True when `file` begins as an address book of any age does; its first 16 bytes are enough.
bool LooksLikeContactBook(ByteView file);

/// Reads the address book `file`, called `name` in errors. `codePage` is the disk's, for texts that are not UTF-16.
/// Throws Error for what isn't an address book at all: another kind of file (those of Windows 95's time are named), one
/// whose header is cut off, one that is too large.
ContactBook ReadContactBook(ByteView file, const std::string& name, const CodePage& codePage);

/// The words for a fault of the address book `name`: "ann.wab, offset 0x9c0: property 0x3a06 of record 17 reaches
/// beyond the end of the record".
std::string Describe(const BookFault& fault, const std::string& name);

}  // namespace quillbox
