// SPDX-License-Identifier: GPL-3.0-or-later
// A disk whose links lead to the host's own files: nothing there may be read, written, made or even listed.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "host/posix/open_beneath.h"
#include "platform/hosted/host_open.h"
#include "platform/offline/offline_fixture.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

/// Runs with the kernel's openat2 and without it.
struct HostileDiskTest : testing::TestWithParam<bool>, TwoDrives {
  HostileDiskTest() {
    UseOpenat2(GetParam());
    temp.File("outside/bashrc", "secret");
    temp.File("c/Store/Folders.dbx", "folders");
    temp.Folder("c/bk");
  }
  ~HostileDiskTest() override {
    UseOpenat2(true);
    EXPECT_EQ(temp.Read("outside/bashrc"), "secret");
    EXPECT_EQ(std::distance(fs::directory_iterator(temp / "outside"), {}), 1) << "nothing may come to be outside";
  }

  void Link(const fs::path& target, const char* entry) const { fs::create_symlink(target, c / entry); }

  std::string ReadFault(const std::string& path) {
    const std::string fault = FaultOf([&] { files.ReadFile(WinPath(path)); });
    EXPECT_EQ(fault, FaultOf([&] { files.OpenForReading(WinPath(path)); }));
    return fault;
  }
  std::string WriteFault(const std::string& path) {
    return FaultOf([&] { files.WriteFile(WinPath(path), "replaced"); });
  }
};

INSTANTIATE_TEST_SUITE_P(Openat2, HostileDiskTest, testing::Bool());

TEST_P(HostileDiskTest, NoLinkLeadsOut) {
  Link("../../outside/bashrc", "Store/relative.dbx");
  Link(temp / "outside/bashrc", "Store/absolute.dbx");
  Link("../../c/Store/Folders.dbx", "Store/out and back.dbx");
  Link(c / "Store/../../outside/bashrc", "Store/absolute with dots.dbx");
  Link("../../c2/bashrc", "Store/folder of a similar name.dbx");
  temp.File("c2/bashrc", "secret");
  Link("relative.dbx", "Store/chain.dbx");
  Link("../outside", "out");
  Link("../../out/bashrc", "bk/through a folder.dbx");
  Link("../out/bashrc", "bk/to a folder.dbx");
  Link("/proc/self/root/etc/hostname", "Store/magic.dbx");
  for (const char* path :
       {"C:\\Store\\relative.dbx", "C:\\Store\\RELATIVE.DBX", "C:\\Store\\absolute.dbx", "C:\\Store\\out and back.dbx",
        "C:\\Store\\absolute with dots.dbx", "C:\\Store\\folder of a similar name.dbx", "C:\\Store\\chain.dbx",
        "C:\\out\\bashrc", "C:\\OUT\\new.dbx", "C:\\bk\\through a folder.dbx", "C:\\bk\\to a folder.dbx",
        "C:\\Store\\magic.dbx"}) {
    EXPECT_EQ(ReadFault(path), std::string(path) + ": it leads out of the disk (while reading a file)");
    EXPECT_EQ(WriteFault(path), std::string(path) + ": it leads out of the disk (while writing a file)");
  }
  EXPECT_EQ(temp.Read("c/Store/Folders.dbx"), "folders");
  EXPECT_EQ(files.Stat(WinPath("C:\\Store\\relative.dbx"))->size, std::string("../../outside/bashrc").size())
      << "the link's own, not those of the file outside";
  EXPECT_EQ(files.DeleteFile(WinPath("C:\\Store\\relative.dbx")), Status::Success) << "the link itself";
  EXPECT_EQ(files.DeleteFile(WinPath("C:\\out\\bashrc")), Status::AccessDenied);
}

TEST_P(HostileDiskTest, FoldersOutsideAreNotListedEnteredOrFilled) {
  Link("../outside", "out");
  EXPECT_FALSE(files.Stat(WinPath("C:\\out"))->isDirectory);
  EXPECT_FALSE(files.Stat(WinPath("C:\\out\\bashrc")).has_value());
  EXPECT_EQ(files.Find(WinPath("C:\\out\\*"))->Next(), std::nullopt);
  EXPECT_EQ(drives.SetCurrentDirectory(WinPath("C:\\out")), Status::PathNotFound);
  EXPECT_EQ(files.MakeDirectory(WinPath("C:\\out\\new")), Status::AccessDenied);
  EXPECT_EQ(files.MakeDirectory(WinPath("C:\\out")), Status::FileExists);
  EXPECT_FALSE(files.MakePath(WinPath("C:\\out\\new\\deeper")));
  WalkStep step;
  const auto walk = files.Walk(WinPath("C:\\out"), "*");
  ASSERT_TRUE(walk->Step(step));
  EXPECT_THAT(step.unread, ElementsAre("C:\\out\\: it leads out of the disk"));
  EXPECT_FALSE(walk->Step(step));
}

TEST_P(HostileDiskTest, LinksWithinTheDiskAreFollowed) {
  fs::create_directory_symlink(c, temp / "mount");
  const OfflineDrives mounted{DriveMap(temp / "mount", {{'D', d}})};
  temp.File("c/Users/Ann/Mail.dbx", "mail");
  temp.File("d/Mail/Office.dbx", "office");
  Link("Users", "Documents and Settings");
  Link("../../Store/Folders.dbx", "Users/Ann/up to the root.dbx");
  Link(c / "users/ANN", "Store/as Windows names it");
  Link(temp / "mount/Users", "Store/as mounted");
  Link(d / "Mail", "Store/other drive");
  Link("./Folders.dbx", "Store/first.dbx");
  Link("first.dbx", "Store/second.dbx");
  const struct {
    const char *path, *content;
  } rows[] = {{"C:\\documents AND settings\\ann\\mail.dbx", "mail"},
              {"C:\\Users\\Ann\\up to the root.dbx", "folders"},
              {"C:\\Store\\as windows names it\\Mail.dbx", "mail"},
              {"C:\\Store\\other drive\\OFFICE.dbx", "office"},
              {"C:\\Store\\second.dbx", "folders"}};
  for (const auto& row : rows) EXPECT_EQ(files.ReadFile(WinPath(row.path)), row.content) << row.path;
  EXPECT_EQ(ReadWholeFile(*mounted.PlaceOf(WinPath("C:\\Store\\as mounted\\Ann\\Mail.dbx"))), "mail")
      << "by the drive's folder as given";
  EXPECT_TRUE(files.Stat(WinPath("C:\\Store\\other drive"))->isDirectory);
  EXPECT_EQ(files.Stat(WinPath("C:\\Store\\second.dbx"))->size, 7u);

  files.WriteFile(WinPath("C:\\Store\\other drive\\New.dbx"), "new");
  EXPECT_EQ(temp.Read("d/Mail/New.dbx"), "new");
  EXPECT_EQ(WriteFault("C:\\Store\\second.dbx"),
            "C:\\Store\\second.dbx: it is a link, and links are not written to (while writing a file)");
  EXPECT_EQ(temp.Read("c/Store/Folders.dbx"), "folders");
}

TEST_P(HostileDiskTest, LoopsAndLinksToNothingEnd) {
  Link("loop", "loop");
  Link("b/x", "a");
  Link("a", "b");
  for (const char* path : {"C:\\loop", "C:\\loop\\x", "C:\\a"}) {
    EXPECT_THAT(ReadFault(path), HasSubstr(": its links lead in a circle, or there are too many of them"));
    EXPECT_THAT(WriteFault(path), HasSubstr(": its links lead in a circle, or there are too many of them"));
  }
  for (int number = 0; number < 45; ++number) {
    Link(number == 0 ? "Store" : std::to_string(number - 1), std::to_string(number).c_str());
  }
  EXPECT_EQ(files.ReadFile(WinPath("C:\\39\\Folders.dbx")), "folders") << "40 links";
  EXPECT_THAT(ReadFault("C:\\40\\Folders.dbx"), HasSubstr("too many of them"));

  Link("nothing.dbx", "Store/dangling.dbx");
  EXPECT_THAT(ReadFault("C:\\Store\\dangling.dbx"), HasSubstr("No such file or directory"));
  EXPECT_THAT(WriteFault("C:\\Store\\dangling.dbx"), HasSubstr("it is a link"));
  EXPECT_FALSE(fs::exists(c / "Store/nothing.dbx"));
}

TEST_P(HostileDiskTest, AnotherCaseOfANameIsNoWayRoundALink) {
  Link("../outside", "MAIL");
  EXPECT_THAT(ReadFault("C:\\Mail\\bashrc"), HasSubstr("it leads out of the disk"));
  temp.File("c/mail/bashrc", "within");
  EXPECT_EQ(files.ReadFile(WinPath("C:\\mail\\BASHRC")), "within") << "the exact name goes first";
  EXPECT_THAT(ReadFault("C:\\MAIL\\bashrc"), HasSubstr("it leads out of the disk"));
}

TEST_P(HostileDiskTest, WhatIsNotAFileIsNeitherReadNorWaitedFor) {
  ASSERT_EQ(mkfifo((c / "Store/Inbox.dbx").c_str(), 0600), 0);
  std::vector<std::string> paths = {"C:\\Store\\Inbox.dbx"};
  if (mknod((c / "Store/Sent.dbx").c_str(), S_IFCHR | 0600, makedev(1, 5)) == 0)
    paths.emplace_back("C:\\Store\\Sent.dbx");
  for (const std::string& path : paths) {
    EXPECT_THAT(ReadFault(path), HasSubstr(path + ": it is not an ordinary file"));
    EXPECT_THAT(WriteFault(path), HasSubstr(path + ": it is not an ordinary file"));
  }
}

TEST_P(HostileDiskTest, ALinkPutInAfterTheLookupIsNotFollowed) {
  const HostPlace file = *drives.PlaceOf(WinPath("C:\\Store\\Folders.dbx"));
  const HostPlace folder = *drives.PlaceOf(WinPath("C:\\Store"));
  temp.File("c/Store/deep/Old.dbx", "within");
  temp.File("elsewhere/deep/Old.dbx", "secret");
  const HostPlace deep = *drives.PlaceOf(WinPath("C:\\Store\\deep\\Old.dbx"));
  const HostPlace fresh = *drives.PlaceOf(WinPath("C:\\Store\\bashrc"), LastStep::NoLink);
  const auto expectAllRefused = [&](const HostPlace& place, const std::string& why) {
    EXPECT_EQ(FaultOf([&] { OpenForReading(place); }), why);
    EXPECT_EQ(FaultOf([&] { StartNewFile(place)->Commit(); }), why);
  };
  fs::remove(c / "Store/Folders.dbx");
  Link("../../outside/bashrc", "Store/Folders.dbx");
  expectAllRefused(file, "it leads out of the disk");
  EXPECT_TRUE(InfoOf(file)->IsLink());

  fs::rename(c / "Store", c / "moved");
  fs::create_directory_symlink(temp / "outside", c / "Store");
  for (const HostPlace& place : {file, fresh}) expectAllRefused(place, "it leads out of the disk");
  EXPECT_EQ(FaultOf([&] { OpenFolder(folder); }), "it leads out of the disk");
  EXPECT_FALSE(InfoOf(fresh));

  fs::remove(c / "Store");
  fs::create_directory_symlink(temp / "elsewhere", c / "Store");
  expectAllRefused(deep, "it leads out of the disk");
  EXPECT_EQ(temp.Read("elsewhere/deep/Old.dbx"), "secret");

  fs::remove(c / "Store");
  fs::create_directory_symlink(c / "bk", c / "Store");
  expectAllRefused(fresh, "a link has come into its path in the meantime");
}

TEST_P(HostileDiskTest, AFileGoesToTheFolderThatWasThereAtItsBeginning) {
  const auto place = [this](const char* name) {
    return *drives.PlaceOf(WinPath("C:\\bk").Join(name), LastStep::NoLink);
  };
  const auto written = StartNewFile(place("written.dbx"));
  written->Write("whole");
  {
    const auto abandoned = StartNewFile(place("abandoned.dbx"));
    abandoned->Write("half");
    fs::rename(c / "bk", c / "renamed");
    fs::create_directory_symlink(temp / "outside", c / "bk");
  }
  written->Commit();
  EXPECT_EQ(temp.Read("c/renamed/written.dbx"), "whole");
  EXPECT_EQ(std::distance(fs::directory_iterator(c / "renamed"), {}), 1) << "nothing is left of the other one";
}

}  // namespace
}  // namespace quillbox
