// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_folder.h"

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/new_file.h"
#include "host/test_host.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

constexpr HostTime kTime = {.seconds = 1'000'000'000, .nanoseconds = 0};

class NewFolderTest : public InTempFolder {
 protected:
  static void Add(NewFolder& folder, const std::string& name, std::string_view content) {
    folder.StartFile(name);
    folder.Write(content);
    folder.EndFile(kTime);
  }
  std::vector<std::string> All() { return Names(temp_.Path()); }
};

TEST_F(NewFolderTest, TakesItsNameWithAllFilesOrLeavesNothing) {
  {
    NewFolder folder(HostFolder::Open(path_), "mail");
    Add(folder, "a.eml", "one");
    EXPECT_EQ(folder.There(), nullptr);
  }
  EXPECT_TRUE(All().empty());
  NewFolder folder(HostFolder::Open(path_), "mail");
  Add(folder, "a.eml", "one");
  Add(folder, "b.eml", "");
  EXPECT_EQ(CodeOf([&] { folder.StartFile("a.eml"); }), std::errc::file_exists);
  EXPECT_EQ(folder.Open("a.eml").ReadWhole(), "one");
  for (const char* name : {"..", "x/y", ""}) EXPECT_NE(CodeOf([&] { folder.StartFile(name); }), std::error_code());
  folder.Commit();
  EXPECT_THAT(All(), ElementsAre("mail"));
  EXPECT_THAT(Names(temp_ / "mail"), ElementsAre("a.eml", "b.eml"));
  EXPECT_EQ(InfoOf(path_ / "mail/a.eml").info->modified, kTime);
}

TEST_F(NewFolderTest, AddsToAFolderAndReplacesNothing) {
  temp_.File("mail/old.eml", "old");
  NewFolder folder(HostFolder::Open(path_), "mail");
  ASSERT_NE(folder.There(), nullptr);
  EXPECT_EQ(CodeOf([&] { folder.StartFile("old.eml"); }), std::errc::file_exists);
  Add(folder, "a.eml", "a");
  Add(folder, "b.eml", "b");
  temp_.File("mail/b.eml", "somebody else's");
  EXPECT_EQ(CodeOf([&] { folder.Commit(); }), std::errc::file_exists);
  EXPECT_EQ(temp_.Read("mail/b.eml"), "somebody else's");
  EXPECT_FALSE(std::filesystem::exists(temp_ / "mail/a.eml")) << "what was moved before is taken out again";
  NewFolder again(HostFolder::Open(path_), "mail");
  Add(again, "a.eml", "a");
  again.Commit();
  EXPECT_EQ(temp_.Read("mail/a.eml") + temp_.Read("mail/old.eml"), "aold");
}

TEST_F(NewFolderTest, RefusesAFileOfItsNameAndNamesThatTheSystemLacks) {
  temp_.File("mail", "a file");
  EXPECT_EQ(CodeOf([&] { NewFolder(HostFolder::Open(path_), "mail"); }), std::errc::not_a_directory);
  NewFolder folder(HostFolder::Open(path_), "other");
  EXPECT_TRUE(folder.Takes("plain"));
  EXPECT_FALSE(folder.Takes("a/b"));
  folder.StartFile("plain");
}

TEST_F(NewFolderTest, IsRemovedOnceTheProgramThatMadeItIsGone) {
  temp_.File(".quillbox-abcdef/1.eml", "left behind");
  temp_.File("mine/.quillbox-note", "not ours");
  NewFolder living(HostFolder::Open(path_), "mail");
  Add(living, "a.eml", "a");
  RemoveAbandonedFiles(HostFolder::Open(path_));
  EXPECT_FALSE(std::filesystem::exists(temp_ / ".quillbox-abcdef"));
  EXPECT_TRUE(std::filesystem::exists(temp_ / "mine/.quillbox-note"));
  living.Commit();
  EXPECT_EQ(temp_.Read("mail/a.eml"), "a");
}

}  // namespace
}  // namespace quillbox
