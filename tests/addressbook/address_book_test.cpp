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

  std::unique_ptr<AddressBook> book;
};

TEST_F(AddressBookTest, NothingIsLostToASlotOrACopyThatHoldsNoPath) {
  const std::string first = book->InUse();
  store->SetKeyValue(kAddressBookKey, "WAB0", kOnC, ValueType::ExpandSz);
  EXPECT_FALSE(book->UseSlot(0)) << "only plain text counts";
  EXPECT_FALSE(book->UseSlot(1)) << "a missing value";
  EXPECT_TRUE(book->SaveSetting());
  book->Use("");
  EXPECT_FALSE(book->SaveSetting());
  EXPECT_EQ(book->RestoreSetting(), first);
}

TEST_F(AddressBookTest, MovingCopiesTheFileAndPointsTheSettingThere) {
  temp.File("disk/C/Mail/home.wab", "contacts");
  std::filesystem::create_directories(sample.driveD / "Books");
  book->Use(kOnC);
  book->MoveTo("D:\\Books");
  EXPECT_EQ(book->InUse(), "D:\\Books\\home.wab");
  EXPECT_EQ(Content(sample.driveD / "Books/home.wab"), "contacts");
  EXPECT_EQ(temp.Read("disk/C/Mail/home.wab"), "contacts");

  dialogs.overwriteAnswers = {OverwriteAnswer::Yes};
  book->MoveTo("D:\\Books\\");
  EXPECT_EQ(book->InUse(), "D:\\Books\\home.wab");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("same file"));
  EXPECT_EQ(Content(sample.driveD / "Books/home.wab"), "contacts");

  book->MoveTo("Q:\\");
  EXPECT_EQ(book->InUse(), "Q:\\home.wab");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("there is no such folder"));
}

}  // namespace
}  // namespace quillbox
