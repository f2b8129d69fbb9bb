// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_folder.h"

#include <set>

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/test_host.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

using HostFolderTest = InTempFolder;

TEST_F(HostFolderTest, ListsEachEntryOnceHoweverManyThereAre) {
  for (int number = 0; number < 1500; ++number) {
    temp_.File("a name that is not short, so that a buffer holds few of them " + std::to_string(number));
    if (number % 100 == 0) temp_.Folder("folder" + std::to_string(number));
  }
  const HostFolder folder = HostFolder::Open(path_);
  std::multiset<std::string> listed;
  std::vector<ListedEntry> entries;
  int calls = 0;
  for (; folder.ListSome(entries); ++calls) {
    for (const ListedEntry& entry : entries) {
      listed.insert(entry.name);
      EXPECT_EQ(entry.kind.value_or(EntryKind::Other) == EntryKind::Folder, entry.name.starts_with("folder"));
    }
  }
  EXPECT_GT(calls, 1);
  EXPECT_EQ(listed.size(), 1515u);
  EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()).size(), 1515u);
  EXPECT_FALSE(folder.ListSome(entries));

  std::multiset<std::string> seen;
  EXPECT_TRUE(folder.EachName([&](const std::string& name) { return seen.insert(name), false; }));
  EXPECT_EQ(seen, listed);
  int asked = 0;
  EXPECT_TRUE(folder.EachName([&](const std::string&) { return ++asked == 3; }));
  EXPECT_EQ(asked, 3);
}

TEST_F(HostFolderTest, SaysWhatEntriesAre) {
  temp_.File("a/three", "123");
  const HostFolder folder = HostFolder::Open(path_ / "a");
  const EntryInfo info = folder.InfoOf("three");
  EXPECT_TRUE(info.IsFile() && info.size == 3 && folder.Info().IsFolder());
  EXPECT_EQ(folder.OpenFile("three").Info().id, info.id);
  EXPECT_EQ(HostFolder::Open(path_).InfoOf("a").id, folder.Info().id);
  EXPECT_NE(folder.Info().id, info.id);
  EXPECT_EQ(folder.Find("four"), std::nullopt);
  EXPECT_EQ(CodeOf([&] { folder.InfoOf("four"); }), std::errc::no_such_file_or_directory);
  EXPECT_EQ(CodeOf([&] { folder.OpenFile("four"); }), std::errc::no_such_file_or_directory);
  EXPECT_EQ(CodeOf([&] { HostFile::Open(path_ / "a").ReadWhole(); }), std::errc::is_a_directory);
  EXPECT_EQ(folder.WriteFaultOf("three", Links::Keep), std::error_code());
}

TEST_F(HostFolderTest, GoesDownThroughFoldersOnly) {
  temp_.File("a/b/file");
  EXPECT_TRUE(HostFolder::OpenBeneath(path_, HostPath("a/b")).Find("file"));
  EXPECT_TRUE(HostFolder::OpenBeneath(path_, HostPath()).Find("a"));
  const auto open = [&](const char* below) { return CodeOf([&] { HostFolder::OpenBeneath(path_, HostPath(below)); }); };
  EXPECT_EQ(open("a/c/d"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(open("a/b/file"), std::errc::not_a_directory);
  EXPECT_EQ(open("a/b/file/d"), std::errc::not_a_directory);
}

TEST_F(HostFolderTest, FollowsNoLinkOnItsWayDown) {
  temp_.File("a/b/file");
  if (!MakeLink(path_ / "a/link", path_ / "a/b")) GTEST_SKIP() << "no links can be made here";
  const HostFolder folder = HostFolder::Open(path_ / "a");
  EXPECT_TRUE(folder.InfoOf("link").IsLink() && folder.InfoOf("link", Links::Follow).IsFolder());
  EXPECT_EQ(folder.ReadLink("link"), path_ / "a/b");
  EXPECT_EQ(folder.ReadLink("b"), std::nullopt);
  EXPECT_TRUE(HostFolder::Open(path_ / "a/link").Find("file") && folder.OpenFolder("link", Links::Follow).Find("file"));
  for (const char* below : {"a/link", "a/link/c"}) {
    EXPECT_EQ(CodeOf([&] { HostFolder::OpenBeneath(path_, HostPath(below)); }),
              std::errc::too_many_symbolic_link_levels);
  }
  EXPECT_EQ(RealPathOf(path_ / "a/link/file").path.Name(), "file");
  EXPECT_EQ(RealPathAsFarAsThere(path_ / "a/link/x/y").path, RealPathOf(path_).path / "a/b/x/y");
  EXPECT_EQ(folder.Remove("link"), std::error_code());
  EXPECT_TRUE(folder.Find("b") && !folder.Find("link"));
}

TEST_F(HostFolderTest, ChangesEntries) {
  temp_.File("one", "1");
  temp_.File("two", "2");
  const HostFolder folder = HostFolder::Open(path_);
  EXPECT_EQ(folder.MakeFolder("sub"), std::error_code());
  EXPECT_EQ(folder.MakeFolder("sub"), std::errc::file_exists);
  EXPECT_EQ(folder.Rename({.from = "one", .to = "two"}), std::error_code());
  EXPECT_EQ(folder.Rename({.from = "one", .to = "two"}), std::errc::no_such_file_or_directory);
  EXPECT_EQ(folder.Rename({.from = "two", .to = "sub"}), std::errc::is_a_directory);
  EXPECT_EQ(temp_.Read("two"), "1");
  EXPECT_EQ(folder.Link("two", folder.OpenFolder("sub"), "again"), std::error_code());
  EXPECT_EQ(InfoOf(path_ / "sub/again").info->id, folder.InfoOf("two").id);
  EXPECT_EQ(folder.Remove("sub"), std::errc::is_a_directory);
  EXPECT_EQ(folder.Remove("two"), std::error_code());
  EXPECT_EQ(folder.Remove("two"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(Move(path_ / "sub/again", path_ / "moved"), std::error_code());
  EXPECT_EQ(temp_.Read("moved"), "1");
}

TEST_F(HostFolderTest, SeesWhetherItCanBeWrittenWithoutATrace) {
  const HostFolder folder = HostFolder::Open(path_);
  const HostTime before = folder.Info().modified;
  EXPECT_TRUE(folder.CanMakeFiles() && folder.MayWrite());
  EXPECT_EQ(folder.Info().modified, before);
  EXPECT_THAT(Names(temp_.Path()), IsEmpty());
  folder.Flush();
}

}  // namespace
}  // namespace quillbox
