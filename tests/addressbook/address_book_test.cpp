#include "addressbook/address_book.h"

#include "support/sample_platform.h"

namespace quillbox {
namespace {

using ::testing::AllOf;
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
  EXPECT_FALSE(book->UseSlot(0).has_value()) << "only plain text counts";
  EXPECT_FALSE(book->UseSlot(1).has_value()) << "a missing value";
  EXPECT_TRUE(book->SaveSetting());
  book->Use(WinPath());
  EXPECT_FALSE(book->SaveSetting());
  EXPECT_EQ(book->RestoreSetting().value().Stored(), first);
  EXPECT_EQ(book->InUse(), first);
}

TEST_F(AddressBookTest, MovingCopiesTheFileAndPointsTheSettingThere) {
  temp.File("disk/C/Mail/home.wab", "contacts");
  std::filesystem::create_directories(sample.driveD / "Books");
  book->Use(WinPath(kOnC));
  Move("D:\\Books");
  EXPECT_EQ(book->InUse().Text(), "D:\\Books\\home.wab");
  EXPECT_EQ(Content(sample.driveD / "Books/home.wab"), "contacts");
  EXPECT_EQ(temp.Read("disk/C/Mail/home.wab"), "contacts");

  Move("D:\\Books\\");
  EXPECT_EQ(book->InUse().Text(), "D:\\Books\\home.wab");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("same file"));
  EXPECT_EQ(Content(sample.driveD / "Books/home.wab"), "contacts");

  Move("D:\\None");
  EXPECT_EQ(book->InUse().Text(), "D:\\None\\home.wab");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("there is no such folder"));
}

TEST_F(AddressBookTest, NothingLeadsOffTheDisk) {
  const auto reasonOf = [](const auto& refused) { return refused.value().Refusal().Sentence(); };
  store->SetKeyValue(kAddressBookKey, "WAB2", "Z:\\x.wab", ValueType::Sz);
  store->SetKeyValue(kAddressBookKey, "WABBackup", "Q:\\y.wab", ValueType::Sz);
  book->Use(WinPath(kOnC));
  EXPECT_THAT(reasonOf(book->UseSlot(2)),
              AllOf(HasSubstr("Z:\\x.wab"), HasSubstr("\"WAB2\""), HasSubstr("no such drive")));
  EXPECT_THAT(reasonOf(book->RestoreSetting()), AllOf(HasSubstr("Q:\\y.wab"), HasSubstr("\"WABBackup\"")));
  EXPECT_EQ(book->MoveTo(WinPath("Z:\\home")).value().Sentence(),
            "The path \"Z:\\home\" is not used: that Windows has no such drive.");
  EXPECT_EQ(book->InUse().Text(), kOnC);

  book->Use(WinPath("Z:" + (temp / "host.wab").string()));
  EXPECT_THAT(book->MoveTo(WinPath("D:\\")).value().Sentence(), HasSubstr("host.wab"));
  // A name with a way out in it is no way out.
  temp.File("disk/C/up.wab", "contacts");
  book->Use(WinPath("C:\\a/../../../up.wab"));
  Move("D:\\");
  EXPECT_EQ(book->InUse().Text(), "D:\\up.wab");
  EXPECT_EQ(Content(sample.driveD / "up.wab"), "contacts");
}

}  // namespace
}  // namespace quillbox
