// SPDX-License-Identifier: GPL-3.0-or-later
// What the properties of an address book's records mean: a table of those that are read, and the step from a record to
// a contact. A property that is not in the table, or is there with another type, is skipped.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "contacts/contact.h"
#include "contacts/wab_record.h"
#include "text/code_page.h"

namespace quillbox {

enum class WabKind : std::uint32_t { Person = 6, Group = 8 };

/// A record's known properties.
struct WabContent {
  Contact contact;  ///< all but the number and the mails
  std::optional<std::uint32_t> kind;
  Bytes entryId;
  std::string mail, mailType;                 ///< the default address, as a record with only one has it
  std::vector<std::string> mails, mailTypes;  ///< all addresses; the types in the same order
  std::optional<std::uint32_t> defaultMail;   ///< its place in `mails`
  std::vector<Bytes> members;                 ///< of a group: entry ids
};

/// Where a property goes. The type says which types of property it takes.
using WabPlace = std::variant<std::string& (*)(WabContent&),               // text of either form
                              std::vector<std::string>& (*)(WabContent&),  // array of texts
                              std::optional<std::uint32_t>& (*)(WabContent&), std::optional<Date>& (*)(WabContent&),
                              Bytes& (*)(WabContent&), std::vector<Bytes>& (*)(WabContent&)>;

struct WabPropertyRow {
  std::uint16_t id;
  WabPlace place;
};
std::span<const WabPropertyRow> WabPropertyTable();

/// Keeps `property` in `content` if it is one of the table; the reason if its data cannot be what they should be.
std::optional<BookFaultKind> KeepProperty(const WabProperty& property, const CodePage& codePage, WabContent& content);

/// The contact of a person's record: the addresses of both properties made into one list, the default one first.
Contact ContactOf(WabContent content, std::uint32_t recordId);

}  // namespace quillbox
