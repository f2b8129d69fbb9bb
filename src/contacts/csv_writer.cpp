// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <span>
#include <string>

#include "contacts/contact_writers.h"
#include "contacts/exported_contact.h"

namespace quillbox {
namespace {

struct Entry {
  const Contact& contact;
  const std::vector<const ContactGroup*>& groups;
};

enum class CellKind { Text, Phone, Mail };

struct Column {
  const char* heading;
  std::string (*value)(const Entry&);
  CellKind kind = CellKind::Text;
};

template <class Number>
std::string Digits(const std::optional<Date>& date, Number (*part)(const Date&)) {
  return date ? std::to_string(part(*date)) : std::string();
}
int YearOf(const Date& date) {
  return static_cast<int>(date.year());
}
unsigned MonthOf(const Date& date) {
  return static_cast<unsigned>(date.month());
}
unsigned DayOf(const Date& date) {
  return static_cast<unsigned>(date.day());
}

const std::string& Fax(const Contact& contact) {
  return contact.business.fax.empty() ? contact.home.fax : contact.business.fax;
}

std::string ThunderbirdNotes(const Entry& e) {
  return NotesWith(e.contact, e.groups, 2,
                   {NotePart::Title, NotePart::MiddleName, NotePart::FurtherMails, NotePart::HomeFax, NotePart::Office,
                    NotePart::Anniversary, NotePart::Groups});
}

const Column kThunderbird[] = {
    {"First Name", [](const Entry& e) { return e.contact.firstName; }},
    {"Last Name", [](const Entry& e) { return e.contact.lastName; }},
    {"Display Name", [](const Entry& e) { return ShownName(e.contact); }},
    {"Nickname", [](const Entry& e) { return e.contact.nickname; }},
    {"Primary Email", [](const Entry& e) { return MailAt(e.contact, 0); }, CellKind::Mail},
    {"Secondary Email", [](const Entry& e) { return MailAt(e.contact, 1); }, CellKind::Mail},
    {"Screen Name", [](const Entry&) { return std::string(); }},
    {"Work Phone", [](const Entry& e) { return e.contact.business.phone; }, CellKind::Phone},
    {"Home Phone", [](const Entry& e) { return e.contact.home.phone; }, CellKind::Phone},
    {"Fax Number", [](const Entry& e) { return Fax(e.contact); }, CellKind::Phone},
    {"Pager Number", [](const Entry& e) { return e.contact.pager; }, CellKind::Phone},
    {"Mobile Number", [](const Entry& e) { return e.contact.mobile; }, CellKind::Phone},
    {"Home Address", [](const Entry& e) { return FirstLine(e.contact.home.address.street); }},
    {"Home Address 2", [](const Entry& e) { return FurtherLines(e.contact.home.address.street); }},
    {"Home City", [](const Entry& e) { return e.contact.home.address.city; }},
    {"Home State", [](const Entry& e) { return e.contact.home.address.state; }},
    {"Home ZipCode", [](const Entry& e) { return e.contact.home.address.postCode; }},
    {"Home Country", [](const Entry& e) { return e.contact.home.address.country; }},
    {"Work Address", [](const Entry& e) { return FirstLine(e.contact.business.address.street); }},
    {"Work Address 2", [](const Entry& e) { return FurtherLines(e.contact.business.address.street); }},
    {"Work City", [](const Entry& e) { return e.contact.business.address.city; }},
    {"Work State", [](const Entry& e) { return e.contact.business.address.state; }},
    {"Work ZipCode", [](const Entry& e) { return e.contact.business.address.postCode; }},
    {"Work Country", [](const Entry& e) { return e.contact.business.address.country; }},
    {"Job Title", [](const Entry& e) { return e.contact.job; }},
    {"Department", [](const Entry& e) { return e.contact.department; }},
    {"Organization", [](const Entry& e) { return e.contact.company; }},
    {"Web Page 1", [](const Entry& e) { return e.contact.business.web; }},
    {"Web Page 2", [](const Entry& e) { return e.contact.home.web; }},
    {"Birth Year", [](const Entry& e) { return Digits(e.contact.birthday, YearOf); }},
    {"Birth Month", [](const Entry& e) { return Digits(e.contact.birthday, MonthOf); }},
    {"Birth Day", [](const Entry& e) { return Digits(e.contact.birthday, DayOf); }},
    {"Notes", ThunderbirdNotes},
};

const Column kWebmail[] = {
    {"Title", [](const Entry& e) { return e.contact.title; }},
    {"First Name", [](const Entry& e) { return e.contact.firstName; }},
    {"Middle Name", [](const Entry& e) { return e.contact.middleName; }},
    {"Last Name", [](const Entry& e) { return e.contact.lastName; }},
    {"Display Name", [](const Entry& e) { return ShownName(e.contact); }},
    {"Nickname", [](const Entry& e) { return e.contact.nickname; }},
    {"E-mail Address", [](const Entry& e) { return MailAt(e.contact, 0); }, CellKind::Mail},
    {"E-mail 2 Address", [](const Entry& e) { return MailAt(e.contact, 1); }, CellKind::Mail},
    {"E-mail 3 Address", [](const Entry& e) { return MailAt(e.contact, 2); }, CellKind::Mail},
    {"Home Phone", [](const Entry& e) { return e.contact.home.phone; }, CellKind::Phone},
    {"Business Phone", [](const Entry& e) { return e.contact.business.phone; }, CellKind::Phone},
    {"Mobile Phone", [](const Entry& e) { return e.contact.mobile; }, CellKind::Phone},
    {"Pager", [](const Entry& e) { return e.contact.pager; }, CellKind::Phone},
    {"Home Fax", [](const Entry& e) { return e.contact.home.fax; }, CellKind::Phone},
    {"Business Fax", [](const Entry& e) { return e.contact.business.fax; }, CellKind::Phone},
    {"Home Street", [](const Entry& e) { return e.contact.home.address.street; }},
    {"Home City", [](const Entry& e) { return e.contact.home.address.city; }},
    {"Home State", [](const Entry& e) { return e.contact.home.address.state; }},
    {"Home Postal Code", [](const Entry& e) { return e.contact.home.address.postCode; }},
    {"Home Country", [](const Entry& e) { return e.contact.home.address.country; }},
    {"Business Street", [](const Entry& e) { return e.contact.business.address.street; }},
    {"Business City", [](const Entry& e) { return e.contact.business.address.city; }},
    {"Business State", [](const Entry& e) { return e.contact.business.address.state; }},
    {"Business Postal Code", [](const Entry& e) { return e.contact.business.address.postCode; }},
    {"Business Country", [](const Entry& e) { return e.contact.business.address.country; }},
    {"Company", [](const Entry& e) { return e.contact.company; }},
    {"Job Title", [](const Entry& e) { return e.contact.job; }},
    {"Department", [](const Entry& e) { return e.contact.department; }},
    {"Office Location", [](const Entry& e) { return e.contact.office; }},
    {"Web Page", [](const Entry& e) { return e.contact.business.web; }},
    {"Personal Web Page", [](const Entry& e) { return e.contact.home.web; }},
    {"Birthday", [](const Entry& e) { return IsoDate(e.contact.birthday); }},
    {"Anniversary", [](const Entry& e) { return IsoDate(e.contact.anniversary); }},
    {"Notes", [](const Entry& e) { return NotesWith(e.contact, e.groups, 3, {NotePart::FurtherMails}); }},
    {"Categories", [](const Entry& e) { return JoinedNames(e.groups, ";"); }},
};

/// The last four are the wide forms of the first four, which spreadsheets of the Far East take for them.
constexpr std::string_view kFormulaStarts[] = {
    "=", "+", "-", "@", "\t", "\n", "\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D", "\xEF\xBC\xA0"};

/// Letters, digits, what is beyond ASCII, and `others`.
bool HasOnly(std::string_view text, const char* others) {
  return std::all_of(text.begin(), text.end(), [&](char c) {
    const bool letterOrDigit = (c >= '0' && c <= '9') || (AsciiUpper(c) >= 'A' && AsciiUpper(c) <= 'Z');
    const bool other = std::string_view(others).find(c) != std::string_view::npos;
    return letterOrDigit || static_cast<unsigned char>(c) >= 0x80 || other;
  });
}

/// Whether a cell that begins with + or - can call nothing: a telephone number has no letters where it has brackets,
/// which a function needs, and neither it nor an address has a mark that leads to another sheet or program.
bool IsHarmless(const std::string& text, CellKind kind) {
  if (text[0] != '+' && text[0] != '-') return false;
  if (kind == CellKind::Mail) return HasOnly(text, "+-._@");
  if (kind != CellKind::Phone) return false;
  const bool noLetters = text.find_first_not_of("0123456789 +-/.#*,()") == std::string::npos;
  return noLetters || HasOnly(text, " +-/.#*,:");
}

std::string Cell(std::string_view value, CellKind kind) {
  std::string text = PlainLines(value);
  const bool formula = std::any_of(std::begin(kFormulaStarts), std::end(kFormulaStarts),
                                   [&](std::string_view start) { return text.starts_with(start); });
  if (formula && !IsHarmless(text, kind)) text.insert(0, 1, '\'');
  const bool blankEnd = text.starts_with(' ') || text.ends_with(' ');
  if (!blankEnd && text.find_first_of(",;\"\n\t") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

std::span<const Column> ColumnsOf(CsvHeadings headings) {
  if (headings == CsvHeadings::Thunderbird) return kThunderbird;
  return kWebmail;
}

}  // namespace

void WriteCsv(const ContactBook& book, ContactChoice chosen, CsvHeadings headings, const ContactSink& sink) {
  const std::span<const Column> columns = ColumnsOf(headings);
  const auto groups = GroupsOfContacts(book);
  const auto writeLine = [&](const auto& cellOf) {
    std::string line;
    for (const Column& column : columns) {
      if (&column != columns.data()) line += ',';
      line += cellOf(column);
    }
    sink(line + "\r\n");
  };
  writeLine([](const Column& column) { return std::string(column.heading); });
  for (const std::size_t place : chosen) {
    const Entry entry{book.contacts.at(place), groups.at(place)};
    writeLine([&](const Column& column) { return Cell(column.value(entry), column.kind); });
  }
}

}  // namespace quillbox
