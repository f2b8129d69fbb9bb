// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/contact_book.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "contacts/wab_groups.h"
#include "sample/address_book.h"
#include "support/matchers.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

using namespace std::chrono_literals;

ContactBook Read(const Bytes& file) {
  static const CodePage kWestern;
  return ReadContactBook(file, "ann.wab", kWestern);
}

std::vector<std::string> NamesOf(const ContactBook& book) {
  std::vector<std::string> names;
  for (const Contact& contact : book.contacts) names.push_back(ShownName(contact));
  return names;
}

std::vector<std::string> FaultsOf(const ContactBook& book) {
  std::vector<std::string> words;
  for (const BookFault& fault : book.faults) words.push_back(Describe(fault, "ann.wab"));
  return words;
}

std::vector<std::string> MailsOf(const Contact& contact) {
  std::vector<std::string> mails;
  for (const MailAddress& mail : contact.mails) mails.push_back(mail.type + ":" + mail.address);
  return mails;
}

const std::vector<std::string> kPeople = {"Jürgen Größler", "Ben Okafor", "=2+3", "nobody@garden.example"};
constexpr std::size_t kIndexTable = 0x18;
constexpr std::size_t kIndex = 0x80;

/// A small file; `kIndex` is where its index is.
Bytes SmallBook(WabTextForm form = WabTextForm::Wide) {
  return SampleAddressBook({.form = form, .room = WabRoom::Least});
}
std::size_t RecordAt(const Bytes& file, std::size_t entry) {
  return Load32(&file[kIndex + entry * 8 + 4]);
}

TEST(ContactBookTest, HasPeopleGroupsAndWhatWasDeletedInBothForms) {
  for (const WabTextForm form : {WabTextForm::Narrow, WabTextForm::Wide}) {
    for (const WabRoom room : {WabRoom::Usual, WabRoom::Least}) {
      const ContactBook book = Read(SampleAddressBook({.form = form, .room = room, .morePeople = 600}));
      EXPECT_THAT(FaultsOf(book), IsEmpty());
      EXPECT_EQ(book.contacts.size(), 604u);
      EXPECT_EQ(book.deleted, 1u);
      EXPECT_EQ(book.unlisted + book.others + book.searched, 0u);
      const Contact& first = book.contacts.at(0);
      EXPECT_EQ(first.firstName + "|" + first.middleName + "|" + first.lastName, "Jürgen|Maria|Größler");
      EXPECT_THAT(MailsOf(first), ElementsAre("SMTP:jojo@example.org", "SMTP:loans@library.example",
                                              "SMTP:jürgen.größler@home.example"));
      EXPECT_EQ(first.birthday, Date(1959y / 2 / 28));
      EXPECT_EQ(first.home.address.street, "Am Bach 7\r\nHinterhaus");
      ASSERT_EQ(book.groups.size(), 3u);
      EXPECT_EQ(book.groups[0].name, "Bücherfreunde, Köln");
      EXPECT_THAT(book.groups[0].contacts, ElementsAre(0, 1));
      EXPECT_THAT(book.groups[1].everyone, IsEmpty());
      EXPECT_THAT(book.groups[2].contacts, ElementsAre(1, 3));
      EXPECT_THAT(book.groups[2].groups, ElementsAre(0));
      EXPECT_THAT(book.groups[2].everyone, ElementsAre(0, 1, 3));
    }
  }
}

TEST(ContactBookTest, OtherFilesAreRefusedByName) {
  const auto fault = [](const Bytes& file) { return FaultOf([&] { Read(file); }); };
  Bytes old = {0x81, 0x32, 0x84, 0xC1, 0x85, 0x05, 0xD0, 0x11};
  EXPECT_THAT(fault(old), HasSubstr("ann.wab, offset 0x0: it is an address book of the Windows 95 era"));
  EXPECT_THAT(fault({}), HasSubstr("it is not an address book"));
  Bytes book = SmallBook();
  for (std::size_t length = 16; length < 0x78; ++length) {
    EXPECT_THAT(fault(Bytes(book.begin(), book.begin() + static_cast<std::ptrdiff_t>(length))),
                HasSubstr("its header is cut off"));
  }
  book.resize(kLargestContactBook + 1);
  EXPECT_THAT(fault(book), HasSubstr("it is too large for an address book"));
  ++book[0];
  EXPECT_THAT(fault(book), HasSubstr("it is not an address book: it begins otherwise"));
}

TEST(ContactBookTest, CutOffAnywhereItGivesWhatIsBeforeAndSaysSo) {
  const Bytes file = SmallBook();
  for (std::size_t length = 0x78; length < file.size(); ++length) {
    const ContactBook book = Read(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(book.IsWhole()) << length;
    for (std::size_t entry = 0; entry < kPeople.size(); ++entry) {
      const bool whole = entry + 1 < kPeople.size() ? length >= RecordAt(file, entry + 1) : length > file.size() - 9;
      if (!whole) continue;
      EXPECT_EQ(ShownName(book.contacts.at(entry)), kPeople[entry]) << length;
    }
    for (const std::string& words : FaultsOf(book)) EXPECT_THAT(words, HasSubstr("beyond the end of the file"));
  }
}

TEST(ContactBookTest, AnyNumberMayBeFourBillion) {
  const Bytes file = SmallBook();
  for (std::size_t at = kIndexTable; at + 4 <= file.size(); at += 2) {
    for (const std::uint32_t number : {0U, 0xFFFFFFFFU}) {
      Bytes damaged = file;
      Store32(&damaged[at], number);
      const ContactBook book = Read(damaged);
      EXPECT_LE(book.contacts.size() + book.groups.size() + book.deleted + book.others, 8u) << at;
      EXPECT_GE(book.contacts.size(), 3u) << at << ": the records beside it are there";
    }
  }
}

TEST(ContactBookTest, RecordsAreSearchedForWhereTheIndexIsDamaged) {
  const Bytes file = SmallBook();
  struct Case {
    std::size_t at;
    std::uint32_t number;
    std::size_t searched;
    const char* words;
  };
  const Case cases[] = {
      {kIndexTable + 12, 0xFFFFFFFF, 7, "offset 0x80: the index has more entries than an address book can have"},
      {kIndexTable + 8, 0xFFFFFFF0, 7, "offset 0xfffffff0: the index reaches beyond the end of the file"},
      {kIndexTable + 4, 4, 0, "offset 0x80: the index has a length that does not fit what is in it"},
      {kIndex + 4, 0x20, 1, "offset 0x80: an entry of the index of record 1 does not begin as a record does"},
      {kIndex + 4, 0xFFFFFFFF, 1, "offset 0x80: an entry of the index of record 1 reaches beyond the end of the file"},
      {kIndex + 8, 77, 0, "offset 0x88: an entry of the index of record 77 leads to a record of another number"},
  };
  for (const Case& c : cases) {
    Bytes damaged = file;
    Store32(&damaged[c.at], c.number);
    const ContactBook book = Read(damaged);
    EXPECT_THAT(FaultsOf(book), ElementsAre(std::string("ann.wab, ") + c.words));
    EXPECT_EQ(book.searched, c.searched) << c.words;
    EXPECT_THAT(NamesOf(book), UnorderedElementsAreArray(kPeople)) << c.words;
    EXPECT_EQ(book.groups.size(), 3u);
    EXPECT_EQ(book.deleted, 1u);
  }
  Bytes doubled = file;
  Store32(&doubled[kIndex + 12], Load32(&doubled[kIndex + 4]));
  EXPECT_THAT(FaultsOf(Read(doubled)), Contains(HasSubstr("the record 1 shares bytes with another record")));
  EXPECT_THAT(NamesOf(Read(doubled)), UnorderedElementsAreArray(kPeople));
  // A sound index is believed: what it leaves out is not brought back.
  Bytes shortened = file;
  Store32(&shortened[kIndexTable + 4], 6 * 8);
  Store32(&shortened[kIndexTable + 12], 6);
  EXPECT_EQ(Read(shortened).groups.size(), 2u);
  EXPECT_EQ(Read(shortened).unlisted, 1u);
}

TEST(ContactBookTest, ADamagedPropertyCostsWhatIsBehindItInItsRecord) {
  WabRecord damaged(1, WabTextForm::Wide);
  damaged.Text(0x3001, "Ada").Text(0x3A4F, "Al").Texts(0x3A56, std::vector<std::string_view>{"a@x.org", "b@x.org"});
  const std::vector<WabRecord> records = {damaged, WabRecord(2, WabTextForm::Wide).Text(0x3001, "Ben")};
  const Bytes file = WabFile(records, WabRoom::Least);
  const std::size_t record = RecordAt(file, 0);
  // Behind the head and three tags: "Ada" with 8 bytes, "Al" with 6, the array.
  const std::size_t nickname = record + 0x2C + 16;
  const std::size_t array = nickname + 14;
  struct Case {
    std::size_t at;
    std::uint32_t number;
    const char* words;
  };
  const Case cases[] = {
      {nickname, 0x3A500000, "property 0x3a4f of record 1 has another tag before its data than in the record's list"},
      {nickname + 4, 0xFFFFFFFF, "property 0x3a4f of record 1 reaches beyond the end of the record"},
      {array + 4, 0xFFFFFFFF, "property 0x3a56 of record 1 has more entries than an address book can have"},
      {array + 4, 3, "property 0x3a56 of record 1 reaches beyond the end of the record"},
      {array + 8, 5, "property 0x3a56 of record 1 has a length that does not fit what is in it"},
      {array + 12, 0xFFFFFFFF, "property 0x3a56 of record 1 reaches beyond the end of the record"},
  };
  for (const Case& c : cases) {
    Bytes changed = file;
    Store32(&changed[c.at], c.number);
    const ContactBook book = Read(changed);
    EXPECT_THAT(FaultsOf(book), ElementsAre(EndsWith(c.words)));
    EXPECT_THAT(NamesOf(book), ElementsAre("Ada", "Ben"));
    EXPECT_EQ(book.contacts[0].nickname, c.at >= array ? "Al" : "");
  }
  Bytes unlimited = file;
  Store32(&unlimited[record + 0xC], 0xFFFFFFFF);
  EXPECT_THAT(FaultsOf(Read(unlimited)), ElementsAre(HasSubstr("has more entries than an address book can have")));
  // The array's length may leave out the lengths of its elements.
  Bytes other = file;
  Store32(&other[array + 8], 32);
  EXPECT_THAT(MailsOf(Read(other).contacts.at(0)), ElementsAre(":a@x.org", ":b@x.org"));
}

TEST(ContactBookTest, MembersAreFoundWhateverTheyAreAndLoopsEnd) {
  const auto group = [](std::uint32_t id, const char* name, const std::vector<Bytes>& members) {
    return WabRecord(id, WabTextForm::Wide).Number(0x0FFE, 8).Text(0x3001, name).Binaries(0x6600, members);
  };
  const Bytes own = {9, 9, 9, 9, 9, 9};
  const Bytes longId = {0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 5, 0, 0, 0};
  const std::vector<WabRecord> records = {
      group(1, "A", {NumberBytes(2), NumberBytes(4)}),
      group(2, "B", {NumberBytes(3), NumberBytes(2), own}),
      group(3, "C", {NumberBytes(1), longId, NumberBytes(77), {1, 2}, Bytes(kLongestEntryId + 1)}),
      WabRecord(4, WabTextForm::Wide).Text(0x3001, "Ada"),
      WabRecord(5, WabTextForm::Wide).Text(0x3001, "Ben"),
      WabRecord(6, WabTextForm::Wide).Text(0x3001, "Cleo").Binary(0x0FFF, own),
      WabRecord(7, WabTextForm::Wide).Number(0x0FFE, 3).Text(0x3001, "Neither"),
  };
  const ContactBook book = Read(WabFile(records));
  EXPECT_THAT(NamesOf(book), ElementsAre("Ada", "Ben", "Cleo"));
  EXPECT_EQ(book.others, 1u);
  const auto member = [](const char* fault) { return EndsWith(std::string("a member of the group 3 ") + fault); };
  EXPECT_THAT(FaultsOf(book),
              UnorderedElementsAre(EndsWith("the group 1 contains itself"), EndsWith("the group 2 contains itself"),
                                   member("names a record that the address book does not have"),
                                   member("does not name a record in a known form"),
                                   member("does not name a record in a known form")));
  ASSERT_EQ(book.groups.size(), 3u);
  EXPECT_THAT(book.groups[0].everyone, ElementsAre(0, 1, 2));
  EXPECT_THAT(book.groups[1].everyone, ElementsAre(1, 2));
  EXPECT_THAT(book.groups[2].everyone, ElementsAre(1));
}

TEST(ContactBookTest, GroupsThatMultiplyEachOtherStayWithinBounds) {
  std::vector<WabRecord> records;
  constexpr std::uint32_t kGroups = 300;
  std::vector<Bytes> people;
  for (std::uint32_t id = 1000; id < 9000; ++id) people.push_back(NumberBytes(id));
  for (std::uint32_t id = 1; id <= kGroups; ++id) {
    const std::vector<Bytes> members = id == kGroups ? people : std::vector<Bytes>{NumberBytes(id + 1)};
    records.push_back(WabRecord(id, WabTextForm::Narrow).Number(0x0FFE, 8).Binaries(0x6600, members));
  }
  for (std::uint32_t id = 1000; id < 9000; ++id) records.emplace_back(id, WabTextForm::Narrow).Text(0x3001, "x");
  const ContactBook book = Read(WabFile(records));
  std::size_t members = 0;
  for (const ContactGroup& group : book.groups) members += group.everyone.size();
  EXPECT_GE(members, kMostMemberships);
  EXPECT_LE(members, kMostMemberships + people.size());
  EXPECT_THAT(FaultsOf(book), Contains(HasSubstr("has more entries than an address book can have")));
}

TEST(ContactBookTest, AFileFullOfRecordsWithinRecordsComesToAnEnd) {
  // Heads of records with the greatest counts, a record every 0x24 bytes, each of them with data to the file's end.
  Bytes file = SmallBook();
  Store32(&file[kIndexTable + 12], 0xFFFFFFFF);
  constexpr std::size_t kFileSize = 600'000;
  for (std::uint32_t id = 100; file.size() < kFileSize; ++id) {
    for (const std::uint32_t number : {1U, 1U, id, 1U, 0x20U, 0x24U, 0x24U, 0x7FFFFFFFU, 0x3A56101FU, 0x3A56101FU}) {
      AppendNumber<4>(file, number);
    }
    AppendNumber<4>(file, 65'000);
    AppendNumber<4>(file, 0);
  }
  file.resize(kFileSize + 100'000);
  const ContactBook book = Read(file);
  EXPECT_EQ(book.contacts.front().lastName, "Größler");
  EXPECT_LE(book.contacts.size(), kMostContacts);
  EXPECT_EQ(book.faults.size(), kMostBookFaults);
  EXPECT_GT(book.faultsNotListed, 1000u);
}

TEST(ContactBookTest, TheDefaultAddressComesFirstAndNoneTwice) {
  struct Case {
    const char* single;
    std::vector<std::string_view> all;
    std::optional<std::uint32_t> first;
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {"", {}, {}, {}},
      {"a@x", {}, {}, {"EX:a@x"}},
      {"A@X", {"a@x", "b@x"}, 1, {":b@x", "EX:a@x"}},
      {"b@x", {"a@x", "b@x"}, {}, {"EX:b@x", ":a@x"}},
      {"c@x", {"a@x", "", "a@X"}, 4'000'000'000, {"EX:c@x", ":a@x"}},
  };
  for (const Case& c : cases) {
    WabRecord record(1, WabTextForm::Wide);
    record.Number(0x0FFE, 6).Text(0x3003, c.single).Text(0x3002, "EX").Texts(0x3A56, c.all);
    if (c.first) record.Number(0x3A55, *c.first);
    const ContactBook book = Read(WabFile({&record, 1}, WabRoom::Least));
    EXPECT_EQ(MailsOf(book.contacts.at(0)), c.expected) << c.single;
  }
}

TEST(ContactBookTest, ValuesThatCannotBeAreLeftOut) {
  WabRecord record(1, WabTextForm::Wide);
  record.Time(0x3A42, {0})
      .Time(0x3A41, {~FileTime{0}})
      .Raw(0x3001001F, {'A', 0, 0x00, 0xD8, 'B', 0, 0, 0, 'C', 0, 'D'});
  record.Raw(0x3A420040, {1, 2, 3}).Raw(0x3A060003, NumberBytes(1)).Raw(0x3A11000A, {}).Raw(0x3A11001E, {0xE9});
  record.Raw(0x0FFE0003, {6});
  const ContactBook book = Read(WabFile({&record, 1}, WabRoom::Least));
  const Contact& contact = book.contacts.at(0);
  EXPECT_EQ(contact.displayName,
            "A\xEF\xBF\xBD"
            "B");
  EXPECT_EQ(contact.firstName + contact.lastName, "é");
  EXPECT_FALSE(contact.birthday || contact.anniversary);
  EXPECT_THAT(FaultsOf(book), ElementsAre(EndsWith("property 0x3a41 of record 1 is a date beyond the year 9999"),
                                          HasSubstr("0x3001"), HasSubstr("0x3a42"), HasSubstr("0x0ffe")));
}

}  // namespace
}  // namespace quillbox
