// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/hosted_files.h"

#include "host/host_names.h"
#include "offline_fixture.h"
#include "platform/hosted/folder_finder.h"
#include "platform/hosted/host_open.h"
#include "platform/offline/environment.h"
#include "platform/offline/folder_memory.h"
#include "support/host_tricks.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

using namespace std::chrono_literals;

struct OfflineFilesTest : testing::Test, TwoDrives {
  const DriveMap map{c, {{'D', d}}};
  /// Where a Windows path is on this computer.
  std::string Below(const std::string& path) {
    const PlaceResult place = map.PlaceOf(WinPath(path));
    return place ? place->Path().RelativeTo(temp.Path()).Text() : "(none)";
  }
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
  NEEDS(Links);
  const auto file = temp.File("c/a.dbx", "12345");
  std::filesystem::last_write_time(
      file,
      std::chrono::file_clock::from_sys(std::chrono::sys_time<std::chrono::nanoseconds>(1'000'000'000'000'000'700ns)));
  std::filesystem::create_directory_symlink(d, c / "to-d");
  std::filesystem::create_symlink("nowhere", c / "dangling");
  const auto entry = files.Stat(WinPath("C:\\A.DBX"));
  ASSERT_TRUE(entry.has_value());
  EXPECT_EQ(entry->name, "a.dbx");
  EXPECT_EQ(entry->size, 5u);
  EXPECT_EQ(entry->modified, 126'444'736'000'000'007u);
  const FolderFinder::Options namesOnly = {.isRoot = true, .namesOnly = true};
  EXPECT_THAT(Names(std::make_unique<FolderFinder>(HostPlace::Anywhere(c), "*", namesOnly)),
              UnorderedElementsAre("a.dbx", "to-d\\", "dangling"));
  EXPECT_TRUE(files.Stat(WinPath("D:\\"))->isDirectory);
  EXPECT_FALSE(files.Stat(WinPath("C:\\a.dbx\\x")).has_value());
}

TEST_F(OfflineFilesTest, HiddenAndSystemComeFromTheFileSystemAlone) {
  const auto file = temp.File("c/Folder.htt");
  temp.File("c/.profile");
  if (!SetServerAttribute(file, "0x6")) GTEST_SKIP() << "no extended attributes here";
  EXPECT_FALSE(files.Stat(WinPath("C:\\.profile"))->isHidden);
  EXPECT_TRUE(files.Stat(WinPath("C:\\Folder.htt"))->isHidden);
  EXPECT_TRUE(files.Stat(WinPath("C:\\Folder.htt"))->isSystem);
  const char record[] = "\0\0\4\0\4\0\0\0\x51\0\0\0\x22\0\0";
  ASSERT_TRUE(SetServerAttribute(file, {record, sizeof record}));
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
  EXPECT_THAT(Names("*"), Contains("y"));
  EXPECT_THAT(Names("C:*"), Contains("x"));
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
  std::filesystem::permissions(c / "Keep.txt", std::filesystem::perms{0640});
  files.WriteFile(WinPath("C:\\keep.TXT"), "new");
  EXPECT_THAT(Names("C:\\*"), ElementsAre("Keep.txt"));
  const bool hasMode = std::filesystem::status(c / "Keep.txt").permissions() == std::filesystem::perms{0640};
  EXPECT_TRUE(hasMode || !WhyNot(Trick::Modes).empty());
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
  NEEDS(MountPoints);
  NEEDS(Pipes);
  const auto onHost = [this](const char* name) { return WinPath("Z:" + (temp / name).string()); };
  std::filesystem::create_symlink("/dev/null", temp / "null");
  MakePipe(temp / "pipe");
  const HostFile reader = HostFile::Open(temp / "pipe");
  files.WriteFile(onHost("null"), "gone");
  files.WriteFile(onHost("pipe"), "through");
  std::string got(7, '\0');
  EXPECT_EQ(reader.Read(got), 7u);
  EXPECT_EQ(got, "through");
  EXPECT_TRUE(std::filesystem::is_symlink(temp / "null"));
  EXPECT_TRUE(std::filesystem::is_fifo(temp / "pipe"));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_THROW(StartNewFile(HostPlace::Anywhere(temp / "null")), std::system_error);
}

TEST(WindowsName, NamesThatWindowsCannotHoldSurviveBothWays) {
  NEEDS(BadNames);
  const std::string names[] = {"plain.dbx",        "a:b?c\"<>|*\\d",   "tab\there",
                               "ends with blank ", "ends.with.stop.",  "...",
                               "\xE4\xF6\xFC",     "cut\xE2\x82",      "\xED\xA0\x80",
                               "\xC0\xAF",         "\xF4\x90\x80\x80", "\xE2\x82\xAC\xFF\xF0\x9F\x98\x80",
                               ".hidden"};
  for (const std::string& name : names) {
    const std::string shown = WindowsName(name);
    EXPECT_FALSE(FileNameFault(shown)) << name;
    EXPECT_EQ(HostName(shown), name);
  }
  EXPECT_EQ(WindowsName("a:b"),
            "a\xEF\x80\xBA"
            "b");
  EXPECT_EQ(ToUtf16(WindowsName("x\xFF")), (std::u16string{u'x', 0xDCFF}));
}

TEST(WindowsName, NoNameLeavesItsFolder) {
  const std::string stop = "\xEF\x80\xAE";
  for (const std::string& name : {stop, "." + stop, std::string("\xEF\x80\xAF")}) EXPECT_EQ(HostName(name), name);
}

TEST_F(OfflineFilesTest, NamesMatchWithoutRegardToCaseAndAreKeptAsStored) {
  NEEDS(BadNames);
  temp.File("c/Documents and Settings/J\xC3\xBCrgen/Inbox.DBX");
  temp.File("c/odd/a:\xFF");
  EXPECT_EQ(Below("C:\\DOCUMENTS and settings\\J\xC3\x9CRGEN\\inbox.dbx"),
            "c/Documents and Settings/J\xC3\xBCrgen/Inbox.DBX");
  EXPECT_EQ(Below("C:\\odd\\" + WindowsName("A:\xFF")), "c/odd/a:\xFF");
  EXPECT_EQ(Below("C:\\ODD\\New Folder\\Both"), "c/odd/New Folder/Both") << "what is not there is kept as given";
  EXPECT_EQ(Below("D:\\"), "d");
}

TEST_F(OfflineFilesTest, PathsOutsideTheDrivesHaveNoPlace) {
  for (const char* path : {"E:\\x", "relative", "C:x", "\\\\server\\share\\x", "C:\\..\\x", "C:\\a\\..\\..\\x", ""}) {
    EXPECT_EQ(Below(path), "(none)") << path;
  }
  EXPECT_EQ(Below(std::string("C:\\a\0b", 6)), "(none)");
}

TEST_F(OfflineFilesTest, HostPathsAreShownInTheClosestDrive) {
  NEEDS(Links);
  const auto inner = temp.Folder("c/mounted/inner");
  const DriveMap nested(c, {{'D', inner}});
  const auto shown = [&](const std::filesystem::path& host) { return nested.WindowsPathOf(host).value().Text(); };
  EXPECT_EQ(shown(c / "a" / "b:c"), "C:\\a\\" + WindowsName("b:c"));
  EXPECT_EQ(shown(inner / "a"), "D:\\a");
  EXPECT_EQ(shown(inner), "D:\\");
  EXPECT_EQ(shown("/"), "Z:\\");
  EXPECT_EQ(shown("/no/such/place"), "Z:\\no\\such\\place");
  std::filesystem::create_directory_symlink(c, temp / "link");
  EXPECT_EQ(shown(temp / "link/x"), "C:\\x");
}

TEST(Environment, ExpandsOnceAndLeavesTheUnknownAsItReads) {
  Environment environment;
  environment.Set("UserProfile", "C:\\Documents and Settings\\Anna");
  environment.Set("Empty", "");
  environment.Set("Loop", "%Loop%%UserProfile%");
  const struct {
    const char *text, *expanded;
  } rows[] = {{"%USERPROFILE%\\x", "C:\\Documents and Settings\\Anna\\x"},
              {"<%empty%>", "<>"},
              {"%unknown%", "%unknown%"},
              {"100% %Empty%%", "100% %"},
              {"50%%UserProfile%", "50%C:\\Documents and Settings\\Anna"},
              {"%no%USERPROFILE%", "%noC:\\Documents and Settings\\Anna"},
              {"%loop%", "%Loop%%UserProfile%"},
              {"%%", "%%"},
              {"", ""}};
  for (const auto& row : rows) EXPECT_EQ(environment.Expand(row.text), row.expanded) << row.text;
}

TEST(Environment, ValuesThatGrowWithoutBoundStayAsTheyRead) {
  Environment environment;
  environment.Set("A", std::string(30'000, 'x'));
  EXPECT_EQ(environment.Expand("%A%%A%"), "%A%%A%");
  std::string many;
  for (int i = 0; i < 100'000; ++i) many += "%A%";
  EXPECT_EQ(environment.Expand(many), many);
}

/// The disk is the drive C; the folders that are chosen are elsewhere.
struct FolderMemoryTest : testing::Test, OfflineFixture {
  FolderMemoryTest() { AddIdentity("{A}"); }

  static RegistryPath Identity(const char* userId) {
    return {RegistryRoot::CurrentUser, std::string("Identities\\") + userId};
  }
  void AddIdentity(const char* userId) { registry.Create(Identity(userId)); }
  void RemoveIdentity(const char* userId) { registry.DeleteTree(Identity(userId)); }
  /// A new start of the program on the disk.
  FolderMemory Memory(const char* profile = "Ann") { return {state, {disk.Path(), profile}, drives, registry}; }
  static WinPath OnZ(const std::filesystem::path& host) { return WinPath(quillbox::OnZ(host)); }

  TempFolder temp;
  std::filesystem::path home = temp.Folder("home/backup");
  std::filesystem::path state = temp / "state";
  HiveFile hive = NewHive("NTUSER.DAT");
  bool mounted = (registry.Mount({RegistryRoot::CurrentUser, ""}, hive), true);
};

TEST_F(FolderMemoryTest, AChoiceIsRememberedForItsDiskAndProfile) {
  EXPECT_FALSE(Memory().IsChosen(OnZ(home)));
  Memory().Choose(OnZ(home));
  EXPECT_TRUE(Memory().IsChosen(OnZ(home)));
  EXPECT_TRUE(Memory().IsChosen(WinPath(OnZ(temp / "HOME").Text() + "/x/../backup\\"))) << "under any of its names";
  EXPECT_FALSE(Memory("Bob").IsChosen(OnZ(home)));
  EXPECT_FALSE(Memory().IsChosen(OnZ(temp / "home")));
  EXPECT_FALSE(FolderMemory(state, {temp.Folder("other"), "Ann"}, drives, registry).IsChosen(OnZ(home)));
  if (!WhyNot(Trick::Links).empty()) return;
  std::filesystem::create_directory_symlink(disk.Path(), temp / "link");
  EXPECT_TRUE(FolderMemory(state, {temp / "link", "Ann"}, drives, registry).IsChosen(OnZ(home)));
}

TEST_F(FolderMemoryTest, AnotherDiskAtTheSamePlaceIsAskedAbout) {
  Memory().Choose(OnZ(home));
  AddIdentity("{B}");
  RemoveIdentity("{A}");
  EXPECT_FALSE(Memory().IsChosen(OnZ(home)));
  AddIdentity("{A}");
  FolderMemory memory = Memory();
  EXPECT_TRUE(memory.IsChosen(OnZ(home)));
  RemoveIdentity("{A}");
  RemoveIdentity("{B}");
  EXPECT_TRUE(memory.IsChosen(OnZ(home))) << "in the run in which the identities were removed";
  EXPECT_FALSE(Memory().IsChosen(OnZ(home)));
  Memory().Choose(OnZ(home));
  EXPECT_TRUE(Memory().IsChosen(OnZ(home))) << "a profile without identities";
}

TEST_F(FolderMemoryTest, TheFileIsPrivateSmallAndCheckedWhole) {
  NEEDS(BadNames);
  temp.Folder("home/a\nfolder x%");
  const WinPath odd = OnZ(temp / "home").Join(WindowsName("a\nfolder x%"));
  Memory().Choose(odd);
  const auto folder = state / "backup-folders";
  const bool hasMode = std::filesystem::status(folder).permissions() == std::filesystem::perms::owner_all;
  EXPECT_TRUE(hasMode || !WhyNot(Trick::Modes).empty());
  ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
  const auto file = std::filesystem::directory_iterator(folder)->path();
  const std::string text = temp.Read(file.lexically_relative(temp.Path()).string());
  EXPECT_EQ(text, "Quillbox backup folder 1\ndisk " + disk.Path().string() + "\nprofile Ann\nfolder " +
                      (temp / "home/a%0Afolder x%25").string() + "\nidentity {A}\n");
  EXPECT_TRUE(Memory().IsChosen(odd));
  for (const std::string& damaged : {text.substr(0, text.size() / 2), "more\n" + text, std::string()}) {
    std::ofstream(file, std::ios::binary) << damaged;
    EXPECT_FALSE(Memory().IsChosen(odd)) << damaged;
  }
}

TEST_F(FolderMemoryTest, AChoiceThatCannotBeWrittenHoldsForTheRun) {
  NEEDS(Modes);
  temp.File("state/backup-folders", "in the way");
  FolderMemory memory = Memory();
  EXPECT_THROW(memory.Choose(OnZ(home)), Error);
  EXPECT_TRUE(memory.IsChosen(OnZ(home)));
  EXPECT_FALSE(Memory().IsChosen(OnZ(home)));
}

TEST_F(FolderMemoryTest, AFolderThatIsNotThereYetIsTakenAndAPathThatCannotBeIsNot) {
  EXPECT_EQ(Memory().FaultOf(OnZ(home / "not/there/yet")), std::nullopt);
  EXPECT_EQ(Memory().FaultOf(WinPath(std::string("Z:\\a\0b", 6))), FolderFault::NoSuchPlace);
}

}  // namespace
}  // namespace quillbox
