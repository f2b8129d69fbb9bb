#include "platform/offline/offline_files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "offline_fixture.h"
#include "platform/offline/folder_finder.h"
#include "platform/offline/host_file.h"

namespace quillbox {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

struct OfflineFilesTest : testing::Test, TwoDrives {
  std::vector<std::string> Names(const std::string& pattern) { return Names(files.Find(WinPath(pattern))); }
  static std::vector<std::string> Names(const std::unique_ptr<FileFinder>& finder) {
    std::vector<std::string> names;
    while (const auto entry = finder->Next()) names.push_back(entry->name + (entry->isDirectory ? "\\" : ""));
    return names;
  }
};

TEST_F(OfflineFilesTest, FindsByPatternWithDotsFirstBelowTheRootOnly) {
  temp.File("c/Mail/Inbox.dbx");
  temp.File("c/Mail/.hidden");
  temp.File("c/Mail/Sent Items.DBX");
  temp.Folder("c/Mail/Empty");
  EXPECT_THAT(Names("C:\\*.*"), ElementsAre("Mail\\"));
  std::vector<std::string> all = Names("c:\\MAIL\\*.*");
  ASSERT_GE(all.size(), 2u);
  EXPECT_THAT(std::vector(all.begin(), all.begin() + 2), ElementsAre(".\\", "..\\"));
  EXPECT_THAT(std::vector(all.begin() + 2, all.end()),
              UnorderedElementsAre("Inbox.dbx", ".hidden", "Sent Items.DBX", "Empty\\"));
  EXPECT_THAT(Names("C:\\Mail\\*.dbx"), UnorderedElementsAre("Inbox.dbx", "Sent Items.DBX"));
  EXPECT_THAT(Names("C:\\Mail\\EMPTY\\*"), ElementsAre(".\\", "..\\"));
  EXPECT_THAT(Names("C:\\Mail\\inbox.DBX"), ElementsAre("Inbox.dbx"));
  for (const char* nothing : {"C:\\Mail\\", "C:\\Mail\\Inbox.dbx\\*", "C:\\None\\*.*", "E:\\*.*", "D:\\*.*", ""}) {
    EXPECT_THAT(Names(nothing), IsEmpty()) << nothing;
  }
}

TEST_F(OfflineFilesTest, TellsSizeTimeAndWhatALinkLeadsTo) {
  const auto file = temp.File("c/a.dbx", "12345");
  const timespec times[2] = {{0, 0}, {1'000'000'000, 700}};
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  std::filesystem::create_directory_symlink(d, c / "to-d");
  std::filesystem::create_symlink("nowhere", c / "dangling");
  const auto entry = files.Stat(WinPath("C:\\A.DBX"));
  ASSERT_TRUE(entry.has_value());
  EXPECT_EQ(entry->name, "a.dbx");
  EXPECT_EQ(entry->size, 5u);
  EXPECT_EQ(entry->modified, 126'444'736'000'000'007u);
  EXPECT_TRUE(files.Stat(WinPath("C:\\to-d"))->isDirectory);
  const FolderFinder::Options namesOnly = {.isRoot = true, .namesOnly = true};
  EXPECT_THAT(Names(std::make_unique<FolderFinder>(HostPlace::Anywhere(c), "*", namesOnly)),
              UnorderedElementsAre("a.dbx", "to-d\\", "dangling"));
  EXPECT_TRUE(files.Stat(WinPath("D:\\"))->isDirectory);
  EXPECT_FALSE(files.Stat(WinPath("C:\\a.dbx\\x")).has_value());
}

TEST_F(OfflineFilesTest, HiddenAndSystemComeFromTheFileSystemAlone) {
  const auto file = temp.File("c/Folder.htt");
  temp.File("c/.profile");
  EXPECT_FALSE(files.Stat(WinPath("C:\\.profile"))->isHidden);
  if (setxattr(file.c_str(), "user.DOSATTRIB", "0x6", 3, 0) != 0) GTEST_SKIP() << "no extended attributes here";
  EXPECT_TRUE(files.Stat(WinPath("C:\\Folder.htt"))->isHidden);
  EXPECT_TRUE(files.Stat(WinPath("C:\\Folder.htt"))->isSystem);
  const char record[] = "\0\0\4\0\4\0\0\0\x51\0\0\0\x22\0\0";
  ASSERT_EQ(setxattr(file.c_str(), "user.DOSATTRIB", record, sizeof record, 0), 0);
  EXPECT_TRUE(files.Stat(WinPath("C:\\Folder.htt"))->isHidden);
  EXPECT_FALSE(files.Stat(WinPath("C:\\Folder.htt"))->isSystem);
}

TEST_F(OfflineFilesTest, EachDriveHasACurrentDirectoryOfItsOwn) {
  temp.File("c/Mail/x");
  temp.File("d/Backup/y");
  EXPECT_EQ(drives.SetCurrentDirectory(WinPath("c:\\Mail")), Status::Success);
  EXPECT_EQ(drives.SetCurrentDirectory(WinPath("d:\\Backup")), Status::Success);
  EXPECT_EQ(drives.CurrentDirectory().Text(), "c:\\Mail") << "the drive stays";
  EXPECT_EQ(drives.SetCurrentDrive('d'), Status::Success);
  EXPECT_THAT(Names("*"), testing::Contains("y"));
  EXPECT_THAT(Names("C:*"), testing::Contains("x"));
  EXPECT_TRUE(files.Stat(WinPath("..\\BACKUP\\y")).has_value());
  for (const char* missing : {"", "nowhere", "y", "E:\\", "Q:"}) {
    EXPECT_EQ(drives.SetCurrentDirectory(WinPath(missing)), Status::PathNotFound) << missing;
  }
  EXPECT_EQ(drives.SetCurrentDrive('Q'), Status::PathNotFound);
  EXPECT_EQ(drives.CurrentDirectory().Text(), "d:\\Backup");
}

TEST_F(OfflineFilesTest, MakesFoldersThatWindowsCouldHold) {
  const auto make = [this](const char* path) { return files.MakeDirectory(WinPath(path)); };
  EXPECT_EQ(make("C:\\bk"), Status::Success);
  EXPECT_EQ(make("C:\\BK"), Status::FileExists);
  EXPECT_EQ(make("C:\\"), Status::FileExists);
  EXPECT_EQ(make("C:\\none\\x"), Status::PathNotFound);
  EXPECT_EQ(make("E:\\x"), Status::PathNotFound);
  for (const char* name : {"C:\\bk\\CON", "C:\\bk\\a:b", "C:\\bk\\a?"}) EXPECT_EQ(make(name), Status::InvalidParameter);
  EXPECT_TRUE(files.MakePath(WinPath("D:\\one\\Two\\three\\")));
  EXPECT_TRUE(files.MakePath(WinPath("d:\\ONE\\two\\three")));
  EXPECT_TRUE(std::filesystem::is_directory(d / "one/Two/three"));
  temp.File("d/file");
  EXPECT_FALSE(files.MakePath(WinPath("D:\\file\\below")));
  EXPECT_FALSE(files.MakePath(WinPath("D:\\ok\\a|b")));
}

TEST_F(OfflineFilesTest, ReplacesAFileUnderItsNameWithItsMode) {
  temp.File("c/Keep.txt", "old content");
  chmod((c / "Keep.txt").c_str(), 0640);
  files.WriteFile(WinPath("C:\\keep.TXT"), "new");
  EXPECT_THAT(Names("C:\\*"), ElementsAre("Keep.txt"));
  struct stat info = {};
  ASSERT_EQ(stat((c / "Keep.txt").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777u, 0640u);
  EXPECT_EQ(files.ReadFile(WinPath("C:\\KEEP.txt")), "new");

  for (const char* bad : {"C:\\none\\x", "C:\\a:b", "E:\\x", "C:\\", "C:\\con"}) {
    EXPECT_THROW(files.WriteFile(WinPath(bad), "x"), Error) << bad;
  }
  EXPECT_THAT(FaultOf([&] { files.ReadFile(WinPath("C:\\gone")); }), HasSubstr("C:\\gone: No such file or directory"));
  EXPECT_EQ(files.DeleteFile(WinPath("c:\\keep.txt")), Status::Success);
  EXPECT_EQ(files.DeleteFile(WinPath("c:\\keep.txt")), Status::FileNotFound);
  EXPECT_EQ(files.DeleteFile(WinPath("c:\\none\\keep.txt")), Status::PathNotFound);
}

TEST_F(OfflineFilesTest, ADeviceOfTheHostIsWrittenToAndNeverReplaced) {
  const auto onHost = [this](const char* name) { return WinPath("Z:" + (temp / name).string()); };
  std::filesystem::create_symlink("/dev/null", temp / "null");
  ASSERT_EQ(mkfifo((temp / "pipe").c_str(), 0600), 0);
  const HostFd reader(open((temp / "pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  files.WriteFile(onHost("null"), "gone");
  files.WriteFile(onHost("pipe"), "through");
  std::string got(7, '\0');
  EXPECT_EQ(read(reader.Get(), got.data(), got.size()), 7);
  EXPECT_EQ(got, "through");
  EXPECT_TRUE(std::filesystem::is_symlink(temp / "null"));
  EXPECT_TRUE(std::filesystem::is_fifo(temp / "pipe"));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_THROW(NewFile(HostPlace::Anywhere(temp / "null")), std::system_error);
}

TEST_F(OfflineFilesTest, KnowsItsDrives) {
  EXPECT_EQ(drives.TypeOfDrive(WinPath("c:\\")), DriveType::Fixed);
  EXPECT_EQ(drives.TypeOfDrive(WinPath("D:\\")), DriveType::Fixed);
  EXPECT_EQ(drives.TypeOfDrive(WinPath("Z:\\")), DriveType::Remote);
  EXPECT_EQ(drives.TypeOfDrive(WinPath("E:\\")), DriveType::NoRoot);
  EXPECT_EQ(drives.VolumeLabel(WinPath("C:\\")), "") << "no volume is mounted on the folder";
  EXPECT_EQ(drives.VolumeLabel(WinPath("E:\\")), std::nullopt);
}

}  // namespace
}  // namespace quillbox
