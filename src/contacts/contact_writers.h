// SPDX-License-Identifier: GPL-3.0-or-later
// The formats in which other programs take contacts: vCard 3.0 (RFC 2426), CSV (RFC 4180) and LDIF (RFC 2849). All in
// UTF-8. In a text of several lines the ends of lines become those of the format; other control characters, which none
// of the formats can hold, are left out. What a format or the programs that read it have no place for is added to the
// notes as a line "Anniversary: 1984-04-30".
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "contacts/contact_book.h"

namespace quillbox {

/// Takes the bytes of one file in their order. What it throws ends the writing.
using ContactSink = std::function<void(std::string_view)>;

/// Places in ContactBook::contacts of those that are to be written, ascending.
using ContactChoice = std::span<const std::size_t>;
std::vector<std::size_t> AllContacts(const ContactBook& book);

/// One card for each contact. The names of its groups, of those around them too, are its categories; groups without a
/// chosen contact have no place in the format. Lines end with CR LF and have at most 75 bytes.
void WriteVCards(const ContactBook& book, ContactChoice chosen, const ContactSink& sink);

/// Whose headings a table has.
enum class CsvHeadings {
  Thunderbird,  ///< as Thunderbird exports and imports its address books
  Webmail,      ///< "E-mail Address", "Business Phone" and so on, which web mail services and office programs know
};

/// A line of headings and one line for each contact, ends of lines within a cell as LF.
///
/// The texts come from strangers, and a spreadsheet takes a cell that begins with = + - @ (or a tab, or the wide forms
/// of these) for a formula. Such a cell gets an apostrophe before it, unless it is an e-mail address or a telephone
/// number that begins with + or - and has no characters that a formula could do something with: those are never
/// altered.
void WriteCsv(const ContactBook& book, ContactChoice chosen, CsvHeadings headings, const ContactSink& sink);

/// An entry for each contact, then one for each group that has a chosen contact in it, with the attributes of Mozilla's
/// address book. A group's name has blanks for the characters that Thunderbird takes in no list's name. Lines end with
/// LF and have at most 76 bytes, all ASCII.
void WriteLdif(const ContactBook& book, ContactChoice chosen, const ContactSink& sink);

}  // namespace quillbox
