#include "identities/manage_identities.h"

#include "identities/create_identity.h"
#include "support/registry_snapshot.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

class ManageIdentitiesTest : public SamplePlatform {
 protected:
  void SetUp() override { MakeDisk(); }
};

TEST_F(ManageIdentitiesTest, ANewIdentityHasItsValuesAndFolder) {
  const std::string userId = "{89ABCDEF-0123-4567-89AB-CDEF01234567}";
  IdentityMaker maker(*platform, Store());
  for (const std::string& username : {std::string("  Ann \"Жanna\" "), std::string(300, 'x'), std::string("y")}) {
    const std::uint32_t ordinal = maker.NextOrdinal();
    maker.Create({userId, username}, ordinal);
    EXPECT_EQ(Read(IdentityKey(userId), "Username"), RegValue(username));
    EXPECT_EQ(Read(IdentityKey(userId), "User ID"), RegValue(userId));
    EXPECT_EQ(Read(IdentityKey(userId), "Identity Ordinal"), RegValue(static_cast<std::int32_t>(ordinal)));
    EXPECT_EQ(Read(IdentityKey(userId), "Directory Name"), RegValue(static_cast<std::int32_t>(0x89ABCDEF)));
    EXPECT_EQ(maker.NextOrdinal(), ordinal + 1);
  }
  EXPECT_FALSE(ReadStoreFolder(Store(), platform->GetSystemFacts(), userId));
  const WinPath folder(DefaultStoreFolder(Store(), *platform, userId));
  EXPECT_TRUE(std::filesystem::is_empty(platform->GetDrives().HostPath(folder)));

  Key identities = Store().CreateKey(CurrentUser(kIdentitiesKey));
  platform->GetRegistry().DeleteValue(identities, "Identity Ordinal");
  EXPECT_EQ(maker.NextOrdinal(), 0u);
}

TEST_F(ManageIdentitiesTest, WithoutAnIdentitiesKeyNothingIsWrittenAndNoFolderGoesAstray) {
  platform->GetRegistry().DeleteTree(CurrentUser(kIdentitiesKey));
  Store().SetKeyValue("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", "Local AppData", "x",
                      ValueType::Sz);
  IdentityMaker(*platform, Store()).Create({kGuest, "Guest"}, 1);
  EXPECT_TRUE(SnapshotOf(platform->GetRegistry(), CurrentUser(kIdentitiesKey)).empty());
  EXPECT_FALSE(std::filesystem::exists(sample.driveC / "x"));
  EXPECT_EQ(platform->log.lines.size(), 1u);
}

TEST_F(ManageIdentitiesTest, OnlyAnIdentityIsRemoved) {
  const RegistrySnapshot before = SnapshotOf(platform->GetRegistry(), CurrentUser(kIdentitiesKey));
  for (const std::string& userId : {std::string(), kMain + "\\Software"}) RemoveIdentity(Store(), userId);
  EXPECT_EQ(SnapshotOf(platform->GetRegistry(), CurrentUser(kIdentitiesKey)), before);
}

}  // namespace
}  // namespace quillbox
