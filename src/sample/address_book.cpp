// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/address_book.h"

#include <chrono>
#include <string>
#include <utility>

#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::string_view kFirstNames[] = {"Ada", "Björn", "Chloé", "Dana", "Emil", "Fatima", "Grace", "Henrik"};
constexpr std::string_view kLastNames[] = {"Abbott", "Bauer", "Castro", "Dubois", "Eriksson", "Fischer", "Greene"};

constexpr std::uint16_t kDisplayName = 0x3001;
constexpr std::uint16_t kAddressType = 0x3002;
constexpr std::uint16_t kMailAddress = 0x3003;
constexpr std::uint16_t kNotes = 0x3004;
constexpr std::uint16_t kKind = 0x0FFE;
constexpr std::uint16_t kEntryId = 0x0FFF;
constexpr std::uint16_t kFirstName = 0x3A06;
constexpr std::uint16_t kLastName = 0x3A11;
constexpr std::uint16_t kBirthday = 0x3A42;
constexpr std::uint16_t kAnniversary = 0x3A41;
constexpr std::uint16_t kMailTypes = 0x3A54;
constexpr std::uint16_t kDefaultMail = 0x3A55;
constexpr std::uint16_t kMails = 0x3A56;
constexpr std::uint16_t kMembers = 0x6600;
constexpr std::uint32_t kPersonKind = 6;
constexpr std::uint32_t kGroupKind = 8;
// A property of its own that programs may add to a record; nothing reads it.
constexpr std::uint32_t kForeignTag = 0x80090003;

struct TextRow {
  std::uint16_t property;
  std::string_view text;
};

constexpr TextRow kLibrary[] = {
    {0x3A06, "Jürgen"},
    {0x3A44, "Maria"},
    {0x3A11, "Größler"},
    {0x3A45, "Dr."},
    {0x3A4F, "Jojo"},
    {0x3A16, "Stadtbücherei; Zweigstelle Süd"},
    {0x3A17, "Bibliothekar"},
    {0x3A18, "Ausleihe, Mahnungen"},
    {0x3A19, "Zimmer 12"},
    {0x3A29, "Marktstraße 4"},
    {0x3A27, "Köln"},
    {0x3A28, "NRW"},
    {0x3A2A, "50667"},
    {0x3A26, "Deutschland"},
    {0x3A08, "+49 221 5550-100"},
    {0x3A24, "+49 221 5550-199"},
    {0x3A51, "http://library.example/?a=1,2;b=3"},
    {0x3A5D, "Am Bach 7\r\nHinterhaus"},
    {0x3A59, "Bad Münstereifel"},
    {0x3A5C, "NRW"},
    {0x3A5B, "53902"},
    {0x3A5A, "Deutschland"},
    {0x3A09, "02253 555 01"},
    {0x3A25, "02253 555 02"},
    {0x3A50, "http://jojo.example/"},
    {0x3A1C, "+49 170 5550199"},
    {0x3A21, "0168 555"},
    {kNotes, "Back room: \"ask for the key\".\r\nClosed on Mondays; open on Sundays, 10\\12 only."},
};

/// The day's beginning.
WabTime DayTime(std::chrono::year_month_day day) {
  constexpr std::int64_t kSecondsOfDay = 86'400;
  const std::int64_t days = std::chrono::sys_days(day).time_since_epoch().count();
  const std::int64_t since1601 = days * kSecondsOfDay + kSecondsFrom1601To1970;
  return {static_cast<FileTime>(since1601) * kFileTimePerSecond};
}

/// The id by which groups name a record.
Bytes EntryId(std::uint32_t record) {
  return NumberBytes(record);
}

struct PersonName {
  std::string_view name, mail;  // either may be empty
};

class Book {
 public:
  explicit Book(const SampleBookOptions& options) : options_(options) {}

  WabRecord& Person(const PersonName& person) {
    WabRecord& record = Add(kPersonKind, person.name);
    if (!person.mail.empty()) record.Text(kAddressType, "SMTP").Text(kMailAddress, person.mail);
    return record;
  }
  void Group(std::string_view name, std::initializer_list<std::uint32_t> members) {
    std::vector<Bytes> entries;
    for (const std::uint32_t member : members) entries.push_back(EntryId(member));
    Add(kGroupKind, name).Binaries(kMembers, entries);
  }
  Bytes File() const { return WabFile(records_, options_.room); }

 private:
  WabRecord& Add(std::uint32_t kind, std::string_view name) {
    const auto id = static_cast<std::uint32_t>(records_.size() + 1);
    return records_.emplace_back(id, options_.form)
        .Number(kKind, kind)
        .Binary(kEntryId, EntryId(id))
        .Text(kDisplayName, name);
  }

  SampleBookOptions options_;
  std::vector<WabRecord> records_;
};

void AddPeople(Book& book) {
  using std::chrono::April;
  using std::chrono::February;
  using std::chrono::year;
  static constexpr std::string_view kMailsOfAll[] = {"loans@library.example", "jürgen.größler@home.example",
                                                     "jojo@example.org"};
  static constexpr std::string_view kTypesOfAll[] = {"SMTP", "SMTP", "SMTP"};
  WabRecord& library = book.Person({"Jürgen Größler", "jojo@example.org"});
  for (const TextRow& row : kLibrary) library.Text(row.property, row.text);
  library.Texts(kMailTypes, kTypesOfAll).Number(kDefaultMail, 2).Texts(kMails, kMailsOfAll);
  library.Time(kBirthday, DayTime(year(1959) / February / 28)).Time(kAnniversary, DayTime(year(1984) / April / 30));
  library.Raw(kForeignTag, NumberBytes(1));

  book.Person({"Ben Okafor", "ben@example.org"}).Text(kFirstName, "Ben").Text(kLastName, "Okafor");
  book.Person({"=2+3", ""}).Text(0x3A09, "-555 0100");
  book.Person({"", "nobody@garden.example"});
  book.Person({"Gone Long Ago", "gone@example.org"}).Delete();
}

}  // namespace

Bytes SampleAddressBook(const SampleBookOptions& options) {
  Book book(options);
  AddPeople(book);
  book.Group("Bücherfreunde, Köln", {1, 2});
  book.Group("Nobody", {});
  book.Group("Everyone", {4, 6, 2});
  for (std::size_t i = 0; i < options.morePeople; ++i) {
    const std::string first(kFirstNames[i % std::size(kFirstNames)]);
    const std::string last(kLastNames[i / std::size(kFirstNames) % std::size(kLastNames)]);
    std::string name = first;
    name += " " + last;
    book.Person({name, "person" + std::to_string(i + 1) + "@example.org"})
        .Text(kFirstName, first)
        .Text(kLastName, last);
  }
  return book.File();
}

}  // namespace quillbox
