// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/contact_writers.h"

#include <chrono>
#include <string>
#include <vector>

#include "sample/address_book.h"
#include "support/host_tricks.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

ContactBook SampleBook() {
  return ReadContactBook(SampleAddressBook({.room = WabRoom::Least}), "ann.wab", CodePage());
}

enum class Format { VCard, Thunderbird, Webmail, Ldif };

std::string Written(const ContactBook& book, Format format, std::vector<std::size_t> chosen) {
  std::string text;
  const ContactSink sink = [&](std::string_view bytes) { text += bytes; };
  if (format == Format::VCard) WriteVCards(book, chosen, sink);
  if (format == Format::Thunderbird) WriteCsv(book, chosen, CsvHeadings::Thunderbird, sink);
  if (format == Format::Webmail) WriteCsv(book, chosen, CsvHeadings::Webmail, sink);
  if (format == Format::Ldif) WriteLdif(book, chosen, sink);
  return text;
}
std::string Written(const ContactBook& book, Format format) {
  return Written(book, format, AllContacts(book));
}

ContactBook BookOf(const Contact& contact) {
  ContactBook book;
  book.contacts = {contact};
  return book;
}

std::vector<std::string> Lines(const std::string& text, const std::string& end) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t stop = text.find(end, at);
    lines.push_back(text.substr(at, stop - at));
    at = stop + end.size();
  }
  return lines;
}

/// What an independent reader finds in the file of a format.
std::string ReadBack(const std::string& reader, const std::string& text) {
  const TempFolder folder;
  folder.File("contacts", text);
  const std::string script = QUILLBOX_TESTS_DIR "/contacts/read_contacts.py";
  const ProgramRun run = RunProgram("/usr/bin/python3", {script, reader, "contacts"}, folder.Path());
  EXPECT_EQ(run.code, 0) << run.err;
  return run.out;
}

constexpr const char* kCards = R"(VERSION 3.0
PRODID -//Quillbox//Address book//EN
UID @1
FN Jürgen Größler
N Größler|Jürgen|Maria|Dr.|
NICKNAME Jojo
EMAIL[INTERNET,PREF] jojo@example.org
EMAIL[INTERNET] loans@library.example
EMAIL[INTERNET] jürgen.größler@home.example
ADR[HOME] |Am Bach 7\nHinterhaus|Bad Münstereifel|NRW|53902|Deutschland
ADR[WORK] Zimmer 12|Marktstraße 4|Köln|NRW|50667|Deutschland
TEL[HOME,VOICE] 02253 555 01
TEL[FAX,HOME] 02253 555 02
TEL[VOICE,WORK] +49 221 5550-100
TEL[FAX,WORK] +49 221 5550-199
TEL[CELL] +49 170 5550199
TEL[PAGER] 0168 555
URL[HOME] http://jojo.example/
URL[WORK] http://library.example/?a=1%2C2%3Bb=3
ORG Stadtbücherei; Zweigstelle Süd|Ausleihe, Mahnungen
TITLE Bibliothekar
BDAY 1959-02-28
X-ANNIVERSARY 1984-04-30
NOTE Back room: "ask for the key".\nClosed on Mondays; open on Sundays, 10\12 only.
CATEGORIES Bücherfreunde, Köln|Everyone
- 
VERSION 3.0
PRODID -//Quillbox//Address book//EN
UID @2
FN Ben Okafor
N Okafor|Ben|||
EMAIL[INTERNET] ben@example.org
CATEGORIES Bücherfreunde, Köln|Everyone
- 
VERSION 3.0
PRODID -//Quillbox//Address book//EN
UID @3
FN =2+3
N ||||
TEL[HOME,VOICE] -555 0100
- 
)";

constexpr const char* kThunderbirdRows = R"(First Name Jürgen
Last Name Größler
Display Name Jürgen Größler
Nickname Jojo
Primary Email jojo@example.org
Secondary Email loans@library.example
Work Phone +49 221 5550-100
Home Phone 02253 555 01
Fax Number +49 221 5550-199
Pager Number 0168 555
Mobile Number +49 170 5550199
Home Address Am Bach 7
Home Address 2 Hinterhaus
Home City Bad Münstereifel
Home State NRW
Home ZipCode 53902
Home Country Deutschland
Work Address Marktstraße 4
Work City Köln
Work State NRW
Work ZipCode 50667
Work Country Deutschland
Job Title Bibliothekar
Department Ausleihe, Mahnungen
Organization Stadtbücherei; Zweigstelle Süd
Web Page 1 http://library.example/?a=1,2;b=3
Web Page 2 http://jojo.example/
Birth Year 1959
Birth Month 2
Birth Day 28
Notes Back room: "ask for the key".\nClosed on Mondays; open on Sundays, 10\12 only.\nTitle: Dr.\nMiddle name: Maria\nE-mail: jürgen.größler@home.example\nHome fax: 02253 555 02\nOffice: Zimmer 12\nAnniversary: 1984-04-30\nGroups: Bücherfreunde, Köln; Everyone
- 
First Name Ben
Last Name Okafor
Display Name Ben Okafor
Primary Email ben@example.org
Notes Groups: Bücherfreunde, Köln; Everyone
- 
Display Name '=2+3
Home Phone -555 0100
- 
)";

constexpr const char* kWebmailRow = R"(Title Dr.
First Name Jürgen
Middle Name Maria
Last Name Größler
Display Name Jürgen Größler
Nickname Jojo
E-mail Address jojo@example.org
E-mail 2 Address loans@library.example
E-mail 3 Address jürgen.größler@home.example
Home Phone 02253 555 01
Business Phone +49 221 5550-100
Mobile Phone +49 170 5550199
Pager 0168 555
Home Fax 02253 555 02
Business Fax +49 221 5550-199
Home Street Am Bach 7\nHinterhaus
Home City Bad Münstereifel
Home State NRW
Home Postal Code 53902
Home Country Deutschland
Business Street Marktstraße 4
Business City Köln
Business State NRW
Business Postal Code 50667
Business Country Deutschland
Company Stadtbücherei; Zweigstelle Süd
Job Title Bibliothekar
Department Ausleihe, Mahnungen
Office Location Zimmer 12
Web Page http://library.example/?a=1,2;b=3
Personal Web Page http://jojo.example/
Birthday 1959-02-28
Anniversary 1984-04-30
Notes Back room: "ask for the key".\nClosed on Mondays; open on Sundays, 10\12 only.
Categories Bücherfreunde, Köln;Everyone
- 
)";

constexpr const char* kLdifEntries = R"(dn cn=Jürgen Größler,mail=jojo@example.org
objectclass top|person|organizationalPerson|inetOrgPerson|mozillaAbPersonAlpha
uid @1
givenName Jürgen
sn Größler
cn Jürgen Größler
mozillaNickname Jojo
mail jojo@example.org
mozillaSecondEmail loans@library.example
telephoneNumber +49 221 5550-100
homePhone 02253 555 01
facsimileTelephoneNumber +49 221 5550-199
pager 0168 555
mobile +49 170 5550199
mozillaHomeStreet Am Bach 7
mozillaHomeStreet2 Hinterhaus
mozillaHomeLocalityName Bad Münstereifel
mozillaHomeState NRW
mozillaHomePostalCode 53902
mozillaHomeCountryName Deutschland
street Marktstraße 4
l Köln
st NRW
postalCode 50667
c Deutschland
title Bibliothekar
ou Ausleihe, Mahnungen
o Stadtbücherei; Zweigstelle Süd
physicalDeliveryOfficeName Zimmer 12
mozillaWorkUrl http://library.example/?a=1,2;b=3
mozillaHomeUrl http://jojo.example/
birthyear 1959
birthmonth 2
birthday 28
description Back room: "ask for the key".\nClosed on Mondays; open on Sundays, 10\12 only.\nTitle: Dr.\nMiddle name: Maria\nE-mail: jürgen.größler@home.example\nHome fax: 02253 555 02\nAnniversary: 1984-04-30
- 
dn cn=nobody@garden.example,mail=nobody@garden.example
objectclass top|person|organizationalPerson|inetOrgPerson|mozillaAbPersonAlpha
uid @4
cn nobody@garden.example
mail nobody@garden.example
- 
dn cn=Bücherfreunde Köln
objectclass top|groupOfNames
cn Bücherfreunde Köln
member cn=Jürgen Größler,mail=jojo@example.org
- 
dn cn=Everyone
objectclass top|groupOfNames
cn Everyone
member cn=nobody@garden.example,mail=nobody@garden.example|cn=Bücherfreunde Köln
- 
)";

/// `text` with "@2" for the UUID of record 2 and so on.
std::string WithoutUuids(std::string text, const ContactBook& book) {
  for (const Contact& contact : book.contacts) {
    const std::string uuid = ContactUuid(contact);
    for (std::size_t at = 0; (at = text.find(uuid)) != std::string::npos;) {
      text.replace(at, uuid.size(), "@" + std::to_string(contact.recordId));
    }
  }
  return text;
}

TEST(ContactWritersTest, OtherReadersFindAllOfThePeople) {
  NEEDS(Scripts);
  if (RunProgram("/usr/bin/python3", {"-c", "import ldif, vobject"}, TempFolder().Path()).code != 0) {
    GTEST_SKIP() << "python3-ldap or python3-vobject is not installed";
  }
  const ContactBook book = SampleBook();
  const auto read = [&](const char* reader, const std::string& text) {
    return WithoutUuids(ReadBack(reader, text), book);
  };
  EXPECT_EQ(read("vcard", Written(book, Format::VCard, {0, 1, 2})), kCards);
  EXPECT_EQ(read("csv", Written(book, Format::Thunderbird, {0, 1, 2})), kThunderbirdRows);
  EXPECT_EQ(read("csv", Written(book, Format::Webmail, {0})), kWebmailRow);
  EXPECT_EQ(read("ldif", Written(book, Format::Ldif, {0, 3})), kLdifEntries);
}

TEST(ContactWritersTest, LinesAreFoldedBetweenCharacters) {
  for (std::size_t shift = 0; shift < 80; ++shift) {
    Contact contact;
    contact.notes = std::string(shift, 'x');
    for (int i = 0; i < 60; ++i) contact.notes += "\xF0\x9F\x98\x80é";
    std::string unfolded;
    for (const std::string& line : Lines(Written(BookOf(contact), Format::VCard), "\r\n")) {
      EXPECT_LE(line.size(), 75u);
      EXPECT_TRUE(IsInnerText(line)) << "a character is whole";
      unfolded += line.starts_with(' ') ? line.substr(1) : "\n" + line;
    }
    EXPECT_THAT(unfolded, HasSubstr("\nNOTE:" + contact.notes + "\nEND:VCARD"));
    contact.notes = std::string(shift + 40, 'x');
    unfolded.clear();
    for (const std::string& line : Lines(Written(BookOf(contact), Format::Ldif), "\n")) {
      EXPECT_LE(line.size(), 76u);
      unfolded += line.starts_with(' ') ? line.substr(1) : "\n" + line;
    }
    EXPECT_THAT(unfolded, HasSubstr("\ndescription: " + contact.notes + "\n"));
  }
}

TEST(ContactWritersTest, TextsStayValuesWhateverIsInThem) {
  Contact contact;
  contact.displayName = "a\\b;c,d\r\nEND:VCARD\x01\x7F\r\rx";
  contact.home.web = "http://x/\r\nTEL:1";
  contact.nickname = " blank";
  contact.company = ":colon";
  contact.job = "<less";
  contact.department = "end ";
  contact.mails = {{"a+b,c@x", "SMTP"}, {"/o=org/cn=\"ann\"", "EX"}};
  const std::string card = Written(BookOf(contact), Format::VCard);
  EXPECT_THAT(card, HasSubstr("\r\nFN:a\\\\b\\;c\\,d\\nEND:VCARD\\n\\nx\r\nN:;;;;\r\n"));
  EXPECT_THAT(card, HasSubstr("\r\nURL;TYPE=HOME:http://x/TEL:1\r\n"));
  EXPECT_THAT(card, HasSubstr("\r\nEMAIL;TYPE=INTERNET,PREF:a+b\\,c@x\r\nEMAIL:/o=org/cn=\"ann\"\r\n"));
  const std::string entry = Written(BookOf(contact), Format::Ldif);
  for (const char* line :
       {"version: 1\ndn: cn=a\\\\b\\;c\\,d\\0AEND:VCARD\\0A\\0Ax,mail=a\\+b\\,c@x\n", "\nmozillaNickname:: IGJsYW5r\n",
        "\no:: OmNvbG9u\n", "\ntitle:: PGxlc3M=\n", "\nou:: ZW5kIA==\n"}) {
    EXPECT_THAT(entry, HasSubstr(line));
  }
  EXPECT_THAT(Written(BookOf(contact), Format::Webmail),
              EndsWith("\r\n,,,,\"a\\b;c,d\nEND:VCARD\n\nx\",\" blank\",\"a+b,c@x\",\"/o=org/cn=\"\"ann\"\"\","
                       ",,,,,,,,,,,,,,,,,:colon,<less,\"end \",,,\"http://x/\nTEL:1\",,,,\r\n"));
}

TEST(ContactWritersTest, CellsAreNoFormulasAndNumbersStayAsTheyAre) {
  struct Case {
    std::string text, asPhone, asMail, asName;
  };
  const auto same = [](const std::string& text) { return "'" + text; };
  const std::vector<Case> cases = {
      {"+49 (221) 555-1", "+49 (221) 555-1", same("+49 (221) 555-1"), same("+49 (221) 555-1")},
      {"+49 221 ext. 7", "+49 221 ext. 7", same("+49 221 ext. 7"), same("+49 221 ext. 7")},
      {"-x+y@z.org", same("-x+y@z.org"), "-x+y@z.org", same("-x+y@z.org")},
      {"+SUM(1)", same("+SUM(1)"), same("+SUM(1)"), same("+SUM(1)")},
      {"-cmd|'/c x'!A", same("-cmd|'/c x'!A"), same("-cmd|'/c x'!A"), same("-cmd|'/c x'!A")},
      {"=1@z.org", same("=1@z.org"), same("=1@z.org"), same("=1@z.org")},
      {"@A1", same("@A1"), same("@A1"), same("@A1")},
      {"\xEF\xBC\x9D"
       "1",
       same("\xEF\xBC\x9D"
            "1"),
       same("\xEF\xBC\x9D"
            "1"),
       same("\xEF\xBC\x9D"
            "1")},
      {"1-2=3", "1-2=3", "1-2=3", "1-2=3"},
  };
  for (const Case& c : cases) {
    Contact contact;
    contact.displayName = c.text;
    contact.mails = {{c.text, ""}};
    contact.home.phone = c.text;
    const std::string row = Lines(Written(BookOf(contact), Format::Webmail), "\r\n").at(1);
    EXPECT_THAT(row, StartsWith(",,,," + c.asName + ",," + c.asMail + ",,," + c.asPhone + ",")) << c.text;
  }
}

TEST(ContactWritersTest, UuidsStayAndDifferAndNamesInLdifAreUnique) {
  const ContactBook book = SampleBook();
  const ContactBook other = ReadContactBook(SampleAddressBook({.form = WabTextForm::Narrow}), "copy.wab", CodePage());
  std::vector<std::string> uuids;
  for (const Contact& contact : book.contacts) uuids.push_back(ContactUuid(contact));
  EXPECT_EQ(uuids[1], "f2b23a92-1c75-8c33-83f9-e56f18c42651") << "as it was in every version";
  for (std::size_t at = 0; at < uuids.size(); ++at) {
    EXPECT_EQ(ContactUuid(other.contacts[at]), uuids[at]);
    EXPECT_THAT(uuids[at], MatchesRegex("\\w+-\\w+-8\\w+-\\w+-\\w+"));
    EXPECT_EQ(std::count(uuids.begin(), uuids.end(), uuids[at]), 1);
  }
  ContactBook twins;
  for (const std::uint32_t id : {7U, 8U}) {
    Contact contact;
    contact.recordId = id;
    contact.displayName = id == 7 ? "Twin" : "TWIN";
    twins.contacts.push_back(contact);
  }
  twins.groups.push_back({.recordId = 9, .name = "twin", .contacts = {0, 1}, .groups = {}, .everyone = {0, 1}});
  const std::string text = Written(twins, Format::Ldif);
  const std::string second = "cn=TWIN,uid=" + ContactUuid(twins.contacts[1]);
  EXPECT_THAT(text, HasSubstr("\ndn: " + second + "\n"));
  EXPECT_THAT(text, EndsWith("dn: cn=twin,uid=group-9\nobjectclass: top\nobjectclass: groupOfNames\ncn: twin\n"
                             "member: cn=Twin\nmember: " +
                             second + "\n\n"));
}

}  // namespace
}  // namespace quillbox
