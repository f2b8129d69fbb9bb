// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/file_search.h"

#include "backup/drives.h"
#include "host/host_folder.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"
#include "support/host_tricks.h"
#include "support/matchers.h"
#include "support/temp_folder.h"
#include "support/test_drives.h"

namespace quillbox {
namespace {

struct FileSearchTest : testing::Test {
  /// The paths of the files found, in their order.
  std::vector<std::string> Search(const std::string& root, const std::string& pattern) {
    found.Clear();
    report = {};
    SearchFiles(files, WinPath(root), pattern, found, report, progress);
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < found.Count(); ++i) paths.push_back(found.Folder(i) + found.Name(i));
    return paths;
  }

  TempFolder temp;
  std::filesystem::path c = temp.Folder("c");
  OfflineDrives drives{DriveMap(c)};
  HostedFiles files{drives};
  FoundFiles found;
  SearchReport report;
  SearchProgress progress = [](const std::string&, std::size_t) { return true; };
};

TEST_F(FileSearchTest, EachFolderComesBeforeWhatIsBelowItAndEachMatchOnce) {
  for (const char* file : {"top.dbx", "a/Inbox.DBX", "a/b/c/deep.dbx", "a/b/no.dbx.bak", "z/Sent Items.dbx"}) {
    temp.File(std::string("c/") + file);
  }
  temp.Folder("c/a/folder.dbx");
  temp.File("c/a/folder.dbx/inside.dbx");
  const std::vector<std::string> paths = Search("C:\\", "*.dbx");
  EXPECT_THAT(paths, UnorderedElementsAre("C:\\top.dbx", "C:\\a\\Inbox.DBX", "C:\\a\\b\\c\\deep.dbx",
                                          "C:\\a\\folder.dbx\\inside.dbx", "C:\\z\\Sent Items.dbx"));
  EXPECT_EQ(paths.front(), "C:\\top.dbx");
  const auto at = [&](const char* path) { return std::find(paths.begin(), paths.end(), path) - paths.begin(); };
  EXPECT_LT(at("C:\\a\\Inbox.DBX"), at("C:\\a\\b\\c\\deep.dbx"));
  EXPECT_EQ(std::abs(at("C:\\a\\b\\c\\deep.dbx") - at("C:\\a\\folder.dbx\\inside.dbx")), 1) << "a's are not torn apart";

  EXPECT_THAT(Search("c:\\A\\B", "*.*"), UnorderedElementsAre("c:\\A\\B\\no.dbx.bak", "c:\\A\\B\\c\\deep.dbx"));
  for (const char* pattern : {"", "a\\*.dbx", "*.wab"}) EXPECT_THAT(Search("C:\\", pattern), IsEmpty()) << pattern;
  for (const char* root : {"None Selected", "", "Q:\\", "C:\\top.dbx"}) {
    EXPECT_THAT(Search(root, "*.dbx"), IsEmpty()) << root;
    EXPECT_THAT(report.unread, IsEmpty()) << root;
  }
}

TEST_F(FileSearchTest, LinksToFoldersAreNotEntered) {
  NEEDS(Links);
  temp.File("c/a/Inbox.dbx");
  temp.File("outside/far.dbx");
  std::filesystem::create_directory_symlink(c, c / "a/loop");
  std::filesystem::create_directory_symlink(c / "a", c / "a/loop.dbx");
  std::filesystem::create_symlink(temp / "outside/far.dbx", c / "a/linked.dbx");
  std::filesystem::create_symlink("nowhere", c / "a/broken.dbx");
  EXPECT_THAT(Search("C:\\", "*.dbx"),
              UnorderedElementsAre("C:\\a\\Inbox.dbx", "C:\\a\\linked.dbx", "C:\\a\\broken.dbx"));
}

TEST_F(FileSearchTest, AFolderThatCannotBeReadIsToldAndTheRestIsSearched) {
  NEEDS(Modes);
  for (const char* file : {"c/a/in.dbx", "c/b/in.dbx", "c/top.dbx"}) temp.File(file);
  std::filesystem::permissions(temp.Path(), std::filesystem::perms{0755});
  for (const char* folder : {"c/a", "c/b"}) std::filesystem::permissions((temp / folder), std::filesystem::perms{0});
  const auto paths = [&] {
    const OrdinaryUser user;
    return Search("C:\\", "*.dbx");
  }();
  for (const char* folder : {"c/a", "c/b"}) std::filesystem::permissions((temp / folder), std::filesystem::perms{0700});
  EXPECT_THAT(paths, ElementsAre("C:\\top.dbx"));
  EXPECT_THAT(report.unread, UnorderedElementsAre("C:\\a: Permission denied", "C:\\b: Permission denied"));
}

TEST_F(FileSearchTest, NamesThatAreNoTextAreFoundAndCanBeOpened) {
  NEEDS(BadNames);
  temp.File(
      "c/bad\xFF"
      "dir/caf\xE9.dbx",
      "mail");
  temp.File("c/\xC3\x84rger/\xC3\xBC.DBX");
  const auto paths = Search("C:\\", "*.dbx");
  ASSERT_EQ(paths.size(), 2U);
  for (const std::string& path : paths) EXPECT_TRUE(files.Stat(WinPath(path))) << path;
  for (const char* pattern : {"\xC3\x9C.dbx", "?.d?x"}) {
    EXPECT_THAT(Search("C:\\", pattern), ElementsAre("C:\\\xC3\x84rger\\\xC3\xBC.DBX")) << pattern;
  }
}

/// Far deeper than folders may be open at a time, with paths longer than the system takes at once, and with something
/// to come back to on every level.
TEST_F(FileSearchTest, DepthHasNoLimit) {
  NEEDS(DeepFolders);
  constexpr int kDepth = 1500;
  const HostFolder outside = HostFolder::Open(HostPath(temp.File("a.dbx").parent_path()));
  HostFolder folder = HostFolder::Open(HostPath(c));
  for (int i = 0; i < kDepth; ++i) {
    for (const char* name : {"deeper", "aside"}) ASSERT_FALSE(folder.MakeFolder(name));
    ASSERT_FALSE(outside.Link("a.dbx", folder, "a.dbx"));
    ASSERT_FALSE(outside.Link("a.dbx", folder.OpenFolder("aside"), "b.dbx"));
    folder = folder.OpenFolder("deeper");
  }
  EXPECT_EQ(Search("C:\\", "*.dbx").size(), 2U * kDepth);
  EXPECT_THAT(report.unread, IsEmpty());
}

TEST(DriveList, FixedDrivesThenCdRomsThenAll) {
  TestDrives drives;
  drives.types = {{'C', DriveType::Fixed}};
  EXPECT_THAT(ListDrives(drives).items, ElementsAre("C:\\{volume has no label}"));
  drives.labels = {{'D', std::string("DATA\0rubbish", 12)}};
  drives.types = {{'A', DriveType::Fixed}, {'B', DriveType::CdRom},   {'C', DriveType::Fixed}, {'D', DriveType::Fixed},
                  {'E', DriveType::CdRom}, {'R', DriveType::RamDisk}, {'Z', DriveType::Remote}};
  const DriveList list = ListDrives(drives);
  EXPECT_THAT(list.items, ElementsAre("C:\\{volume has no label}", "D:\\DATA", "B:\\CD-ROM", "E:\\CD-ROM",
                                      "All Hard Drives (C:\\, D:\\)"));
  EXPECT_THAT(list.roots, ElementsAre(WinPath("C:\\"), WinPath("D:\\"), WinPath("B:\\"), WinPath("E:\\")));
  drives.types['F'] = DriveType::Removable;
  std::string types;
  for (const char* root : {"f", "C:", "z:\\", "B", "r", "Q:\\"}) types += DriveTypeText(drives, root) + "|";
  EXPECT_EQ(types, "Removable Drive|Fixed Drive|Remote Drive|CD-ROM|RAM Disk|Drive Doesn't Exist|");
}

}  // namespace
}  // namespace quillbox
