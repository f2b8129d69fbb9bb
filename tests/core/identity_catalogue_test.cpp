#include "core/identity_catalogue.h"

#include "core/address_book_slots.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

class IdentityCatalogueTest : public SamplePlatform {
 protected:
  void SetUp() override { MakeDisk(); }
  IdentityCatalogue Load() { return LoadCatalogue(Store(), platform->GetSystemFacts()); }
  IdentityInfo Find(const std::string& username) {
    for (const IdentityInfo& identity : Load().identities) {
      if (identity.username == username) return identity;
    }
    ADD_FAILURE() << "no identity " << username;
    return {};
  }
};

TEST_F(IdentityCatalogueTest, LoadsWhatTheRegistryHolds) {
  const IdentityCatalogue load = Load();
  EXPECT_EQ(load.end.kind, LoadEnd::Kind::Complete);
  ASSERT_GE(load.identities.size(), 3u);
  EXPECT_EQ(load.defaultUsername, "Main Identity");
  const IdentityInfo main = Find("Main Identity");
  EXPECT_EQ(main.userId, load.defaultUserId);
  EXPECT_EQ(main.FolderText(),
            "C:\\Documents and Settings\\Ann Miller\\Local Settings\\Application Data\\Identities\\" + main.userId +
                "\\Microsoft\\Outlook Express");
  EXPECT_THAT(load.addressBookFile.Text(), ::testing::EndsWith(".wab"));
}

TEST_F(IdentityCatalogueTest, AnIdentityNeverStartedGetsTheMarker) {
  const IdentityInfo guest = Find("Guest");
  EXPECT_FALSE(guest.storeFolder);
  EXPECT_EQ(guest.FolderText(), "This Identity is empty, there are no values to save.");
  EXPECT_EQ(Read(IdentitySettingsKey(guest.userId), "Store Root"), RegValue(guest.FolderText()));
  const OpenResult settings = Store().OpenKey(CurrentUser(IdentitySettingsKey(guest.userId)));
  EXPECT_EQ(platform->GetRegistry().Query(settings.key, "Store Root", std::nullopt).type, ValueType::ExpandSz);
}

TEST_F(IdentityCatalogueTest, ExpandsOnlyTheFirstVariable) {
  SystemFacts& facts = platform->GetSystemFacts();
  const std::string profile = "C:\\Documents and Settings\\Ann Miller";
  EXPECT_EQ(ExpandStoreRoot(facts, "%UserProfile%\\a\\%Temp%"), profile + "\\a\\%Temp%");
  EXPECT_EQ(ExpandStoreRoot(facts, "C:\\Mail\\%userprofile%\\Store"), profile + "\\Store");
  EXPECT_EQ(ExpandStoreRoot(facts, "C:\\100% mail"), "C:\\100% mail");
  EXPECT_EQ(ExpandStoreRoot(facts, "C:\\Mail\\%NotSet%\\Store"), "%NotSet%\\Store");
}

TEST_F(IdentityCatalogueTest, StopsWhereAKeyCannotBeOpened) {
  Store().SetKeyValue(kIdentitiesKey, "Default User ID", "{gone}", ValueType::Sz);
  const IdentityCatalogue load = Load();
  EXPECT_EQ(load.end.kind, LoadEnd::Kind::ReadError);
  EXPECT_EQ(load.end.suffix, " Default User ID Username");
  EXPECT_EQ(load.end.usernamesRead, 1u);

  Store().DeleteKey(CurrentUser(kIdentitiesKey));
  EXPECT_EQ(Load().end.kind, LoadEnd::Kind::NoIdentitiesKey);
}

TEST_F(IdentityCatalogueTest, AValueThatIsNoTextEndsTheLoad) {
  const std::string key = IdentitySettingsKey(Load().defaultUserId);
  Store().SetKeyValue(key, "Store Root", RegValue(7), ValueType::Dword);
  const IdentityCatalogue load = Load();
  EXPECT_EQ(load.end.kind, LoadEnd::Kind::Failed);
  EXPECT_THAT(load.end.failure, ::testing::HasSubstr("Store Root"));
}

TEST_F(IdentityCatalogueTest, AddressBookSlotsAreMadeAndRead) {
  Store().SetKeyValue(kAddressBookKey, "WAB1", "D:\\Books\\old.wab", ValueType::Sz);
  const OpenResult key = Store().OpenKey(CurrentUser(kAddressBookKey));
  platform->GetRegistry().SetValue(key.key, "WAB3", ValueType::Sz, {});
  const SlotsLoad load = LoadAddressBookSlots(Store());
  EXPECT_THAT(load.names, ::testing::ElementsAre(std::nullopt, "old.wab", std::nullopt, std::nullopt));
  EXPECT_THAT(load.folder.Text(), ::testing::EndsWith("\\Address Book\\"));
  EXPECT_EQ(Read(kAddressBookKey, "WAB2"), RegValue("None Selected"));
  Store().DeleteKey(CurrentUser(kAddressBookKey));
  EXPECT_FALSE(LoadAddressBookSlots(Store()).keyOpened);
}

}  // namespace
}  // namespace quillbox
