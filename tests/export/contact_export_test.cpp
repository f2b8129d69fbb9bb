// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/contact_export.h"

#include "sample/address_book.h"
#include "support/host_tricks.h"
#include "support/sample_platform.h"
#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using End = ContactExport::End;

Bytes SmallBook() {
  return SampleAddressBook({.room = WabRoom::Least});
}
std::string TextOf(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

class ContactExportTest : public SamplePlatform {
 protected:
  BookResult Read(const std::string& file) {
    return ReadBookFile(platform->GetFiles(), platform->GetSystemFacts(), WinPath(file));
  }
  ContactBookFile ReadSmall() {
    onDisk.File("D/ann.wab", TextOf(SmallBook()));
    return std::get<ContactBookFile>(Read("D:\\ann.wab"));
  }
  ContactExport Export(const ContactBookFile& file, const std::vector<std::size_t>& chosen, ContactFormat format,
                       const char* target) {
    return ExportContacts(platform->GetFiles(), file, chosen, format, WinPath(target));
  }
  static std::string Refused(const BookResult& result) {
    return std::holds_alternative<BookRefusal>(result) ? std::get<BookRefusal>(result).Sentence() : "it was read";
  }
  std::string InUse(const std::string& file) {
    Store().SetKeyValue(kAddressBookKey, "", file, ValueType::Sz);
    return Refused(ReadBookInUse(*platform, Store()));
  }
};

TEST_F(ContactExportTest, TheBookInUseIsWrittenInEveryFormat) {
  const auto file = std::get<ContactBookFile>(ReadBookInUse(*platform, Store()));
  EXPECT_EQ(file.path.Name(), "Ann Miller.wab");
  EXPECT_TRUE(file.IsWhole());
  EXPECT_EQ(file.LeftOut(), "1 deleted record");
  const std::pair<const char*, const char*> beginnings[] = {{".vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\n"},
                                                            {".csv", "First Name,Last Name,Display Name,"},
                                                            {".csv", "Title,First Name,Middle Name,"},
                                                            {".ldif", "version: 1\ndn:"}};
  ASSERT_EQ(ContactFormats().size(), std::size(beginnings));
  for (const ContactFormatRow& row : ContactFormats()) {
    SCOPED_TRACE(row.caption);
    const auto& [ending, beginning] = beginnings[static_cast<std::size_t>(row.format)];
    EXPECT_EQ(std::string(row.ending), ending);
    EXPECT_THAT(row.filter, HasSubstr(std::string("*") + ending));
    const ContactExport done = Export(file, {0, 2}, row.format, "D:\\ann.out");
    EXPECT_EQ(done.Summary(), "2 of " + std::to_string(file.book.contacts.size()) +
                                  " contacts and 2 of 3 groups written to D:\\ann.out");
    EXPECT_THAT(onDisk.Read("D/ann.out"), StartsWith(beginning));
  }
}

TEST_F(ContactExportTest, AnotherReaderFindsTheChosenContactsAndTheirGroups) {
  NEEDS(Scripts);
  if (RunProgram("/usr/bin/python3", {"-c", "import vobject"}, temp.Path()).code != 0) {
    GTEST_SKIP() << "python3-vobject is not installed";
  }
  Export(ReadSmall(), {1, 2, 3}, ContactFormat::VCard, "D:\\ann.vcf");
  const std::string script = QUILLBOX_TESTS_DIR "/contacts/read_contacts.py";
  const ProgramRun run =
      RunProgram("/usr/bin/python3", {script, "vcard", (sample.driveD / "ann.vcf").string()}, temp.Path());
  std::vector<std::string> lines;
  std::istringstream all(run.out);
  for (std::string line; std::getline(all, line);) {
    if (line.starts_with("FN ") || line.starts_with("CATEGORIES ")) lines.push_back(line);
  }
  EXPECT_THAT(lines, ElementsAre("FN Ben Okafor", "CATEGORIES Bücherfreunde, Köln|Everyone", "FN =2+3",
                                 "FN nobody@garden.example", "CATEGORIES Everyone"))
      << run.err;
}

TEST_F(ContactExportTest, ItIsDoneOnlyWhenNothingIsMissing) {
  ContactBookFile file = ReadSmall();
  const auto ended = [&](const std::vector<std::size_t>& chosen) {
    return Export(file, chosen, ContactFormat::Ldif, "D:\\a.ldif");
  };
  EXPECT_EQ(ended({0, 1}).Sentences(),
            "2 of 4 contacts and 2 of 3 groups written to D:\\a.ldif.\n\n"
            "Groups without any of these contacts, which were not written: \"" +
                file.book.groups[1].name + "\".");
  EXPECT_EQ(ended({0, 1}).Ended(), End::PartsMissing);
  file.book.groups.erase(file.book.groups.begin() + 1);
  EXPECT_EQ(ended({0, 3}).Ended(), End::Done) << "what the person unchecked is not missing";
  EXPECT_EQ(ended({2}).Ended(), End::PartsMissing);
  file.book.groups.assign(12,
                          ContactGroup{.recordId = 1, .name = "a\nb", .contacts = {}, .groups = {}, .everyone = {}});
  EXPECT_THAT(ended({}).Sentences(), HasSubstr(", \"a\xE2\x90\x8A"
                                               "b\" and 2 more."));

  Bytes damaged = SmallBook();
  damaged.resize(damaged.size() - 20);
  onDisk.File("D/cut.wab", TextOf(damaged));
  file = std::get<ContactBookFile>(Read("D:\\cut.wab"));
  EXPECT_THAT(file.Faults(), ::testing::Each(StartsWith("cut.wab, offset 0x")));
  EXPECT_EQ(file.Faults().size(), file.FaultCount());
  EXPECT_EQ(ended({0, 1, 2, 3}).Ended(), End::PartsMissing);
  EXPECT_THAT(ended({0, 1, 2, 3}).Sentences(), HasSubstr("what could not be read is not in the file."));
  file.book.faultsNotListed = 7;
  EXPECT_EQ(file.Faults().back(), "cut.wab: 7 more faults");
}

TEST_F(ContactExportTest, WhatIsNotAnAddressBookIsRefusedWithTheReason) {
  onDisk.File("D/empty.wab");
  onDisk.File("D/text.wab", "Dear Ann,");
  onDisk.File("D/huge.wab");
  std::filesystem::resize_file(onDisk / "D/huge.wab", kLargestContactBook + 1'000'000);
  const std::pair<const char*, const char*> cases[] = {
      {"D:\\gone.wab", "The address book was not read: D:\\gone.wab: "},
      {"D:\\empty.wab", "D:\\empty.wab, offset 0x0: it is not an address book"},
      {"D:\\text.wab", "D:\\text.wab, offset 0x0: it is not an address book"},
      {"D:\\huge.wab", "it is not an address book"},
      {"D:\\", "The address book was not read: D:\\: "},
  };
  for (const auto& [file, why] : cases) {
    EXPECT_THAT(Refused(Read(file)), HasSubstr(why));
    EXPECT_THAT(InUse(file), HasSubstr(why));
  }
  EXPECT_EQ(InUse(""), "The registry names no address book file.");
  EXPECT_THAT(InUse("Z:\\home\\ann.wab"), HasSubstr("is not used: "));
  EXPECT_THAT(InUse("ann.wab"), HasSubstr("is not used: "));
  if (!WhyNot(Trick::Pipes).empty()) return;
  MakePipe(onDisk / "D/pipe.wab");
  EXPECT_THAT(Refused(Read("D:\\pipe.wab")), StartsWith("The address book was not read: D:\\pipe.wab"));
}

TEST_F(ContactExportTest, AFailedExportLeavesWhatWasThere) {
  const ContactBookFile file = ReadSmall();
  const std::string book = onDisk.Read("D/ann.wab");
  const ContactExport itself = Export(file, {0}, ContactFormat::VCard, "d:\\Ann.wab");
  EXPECT_EQ(itself.Sentences(), "No file was written. d:\\Ann.wab is the address book itself.");
  EXPECT_EQ(onDisk.Read("D/ann.wab"), book);
  onDisk.File("D/old.vcf", "old");
  EXPECT_THAT(Export(file, {0}, ContactFormat::VCard, "D:\\none\\a.vcf").Sentences(),
              HasSubstr("No file was written. D:\\none\\a.vcf: "));
  NEEDS(FailingCalls);
  const FileSizeLimit full(256);
  const ContactExport result = Export(file, {0, 1, 2, 3}, ContactFormat::VCard, "D:\\old.vcf");
  EXPECT_EQ(result.Ended(), End::NotWritten);
  EXPECT_EQ(result.Summary(), "Nothing was written");
  EXPECT_EQ(onDisk.Read("D/old.vcf"), "old");
  EXPECT_THAT(Names(sample.driveD), ::testing::Not(::testing::Contains(HasSubstr("~"))));
}

/// A file in which some bytes cannot be read.
struct BadSectors : FileReader {
  std::size_t Read(std::span<char> buffer) override {
    const std::size_t end = std::min(at + buffer.size(), bytes.size());
    for (const std::uint64_t place : bad) {
      if (place >= at && place < end) throw Error("reading", {"x.wab", {}, {}}, "input/output error");
    }
    const std::size_t length = end - std::min(at, end);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), length, buffer.begin());
    at += length;
    return length;
  }
  void GoTo(std::uint64_t offset) override { at = offset; }
  Bytes bytes = Bytes(200'000, 'x');
  std::vector<std::uint64_t> bad;
  std::size_t at = 0;
};

TEST(ReadBookBytesTest, UnreadablePlacesAreSkippedAndReported) {
  BadSectors reader;
  reader.bad = {70'000, 74'000, 150'000};
  ContactBookFile file{WinPath("D:\\x.wab"), {}, {}};
  BookBytes read = ReadBookBytes(reader);
  file.unread = read.unread;
  EXPECT_THAT(file.Faults(), ElementsAre("x.wab, offset 0x11000: 8192 bytes cannot be read: input/output error",
                                         "x.wab, offset 0x24000: 4096 bytes cannot be read: input/output error"));
  EXPECT_FALSE(file.IsWhole());
  EXPECT_EQ(file.FaultCount(), 2U);
  ASSERT_EQ(read.bytes.size(), 200'000U);
  EXPECT_EQ(std::count(read.bytes.begin(), read.bytes.end(), 0), 3 * 4096);
  EXPECT_TRUE(read.bytes[0x13000] == 'x' && read.bytes[0x12FFF] == 0);
  const auto fails = [&](std::vector<std::uint64_t> bad) {
    reader.bad = std::move(bad);
    reader.GoTo(0);
    EXPECT_THROW(ReadBookBytes(reader), Error);
  };
  fails({5});
  reader.bytes.resize(400'000);
  std::vector<std::uint64_t> many;
  for (std::uint64_t place = 8'000; place < 300'000; place += 4'000) many.push_back(place);
  fails(many);
}

}  // namespace
}  // namespace quillbox
