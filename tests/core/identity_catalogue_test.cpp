#include "core/identity_catalogue.h"

#include "core/address_book_slots.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

class IdentityCatalogueTest : public SamplePlatform {
 protected:
  void SetUp() override { MakeDisk(); }
  IdentityCatalogue Load() { return LoadCatalogue(Store(), platform->GetSystemFacts()); }
};

TEST_F(IdentityCatalogueTest, AnIdentityNeverStartedGetsTheMarkerInTheRegistry) {
  Load();
  EXPECT_EQ(Read(IdentitySettingsKey(kGuest), "Store Root"),
            RegValue("This Identity is empty, there are no values to save."));
  const OpenResult settings = Store().OpenKey(CurrentUser(IdentitySettingsKey(kGuest)));
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

TEST_F(IdentityCatalogueTest, AValueThatIsNoTextEndsTheLoad) {
  Store().SetKeyValue(IdentitySettingsKey(kMain), "Store Root", RegValue(7), ValueType::Dword);
  const IdentityCatalogue load = Load();
  EXPECT_EQ(load.end.kind, LoadEnd::Kind::Failed);
  EXPECT_THAT(load.end.failure, ::testing::HasSubstr("Store Root"));
}

TEST_F(IdentityCatalogueTest, AnEmptyAddressBookSlotHoldsNoneAndWithoutTheKeyNoneIsLoaded) {
  const OpenResult key = Store().OpenKey(CurrentUser(kAddressBookKey));
  platform->GetRegistry().SetValue(key.key, "WAB3", ValueType::Sz, {});
  EXPECT_EQ(LoadAddressBookSlots(Store()).names[3], std::nullopt);
  for (const char* name : {"", "WAB1"}) Store().SetValueEx(key.key, name, ValueType::Binary, RegValue(Bytes{1, 2}));
  Store().SetValueEx(key.key, "WAB2", ValueType::Sz, "C:\\a.wab");
  const SlotsLoad load = LoadAddressBookSlots(Store());
  EXPECT_EQ(load.names[1], std::nullopt);
  EXPECT_EQ(load.names[2], "a.wab");
  Store().DeleteKey(CurrentUser(kAddressBookKey));
  EXPECT_FALSE(LoadAddressBookSlots(Store()).keyOpened);
}

}  // namespace
}  // namespace quillbox
