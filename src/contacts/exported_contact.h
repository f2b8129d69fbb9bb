// SPDX-License-Identifier: GPL-3.0-or-later
// What the writers of contacts share: texts and dates as all formats have them, the groups around a contact, and the
// lines that are added to the notes.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "contacts/contact_book.h"

namespace quillbox {

/// `text` with LF as its only end of line and without other control characters but tabs.
std::string PlainLines(std::string_view text);
/// The first line, or all that is behind it.
std::string FirstLine(const std::string& text);
std::string FurtherLines(const std::string& text);

/// "1984-04-30"; empty for no date.
std::string IsoDate(const std::optional<Date>& date);

/// For each contact of a book the groups that it is in, also by way of groups within them, in the book's order.
std::vector<std::vector<const ContactGroup*>> GroupsOfContacts(const ContactBook& book);
/// The names of groups, with `separator` between them.
std::string JoinedNames(const std::vector<const ContactGroup*>& groups, std::string_view separator);

/// The address at that place, or an empty text.
std::string MailAt(const Contact& contact, std::size_t place);

/// A part of a contact for which a format has no place.
enum class NotePart { Title, MiddleName, FurtherMails, HomeFax, Office, Anniversary, Groups };

/// The notes with a line for each of `parts` that the contact has. `mailsWritten` are the addresses that the format has
/// a place for; the home's fax is added where there is one for business too.
std::string NotesWith(const Contact& contact, const std::vector<const ContactGroup*>& groups, std::size_t mailsWritten,
                      std::initializer_list<NotePart> parts);

}  // namespace quillbox
