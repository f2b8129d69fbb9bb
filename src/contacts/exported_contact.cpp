// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/exported_contact.h"

#include <array>
#include <cstdio>
#include <numeric>

#include "contacts/contact_writers.h"

namespace quillbox {
namespace {

bool IsShownIn(const std::string& part, const Contact& contact) {
  return contact.displayName.find(part) != std::string::npos;
}

/// The values of one part; often one or none.
std::vector<std::string> ValuesOf(NotePart part, const Contact& contact, std::size_t mailsWritten) {
  switch (part) {
    case NotePart::Title:
      if (!IsShownIn(contact.title, contact)) return {contact.title};
      return {};
    case NotePart::MiddleName:
      if (!IsShownIn(contact.middleName, contact)) return {contact.middleName};
      return {};
    case NotePart::FurtherMails: {
      std::vector<std::string> mails;
      for (std::size_t at = mailsWritten; at < contact.mails.size(); ++at) mails.push_back(contact.mails[at].address);
      return mails;
    }
    case NotePart::HomeFax:
      if (!contact.business.fax.empty()) return {contact.home.fax};
      return {};
    case NotePart::Office:
      return {contact.office};
    case NotePart::Anniversary:
      return {IsoDate(contact.anniversary)};
    case NotePart::Groups:
      break;
  }
  return {};
}

/// By NotePart.
constexpr std::array kLabels = {"Title", "Middle name", "E-mail", "Home fax", "Office", "Anniversary", "Groups"};
static_assert(kLabels.size() == static_cast<std::size_t>(NotePart::Groups) + 1);

}  // namespace

std::vector<std::size_t> AllContacts(const ContactBook& book) {
  std::vector<std::size_t> all(book.contacts.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return all;
}

std::string PlainLines(std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    if (c == '\r') {
      if (!text.substr(at + 1).starts_with('\n')) plain += '\n';
    } else if (!control || c == '\n' || c == '\t') {
      plain += c;
    }
  }
  return plain;
}

std::string FirstLine(const std::string& text) {
  const std::string lines = PlainLines(text);
  return lines.substr(0, lines.find('\n'));
}

std::string FurtherLines(const std::string& text) {
  const std::string lines = PlainLines(text);
  const std::size_t end = lines.find('\n');
  return end == std::string::npos ? std::string() : lines.substr(end + 1);
}

std::string IsoDate(const std::optional<Date>& date) {
  if (!date) return {};
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date->year()),
                static_cast<unsigned>(date->month()), static_cast<unsigned>(date->day()));
  return text.data();
}

std::vector<std::vector<const ContactGroup*>> GroupsOfContacts(const ContactBook& book) {
  std::vector<std::vector<const ContactGroup*>> groups(book.contacts.size());
  for (const ContactGroup& group : book.groups) {
    for (const std::size_t contact : group.everyone) groups[contact].push_back(&group);
  }
  return groups;
}

std::string JoinedNames(const std::vector<const ContactGroup*>& groups, std::string_view separator) {
  std::string names;
  for (const ContactGroup* group : groups) {
    if (!names.empty()) names += separator;
    names += ShownName(*group);
  }
  return names;
}

std::string MailAt(const Contact& contact, std::size_t place) {
  return place < contact.mails.size() ? contact.mails[place].address : std::string();
}

std::string NotesWith(const Contact& contact, const std::vector<const ContactGroup*>& groups, std::size_t mailsWritten,
                      std::initializer_list<NotePart> parts) {
  std::string notes = contact.notes;
  for (const NotePart part : parts) {
    std::vector<std::string> values = ValuesOf(part, contact, mailsWritten);
    if (part == NotePart::Groups) values = {JoinedNames(groups, "; ")};
    for (const std::string& value : values) {
      if (value.empty()) continue;
      if (!notes.empty()) notes += '\n';
      notes += kLabels[static_cast<std::size_t>(part)] + (": " + value);
    }
  }
  return notes;
}

}  // namespace quillbox
