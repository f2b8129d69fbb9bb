#include "identities/manage_identities.h"

#include <cstdlib>

#include "identities/create_identity.h"
#include "identities/user_id.h"
#include "support/registry_snapshot.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

class ManageIdentitiesTest : public SamplePlatform {
 protected:
  void SetUp() override { MakeDisk(); }
  std::filesystem::path Hive() { return sample.driveC / "Documents and Settings" / sample.profile / "NTUSER.DAT"; }
  /// False when an independent reader of hives refuses the disk's.
  bool ReaderAccepts(const std::string& reader) {
    if (std::system(("command -v " + reader + " >/dev/null").c_str()) != 0) return true;
    return std::system((reader + " '" + Hive().string() + "' >/dev/null 2>&1").c_str()) == 0;
  }
};

TEST_F(ManageIdentitiesTest, ANewIdentityHasItsValuesAndFolder) {
  const std::string userId = "{89ABCDEF-0123-4567-89AB-CDEF01234567}";
  IdentityMaker maker(*platform, Store());
  ASSERT_TRUE(maker.CreateNewGUID());
  EXPECT_TRUE(IsUserId(maker.NewUserID()));
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
  EXPECT_TRUE(std::filesystem::is_empty(platform->offline.GetDrives().HostPath(folder)));

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

TEST_F(ManageIdentitiesTest, ARemovedIdentityLeavesRoomThatIsUsedAgain) {
  constexpr int kSubkeys = 50000;
  const auto fill = [&] {
    for (int i = 0; i < kSubkeys; ++i) Store().CreateKey(CurrentUser(IdentityKey(kGuest) + "\\" + std::to_string(i)));
    platform->EndCommand();
    return std::filesystem::file_size(Hive());
  };
  const auto full = fill();
  const RegValue ordinal = Read(kIdentitiesKey, "Identity Ordinal");
  RemoveIdentity(Store(), kGuest);
  platform->EndCommand();
  EXPECT_TRUE(ReaderAccepts("hivexml") && ReaderAccepts("reglookup"));
  OpenDisk();
  EXPECT_TRUE(SnapshotOf(platform->GetRegistry(), CurrentUser(IdentityKey(kGuest))).empty());
  EXPECT_EQ(Read(kIdentitiesKey, "Identity Ordinal"), ordinal);
  EXPECT_LE(fill(), full);
  EXPECT_TRUE(ReaderAccepts("hivexml") && ReaderAccepts("reglookup"));
  for (const char* userId : {"", "x\\y"}) RemoveIdentity(Store(), userId);
  EXPECT_EQ(Read(IdentityKey(kMain), "Username"), RegValue("Main Identity"));
}

}  // namespace
}  // namespace quillbox
