// SPDX-License-Identifier: GPL-3.0-or-later
// Address book files: what is read has valid texts and members that are there, and each format that it is written in
// can be read by its rules.
#include <algorithm>
#include <string_view>

#include "contacts/contact_book.h"
#include "contacts/contact_writers.h"
#include "harness.h"
#include "sample/address_book.h"
#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxLength = 16'384;
/// A byte of a file becomes three at most, and a group's member has four.
constexpr std::size_t kMostTextPerByte = 3;

void RequireText(const std::string& text) {
  Require(IsInnerText(text) && text.find('\0') == std::string::npos, "a contact's text is text without NUL");
  for (std::size_t at = text.find('\xED'); at != std::string::npos; at = text.find('\xED', at + 1)) {
    Require(static_cast<unsigned char>(text[at + 1]) < 0xA0, "a contact's text has no half characters");
  }
}

std::size_t CheckContact(const Contact& contact) {
  std::size_t size = 0;
  const auto check = [&](const std::string& text) {
    RequireText(text);
    size += text.size();
  };
  for (const std::string* text :
       {&contact.displayName, &contact.title, &contact.firstName, &contact.middleName, &contact.lastName,
        &contact.nickname, &contact.mobile, &contact.pager, &contact.company, &contact.job, &contact.department,
        &contact.office, &contact.notes}) {
    check(*text);
  }
  for (const ContactPlace* place : {&contact.home, &contact.business}) {
    for (const std::string* text : {&place->phone, &place->fax, &place->web, &place->address.street,
                                    &place->address.city, &place->address.state, &place->address.postCode}) {
      check(*text);
    }
  }
  for (const MailAddress& mail : contact.mails) {
    Require(!mail.address.empty(), "an address is not empty");
    check(mail.address);
  }
  Require(!ShownName(contact).empty(), "a contact has a name to show");
  Require(!contact.birthday || contact.birthday->ok(), "a birthday is a day");
  return size;
}

void CheckBook(const ContactBook& book, std::size_t fileSize) {
  std::size_t size = 0;
  for (const Contact& contact : book.contacts) size += CheckContact(contact);
  Require(size <= fileSize * kMostTextPerByte, "a book has no more text than its file");
  for (const ContactGroup& group : book.groups) {
    RequireText(group.name);
    for (const auto* members : {&group.contacts, &group.everyone}) {
      Require(members->empty() || members->back() < book.contacts.size(), "a member is a contact of the book");
      Require(std::adjacent_find(members->begin(), members->end(), std::greater_equal<>()) == members->end(),
              "no member is there twice");
    }
    Require(std::includes(group.everyone.begin(), group.everyone.end(), group.contacts.begin(), group.contacts.end()),
            "everyone has the members");
    for (const std::size_t inner : group.groups) Require(inner < book.groups.size(), "a group in a group is there");
  }
  for (const BookFault& fault : book.faults) Require(IsInnerText(Describe(fault, "x.wab")), "a fault has words");
}

/// A text's lines; all of them end with `end`.
std::vector<std::string_view> LinesOf(std::string_view text, std::string_view end) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t length = text.find(end);
    Require(length != std::string_view::npos, "the last line ends");
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length + end.size());
  }
  return lines;
}

void CheckCards(const std::string& text, std::size_t contacts) {
  std::size_t open = 0;
  std::size_t cards = 0;
  for (const std::string_view line : LinesOf(text, "\r\n")) {
    Require(line.size() <= 75 && !line.empty(), "a card's lines are folded");
    Require(IsInnerText(line), "a line ends between characters");
    Require(std::none_of(line.begin(), line.end(), [](unsigned char c) { return c < 0x20 && c != '\t'; }),
            "a card's line has no control characters");
    if (line == "BEGIN:VCARD") Require(open++ == 0, "cards are not within cards");
    if (line == "END:VCARD") Require(open-- == 1 && ++cards > 0, "a card ends once");
    Require(open == 1 || line == "END:VCARD", "every line is in a card");
  }
  Require(cards == contacts, "every contact has a card");
}

void CheckCsv(const std::string& text, std::size_t contacts) {
  std::size_t columns = 1;
  std::size_t headings = 0;
  std::size_t rows = 0;
  bool quoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == ',') ++columns;
    if (c == '\r') {
      Require(text.substr(at, 2) == "\r\n", "a row ends with both characters");
      if (rows++ == 0) headings = columns;
      Require(columns == headings, "a row has a cell for each heading");
      columns = 1;
    }
    const bool begins = at == 0 || text[at - 1] == ',' || text[at - 1] == '\n';
    Require(!begins || (c != '=' && c != '@'), "no cell begins as a formula");
  }
  Require(!quoted && rows == contacts + 1, "every contact has a row");
}

void CheckLdif(const std::string& text, std::size_t contacts, std::size_t groups) {
  std::size_t entries = 0;
  for (const std::string_view line : LinesOf(text, "\n")) {
    Require(line.size() <= 76 && IsAscii(line), "a line of LDIF is short and ASCII");
    Require(line.find('\r') == std::string_view::npos, "a line of LDIF is one line");
    if (line.starts_with("dn:")) ++entries;
  }
  Require(entries >= contacts && entries <= contacts + groups, "every contact has an entry");
}

void RunContactBook(ByteView input) {
  static const CodePage kWestern(1252), kJapanese(932);
  InputReader reader(input);
  const CodePage& page = (reader.Byte() & 1) != 0 ? kJapanese : kWestern;
  try {
    const ContactBook book = ReadContactBook(reader.Rest(), "x.wab", page);
    CheckBook(book, input.size());
    const std::vector<std::size_t> all = AllContacts(book);
    std::string text;
    const ContactSink sink = [&](std::string_view bytes) { text += bytes; };
    WriteVCards(book, all, sink);
    CheckCards(text, all.size());
    for (const CsvHeadings headings : {CsvHeadings::Thunderbird, CsvHeadings::Webmail}) {
      text.clear();
      WriteCsv(book, all, headings, sink);
      CheckCsv(text, all.size());
    }
    text.clear();
    WriteLdif(book, all, sink);
    CheckLdif(text, all.size(), book.groups.size());
  } catch (const Error& error) {
    Require(IsInnerText(Describe(error)), "a refusal has words");
  }
}

/// Numbers are what a book is made of: one of them becomes another one of the file, or one at a limit.
void MutateContactBook(Bytes& input, std::size_t limit, Mutation& mutation) {
  constexpr std::uint32_t kNumbers[] = {0, 1, 2, 0x20, 0x7FFFFFFF, 0xFFFFFFFF, 65'536, 4'096, 0x6600'1102, 0x3A56'101F};
  if (input.size() < 8 || mutation.OneIn(2)) return mutation.ByEngine(input, limit);
  std::uint8_t* at = &input[mutation.Below(input.size() - 4)];
  switch (mutation.Below(3)) {
    case 0:
      return Store32(at, kNumbers[mutation.Below(std::size(kNumbers))]);
    case 1:
      return Store32(at, Load32(&input[mutation.Below(input.size() - 4)]));
    default:
      return Store32(at, Load32(at) + static_cast<std::uint32_t>(mutation.Below(9)) - 4);
  }
}

std::vector<Seed> ContactBookSeeds() {
  std::vector<Seed> seeds;
  for (const WabTextForm form : {WabTextForm::Narrow, WabTextForm::Wide}) {
    const std::string name = form == WabTextForm::Narrow ? "narrow" : "wide";
    Bytes book = SampleAddressBook({.form = form, .room = WabRoom::Least, .morePeople = 2});
    book.insert(book.begin(), 0);
    seeds.push_back({name, book});
    book[0] = 1;
    Store32(&book[1 + 0x24], 0xFFFFFFFF);
    seeds.push_back({name + "-searched", book});
  }
  return seeds;
}

}  // namespace

const Harness kContactBookHarness = {"contact_book", kMaxLength, RunContactBook, ContactBookSeeds, MutateContactBook};

}  // namespace quillbox
