// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <cstdio>

#include "contacts/contact_book.h"
#include "text/error.h"

namespace quillbox {
namespace {

/// By BookFaultKind; each goes on after the part's name.
constexpr std::array kWords = {
    "reaches beyond the end of the file",
    "reaches beyond the end of the record",
    "has a length that does not fit what is in it",
    "has more entries than an address book can have",
    "does not begin as a record does",
    "has another tag before its data than in the record's list",
    "leads to a record of another number",
    "has a number that another record had before",
    "shares bytes with another record",
    "names a record that the address book does not have",
    "does not name a record in a known form",
    "contains itself",
    "is a date beyond the year 9999",
};
static_assert(kWords.size() == static_cast<std::size_t>(BookFaultKind::DateOutOfRange) + 1);

/// By BookPart; the last three are of a record.
constexpr std::array kParts = {"the index", "an entry of the index", "the record", "property", "a member", "the group"};

std::string PartName(const BookFault& fault) {
  std::string name = kParts[static_cast<std::size_t>(fault.part)];
  if (fault.part == BookPart::Property) {
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), " 0x%04x", fault.property);
    name += number.data();
  }
  if (!fault.recordId) return name;
  const std::string id = std::to_string(*fault.recordId);
  switch (fault.part) {
    case BookPart::Record:
    case BookPart::Group:
      return name + " " + id;
    case BookPart::Member:
      return name + " of the group " + id;
    default:
      return name + " of record " + id;
  }
}

}  // namespace

std::string Describe(const BookFault& fault, const std::string& name) {
  const std::string why = PartName(fault) + " " + kWords[static_cast<std::size_t>(fault.kind)];
  return Describe(Error("", {name, fault.offset, {}}, why));
}

}  // namespace quillbox
