// SPDX-License-Identifier: GPL-3.0-or-later
#include "addressbook/address_book.h"

#include "support/sample_platform.h"

namespace quillbox {
namespace {

using ::testing::HasSubstr;

constexpr const char* kOnC = "C:\\Mail\\home.wab";

struct AddressBookTest : SamplePlatform {
  void SetUp() override {
    MakeDisk();
    book = std::make_unique<AddressBook>(*platform, *store);
  }
  /// Moves the address book, and has the copy at its place.
  void Move(const char* folder) {
    EXPECT_FALSE(book->MoveTo(WinPath(folder)).has_value());
    platform->EndCommand();
  }

  std::unique_ptr<AddressBook> book;
};

TEST_F(AddressBookTest, NothingIsLostToASlotOrACopyThatHoldsNoPath) {
  const WinPath first = book->InUse();
  store->SetKeyValue(kAddressBookKey, "WAB0", kOnC, ValueType::ExpandSz);
  for (const int slot : {0, 1}) EXPECT_FALSE(book->UseSlot(slot).has_value()) << "only plain text counts";
  EXPECT_TRUE(book->SaveSetting());
  book->Use(WinPath());
  EXPECT_FALSE(book->SaveSetting());
  EXPECT_EQ(book->RestoreSetting().value().Stored(), first);
}

TEST_F(AddressBookTest, TheSettingIsMovedEvenWhereTheFileCannotBe) {
  onDisk.File("C/Mail/home.wab", "contacts");
  std::filesystem::create_directories(sample.driveD / "Books");
  book->Use(WinPath(kOnC));
  const std::pair<const char*, const char*> moves[] = {
      {"D:\\Books", ""}, {"D:\\Books\\", "same file"}, {"D:\\None", "there is no such folder"}};
  for (const auto& [folder, message] : moves) {
    Move(folder);
    EXPECT_EQ(book->InUse(), WinPath(folder).Join("home.wab"));
    EXPECT_THAT(dialogs.LastMessage(), HasSubstr(message));
    for (const char* file : {"C/Mail/home.wab", "D/Books/home.wab"}) EXPECT_EQ(onDisk.Read(file), "contacts");
  }
}

TEST_F(AddressBookTest, AnAddressBookWithAWayOutInItsNameIsMovedFromTheDisk) {
  onDisk.File("C/up.wab", "contacts");
  book->Use(WinPath("C:\\a/../../../up.wab"));
  Move("D:\\");
  EXPECT_EQ(book->InUse().Text(), "D:\\up.wab");
  EXPECT_EQ(Content(sample.driveD / "up.wab"), "contacts");
}

}  // namespace
}  // namespace quillbox
