// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/private_data.h"

#include <memory>

#include "host/folder_lock.h"
#include "platform/offline/hive_file.h"
#include "platform/offline/offline_fixture.h"
#include "support/host_tricks.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PrivateDataTest : public ::testing::Test, protected OfflineFixture {
 protected:
  PrivateDataTest() {
    for (const char* name : {"c/Ann/NTUSER.DAT", "c/config/software"}) {
      HiveFile hive = NewHive(name);
      hive.LeaveDiskAlone();
      SetRootValue(hive, "changed");
      hive.Commit(kTestTime);
    }
    disk.File("state/quillbox.log", std::string(3000, 'x'));
    disk.File("state/last-disk", "folder=/x\n");
  }
  fs::path State() const { return disk / "state"; }
  std::size_t FilesInState() const {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(State())) count += !entry.is_directory();
    return count;
  }
};

TEST_F(PrivateDataTest, AllOfItIsShownAndRemovedAndNothingElse) {
  disk.Folder("state/copies/0123456789abcdef");  // of a hive that was not changed
  const PrivateData data = ListPrivateData(State());
  const std::string text = TextOf(data, State(), data.copies.at(0).changed.seconds + 3 * 24 * 60 * 60);
  EXPECT_THAT(text, HasSubstr(NameOf(disk / "c" / "Ann" / "NTUSER.DAT") + ": 1 copy, "));
  EXPECT_THAT(text, HasSubstr("last changed 3 days ago"));
  EXPECT_THAT(text, HasSubstr("NEVER WRITTEN TO ITS DISK"));
  EXPECT_THAT(text, HasSubstr("The log: 3 KB"));
  EXPECT_EQ(SummaryOf(RemovePrivateData(State(), data)), "Removed: the copies of 2 registries and the log.");
  EXPECT_EQ(FilesInState(), 1u);  // the list of disks
  EXPECT_TRUE(fs::exists(disk / "c/Ann/NTUSER.DAT"));
  EXPECT_TRUE(ListPrivateData(State()).IsEmpty());
  EXPECT_TRUE(ListPrivateData(State() / "none").IsEmpty());
}

TEST_F(PrivateDataTest, WhatIsInUseOrUnknownStays) {
  const auto stays = [&](const char* why) {
    const PrivateData data = ListPrivateData(State());
    const std::size_t before = FilesInState();
    const PrivateRemoval removal = RemovePrivateData(State(), data);
    EXPECT_THAT(removal.kept, ElementsAre(HasSubstr(why), HasSubstr(why)));
    EXPECT_EQ(FilesInState() + removal.logs, before);
  };
  {
    const FolderLock user(disk / "c/Ann", {});
    const FolderLock machine(disk / "c/config", {});
    stays("has it open");
  }
  for (const auto& entry : fs::recursive_directory_iterator(State())) {
    if (entry.path().extension() == ".origin") disk.File(fs::relative(entry.path(), disk.Path()).string(), "?");
  }
  stays("it does not say which disk it is of");
}

TEST_F(PrivateDataTest, NoLinkLeadsOutOfTheStateFolder) {
  NEEDS(Links);
  disk.File("mine/NTUSER.DAT", "mine");
  disk.File("mine/NTUSER.DAT.origin", "A private copy of /x\nsize 1\n");
  fs::create_directory_symlink(disk / "mine", State() / "copies/0123456789abcdef");
  PrivateData data = ListPrivateData(State());
  EXPECT_EQ(data.copies.size(), 2u);
  EXPECT_THAT(data.faults, ElementsAre(HasSubstr("0123456789abcdef: ")));
  KeptCopy& forged = data.copies.emplace_back();
  forged.folder = "0123456789abcdef";
  forged.hive = HostPath("/none/x");
  EXPECT_EQ(RemovePrivateData(State(), data).copies, 2u);
  fs::remove_all(State() / "copies");
  fs::create_directory_symlink(disk / "mine", State() / "copies");
  EXPECT_FALSE(RemovePrivateData(State(), ListPrivateData(State())).kept.empty());
  EXPECT_TRUE(fs::exists(disk / "mine/NTUSER.DAT"));
}

}  // namespace
}  // namespace quillbox
