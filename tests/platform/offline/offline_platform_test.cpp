// SPDX-License-Identifier: GPL-3.0-or-later
// A disk as a whole: what is found on it, how it is opened, and the programs that are started on it.
#include "platform/offline/offline_platform.h"
#include "host/host_paths.h"

#include <map>

#include "offline_fixture.h"
#include "platform/offline/windows_disk.h"
#include "support/host_tricks.h"
#include "support/scripted_dialogs.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

/// Makes a hive file, filled by rows of key, value name, type and text.
struct HiveRow {
  const char *key, *name;
  std::uint32_t type;
  const char* text;
};
void WriteHive(const std::filesystem::path& file, std::initializer_list<HiveRow> rows) {
  Hive hive = Hive::Create("root", kTestTime);
  for (const HiveRow& row : rows) {
    const HiveKey key = hive.CreatePath(hive.Root(), row.key);
    hive.SetValue(key, row.name, row.type, Utf16Bytes(ToUtf16(row.text) + u'\0'));
  }
  WriteHiveFile(file, hive);
}

struct XpDisk {
  TempFolder temp;
  std::filesystem::path folder = temp.Folder("c");
  std::filesystem::path anna = folder / "Documents and Settings/Anna";

  XpDisk() {
    WriteHive(anna / "ntuser.dat",
              {{"Environment", "TEMP", 2, "%USERPROFILE%\\Local Settings\\Temp"},
               {"Environment", "MAIL", 2, "%systemdrive%\\Mail"},
               {"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer", "Logon User Name", 1, "anna"},
               {"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders", "AppData", 2,
                "%USERPROFILE%\\Anwendungsdaten"}});
    WriteHive(folder / "WINDOWS/system32/config/software",
              {{"Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir", 1, "C:\\Programme"}});
    WriteHive(
        folder / "WINDOWS/system32/config/system",
        {{"ControlSet002\\Control\\Nls\\CodePage", "ACP", 1, "1250"},
         {"ControlSet002\\Control\\Session Manager\\Environment", "TEMP", 2, "%SystemRoot%\\TEMP"},
         {"ControlSet002\\Control\\Session Manager\\Environment", "ComSpec", 2, "%SystemRoot%\\system32\\CMD.EXE"},
         {"Select", "Current", 4, "\2"}});
  }
};

std::string WhyNot(const std::filesystem::path& folder) {
  return FaultOf([&] { FindWindowsDisk(folder); });
}

std::vector<std::filesystem::path> Near(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> folders;
  for (const WindowsDisk& disk : FindDisksNear(folder)) folders.push_back(NativePath(disk.folder));
  return folders;
}

TEST(WindowsDisk, FindsThePeopleWhereverWindowsKeptThem) {
  const struct {
    const char *windows, *root;
  } rows[] = {{"winnt", "WinNT/profiles"}, {"Windows", "USERS"}, {"WINXP", "documents AND settings"}};
  for (const auto& row : rows) {
    TempFolder disk;
    disk.File(std::string(row.windows) + "/SYSTEM32/Config/Software");
    if (std::string(row.root).starts_with("WinNT")) std::filesystem::rename(disk / "winnt", disk / "WinNT");
    disk.File(std::string(row.root) + "/zoe/NTUSER.DAT");
    disk.File(std::string(row.root) + "/Anna/ntuser.dat");
    for (const char* other : {"All Users", "default user", "LocalService", "NetworkService", "Public"}) {
      disk.File(std::string(row.root) + "/" + other + "/NTUSER.DAT");
    }
    disk.Folder(std::string(row.root) + "/no hive");
    const WindowsDisk found = FindWindowsDisk(disk.Path());
    ASSERT_EQ(found.profiles.size(), 2u) << row.root;
    EXPECT_EQ(found.profiles[0].name, "Anna");
    EXPECT_TRUE(Exists(found.profiles[0].hive.Place().Path()));
    EXPECT_EQ(found.profiles[1].winFolder.Text().substr(0, 3), "C:\\");
    EXPECT_EQ(found.profiles[1].winFolder.Name(), "zoe");
    EXPECT_TRUE(EqualIgnoreCase(found.windowsPath.Text(), std::string("C:\\") + row.windows));
    EXPECT_TRUE(Exists(found.softwareHive.value().Place().Path()));
  }
}

TEST(WindowsDisk, SaysWhatIsWrongWithAFolder) {
  TempFolder temp;
  EXPECT_THAT(WhyNot(temp / "none"), HasSubstr("there is no such folder"));
  EXPECT_THAT(WhyNot(temp.File("file")), HasSubstr("it is a file, not a folder"));
  EXPECT_THAT(WhyNot(temp.Folder("empty")), HasSubstr("looked for a folder WINDOWS or WINNT"));
  temp.Folder("nobody/Documents and Settings/Anna");
  EXPECT_THAT(WhyNot(temp / "nobody"), HasSubstr(HostPath("nobody/Documents and Settings").Text()));
  temp.File("98/Win/USER.DAT");
  temp.File("98/Win/SYSTEM.DAT");
  temp.File("98/Win/Profiles/Anna/USER.DAT");
  EXPECT_THAT(WhyNot(temp / "98/Win"), HasSubstr("choose the disk itself, " + (temp / "98").string()));
  temp.File("xp/windows/System32/config/software");
  temp.File("xp/Documents and Settings/Anna/NTUSER.DAT");
  for (const char* part : {"xp/windows", "xp/Documents and Settings", "xp/Documents and Settings/Anna"}) {
    EXPECT_THAT(WhyNot(temp / part), HasSubstr("choose the disk itself, " + (temp / "xp").string())) << part;
    EXPECT_THAT(Near(temp / part), ElementsAre(temp / "xp")) << part;
  }
  temp.File("image", std::string("\xEB\x52\x90NTFS    ") + std::string(600, '\0'));
  EXPECT_THAT(WhyNot(temp / "image"), HasSubstr("mount it with \"sudo mount -o ro,loop '" + (temp / "image").string()));
  temp.File("other/Users/Ben/NTUSER.DAT");
  EXPECT_THAT(Near(temp.Path()), ElementsAre(temp / "98", temp / "other", temp / "xp")) << "one level too high";
  EXPECT_THAT(Near(temp / "none"), ElementsAre());
}

TEST(WindowsDisk, OneOfSeveralProfilesHasToBeNamed) {
  TempFolder temp;
  for (const char* name : {"Anna", "Ben"}) temp.File(std::string("Users/") + name + "/NTUSER.DAT");
  const WindowsDisk disk = FindWindowsDisk(temp.Path());
  EXPECT_EQ(ChooseProfile(disk, "BEN").name, "Ben");
  for (const char* name : {"", "Carl"}) {
    EXPECT_THAT(FaultOf([&] { ChooseProfile(disk, name); }), HasSubstr("Anna, Ben"));
  }
}

TEST(WindowsDisk, HivesThatLeadOutOfTheDiskAreRefused) {
  NEEDS(Links);
  const XpDisk disk;
  std::filesystem::rename(disk.anna / "ntuser.dat", disk.temp / "outside.dat");
  std::filesystem::create_symlink("../../../outside.dat", disk.anna / "ntuser.dat");
  const std::filesystem::path config = disk.folder / "WINDOWS/system32/config";
  std::filesystem::rename(config, disk.temp / "config");
  std::filesystem::create_directory_symlink(disk.temp / "config", config);
  disk.temp.File("people/Eve/NTUSER.DAT");
  std::filesystem::create_directory_symlink(disk.temp / "people/Eve", disk.folder / "Documents and Settings/Eve");
  std::filesystem::create_directory_symlink(disk.temp / "people", disk.folder / "Users");

  const WindowsDisk found = FindWindowsDisk(disk.folder);
  ASSERT_EQ(found.profiles.size(), 1u) << "nobody outside is a person of this disk";
  const IdentityCount count = CountIdentities(found.profiles[0]);
  ASSERT_TRUE(count.error.has_value());
  EXPECT_EQ(Describe(*count.error),
            (disk.anna / "ntuser.dat").string() + ": it leads out of the disk (while opening the hive)");
  EXPECT_EQ(found.windowsPath.Text(), "C:\\WINDOWS");
  EXPECT_THAT(FaultOf([&] { found.softwareHive.value().Place(); }),
              HasSubstr("/config/software: it leads out of the disk"));
}

TEST(WindowsDisk, ProfilesOnAnotherDriveAreFoundThroughALink) {
  NEEDS(Links);
  TempFolder temp;
  temp.File("c/WINDOWS/system32/config/software");
  temp.File("d/People/Anna/NTUSER.DAT");
  std::filesystem::create_directory_symlink(temp / "d/People", temp / "c/Documents and Settings");
  EXPECT_THAT(WhyNot(temp / "c"),
              HasSubstr((temp / "c/Documents and Settings").string() + ": it leads out of the disk"));
  const WindowsDisk disk = FindWindowsDisk(temp / "c", {{'D', temp / "d"}});
  ASSERT_EQ(disk.profiles.size(), 1u);
  EXPECT_EQ(disk.profiles[0].winFolder.Text(), "C:\\Documents and Settings\\Anna");
  EXPECT_EQ(disk.profiles[0].hive.Place().Path(), temp / "d/People/Anna/NTUSER.DAT");
}

struct OfflinePlatformTest : testing::Test {
  XpDisk disk;
  ScriptedDialogs dialogs;
  OfflineOptions options = {.folder = disk.folder, .stateFolder = disk.temp / "state"};

  std::string WhyNot() {
    return FaultOf([&] { OfflinePlatform(options, dialogs); });
  }
};

TEST_F(OfflinePlatformTest, HasTheEnvironmentOfTheDisksWindows) {
  OfflinePlatform platform(options, dialogs);
  const struct {
    const char *name, *value;
  } rows[] = {{"systemroot", "C:\\WINDOWS"},
              {"SystemDrive", "C:"},
              {"USERNAME", "anna"},
              {"HOMEDRIVE", "C:"},
              {"HOMEPATH", "\\Documents and Settings\\Anna"},
              {"ProgramFiles", "C:\\Programme"},
              {"ALLUSERSPROFILE", "C:\\Documents and Settings\\All Users"},
              {"APPDATA", "C:\\Documents and Settings\\Anna\\Anwendungsdaten"},
              {"ComSpec", "C:\\WINDOWS\\system32\\CMD.EXE"},
              {"Temp", "C:\\Documents and Settings\\Anna\\Local Settings\\Temp"},
              {"mail", "C:\\Mail"},
              {"LOCALAPPDATA", "%LOCALAPPDATA%"}};
  for (const auto& row : rows) {
    EXPECT_EQ(platform.GetSystemFacts().ExpandEnvironment("%" + std::string(row.name) + "%"), row.value);
  }
  EXPECT_EQ(platform.GetSystemFacts().CodePageNumber(), 1250u);
  EXPECT_TRUE(platform.Warnings().empty());
  EXPECT_FALSE(platform.UsesPrivateCopy());
  std::filesystem::remove(disk.folder / "WINDOWS/system32/config/system");
  options.readOnly = true;
  EXPECT_EQ(OfflinePlatform(options, dialogs).GetSystemFacts().CodePageNumber(), 1252u);
}

TEST_F(OfflinePlatformTest, RefusesWhatItCannotOpen) {
  {
    const OfflinePlatform first(options, dialogs);
    EXPECT_THAT(WhyNot(), HasSubstr("Anna")) << "the disk is in use";
    options.readOnly = true;
    EXPECT_EQ(WhyNot(), "(done)") << "looking does no harm";
    options.readOnly = false;
  }
  options.drives = {{'D', disk.temp / "none"}};
  EXPECT_THAT(WhyNot(), HasSubstr("there is no such folder"));
  options.drives.clear();
  options.currentDirectory = WinPath("C:\\none");
  EXPECT_THAT(WhyNot(), HasSubstr("C:\\none"));
  options.currentDirectory = WinPath();
  disk.temp.File("c/Documents and Settings/Anna/ntuser.dat", "damaged");
  EXPECT_THAT(WhyNot(), HasSubstr("ntuser.dat"));
}

struct SalvageTest : OfflinePlatformTest {
  const std::filesystem::path kUser = disk.anna / "ntuser.dat";
  const std::filesystem::path kSoftware = disk.folder / "WINDOWS/system32/config/software";
  const RegistryPath kNewUserKey = {RegistryRoot::CurrentUser, "Identities\\{3}"};
  const RegistryPath kNewMachineKey = {RegistryRoot::LocalMachine, "SOFTWARE\\New"};

  /// Every file of the disk with what is in it.
  std::map<std::filesystem::path, Bytes> Everything() const {
    std::map<std::filesystem::path, Bytes> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(disk.folder)) {
      // A lock is a file on some hosts, which goes with the program.
      const bool isLock = entry.path().filename() == ".quillbox-lock";
      if (entry.is_regular_file() && !isLock) files[entry.path()] = ReadBytes(entry.path());
    }
    return files;
  }
  /// What a person asks for in a window reaches other disks only.
  void TryToWrite() {
    OfflinePlatform platform(options, dialogs);
    platform.GetRegistry().Create(kNewUserKey);
    platform.GetRegistry().Create(kNewMachineKey);
    HostedFiles& files = platform.GetFiles();
    EXPECT_THROW(files.WriteFile(WinPath("C:\\report.txt"), "text"), Error);
    EXPECT_EQ(files.MakeDirectory(WinPath("C:\\New")), Status::AccessDenied);
    EXPECT_EQ(files.DeleteFile(WinPath("C:\\WINDOWS\\system32\\config\\software")), Status::AccessDenied);
    const WinPath mine = platform.GetDrives().WindowsPathOf(disk.temp / "mine.txt");
    files.WriteFile(mine, "text");
    EXPECT_EQ(disk.temp.Read("mine.txt"), "text");
    platform.GetShell().CopyFile({.source = mine, .target = WinPath("C:\\Inbox.dbx"), .part = CopyPart::OnlyFile});
    EXPECT_EQ(platform.GetShell().FinishCopies().back().end, CopyEnd::Failed);
    EXPECT_THAT(dialogs.LastMessage(),
                HasSubstr("C:\\Inbox.dbx: the disk is not written, since its registry is damaged."));
  }
};

TEST_F(SalvageTest, ADamagedHiveKeepsTheWholeDiskFromBeingWritten) {
  disk.temp.File("c/Documents and Settings/Anna/.quillbox-a1B2c3", "left over");
  const std::map<std::filesystem::path, Bytes> sound = Everything();
  const struct {
    std::filesystem::path hive;
    const char *key, *name;
  } rows[] = {{kUser, "Environment", "Anna"},
              {kSoftware, "Microsoft\\Windows\\CurrentVersion", "this Windows (SOFTWARE)"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    DamageKeys(row.hive, {row.key});
    const std::map<std::filesystem::path, Bytes> before = Everything();
    dialogs.messageAnswers = {MessageAnswer::No};
    EXPECT_THAT(WhyNot(), HasSubstr(row.hive.filename().string() + ", offset 0x"));
    dialogs.messageAnswers = {MessageAnswer::Yes};
    TryToWrite();
    EXPECT_EQ(dialogs.messages[1].text,
              std::string("The registry of ") + row.name +
                  " is damaged in 1 place. Open what can be read? The disk will not be written.");
    EXPECT_EQ(Everything(), before);
    OfflinePlatform again(options, dialogs);
    EXPECT_EQ(again.GetRegistry().Open(kNewUserKey, Access::Full).status, Status::Success);
    EXPECT_EQ(again.GetRegistry().Open(kNewMachineKey, Access::Full).status, Status::Success);
    EXPECT_THAT(again.SystemDescription(),
                EndsWith("(damaged in 1 place: what cannot be read is left out; changes go to a private copy)"));
    std::filesystem::remove_all(NativePath(options.stateFolder));
    std::ofstream(NativePath(options.stateFolder)) << "a file";
    EXPECT_THAT(again.SystemDescription(), HasSubstr("; changes cannot be saved, since " + options.stateFolder.Text() +
                                                     " cannot be written: Not a directory)"));
    WriteBytes(row.hive, sound.at(row.hive));
    dialogs.messages.clear();
    std::filesystem::remove_all(NativePath(options.stateFolder));
  }
}

TEST_F(SalvageTest, ARegistryWhoseLogsCannotBeUsedIsWrittenOnlyIfThePersonSaysYes) {
  LeaveUnclosed(kUser);
  disk.temp.File("c/Documents and Settings/Anna/ntuser.dat.LOG", "no log");
  const std::map<std::filesystem::path, Bytes> before = Everything();
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_THAT(WhyNot(), HasSubstr("its logs cannot be used (ntuser.dat.LOG: "));
  EXPECT_THAT(dialogs.LastMessage(),
              AllOf(StartsWith("The registry of Anna was not closed cleanly, and its logs cannot be used:\n\n"
                               "ntuser.dat.LOG: "),
                    EndsWith("\n\nWindows might still apply them. Go on with the registry as it is?")));
  EXPECT_EQ(Everything(), before);
  dialogs.messageAnswers = {MessageAnswer::Yes};
  {
    OfflinePlatform platform(options, dialogs);
    EXPECT_EQ(Everything(), before);
    platform.GetRegistry().Create(kNewUserKey);
  }
  EXPECT_EQ(ReadBytes(kUser.string() + ".before-quillbox"), before.at(kUser));
  EXPECT_EQ(ReadBytes(kUser.string() + ".LOG.before-quillbox"), before.at(kUser.string() + ".LOG"));
  EXPECT_EQ(WhyNot(), "(done)");
}

TEST_F(OfflinePlatformTest, FoldersThatAreWrittenAreFreedOfWhatKilledProgramsLeft) {
  const std::filesystem::path folders[] = {disk.anna, disk.folder / "WINDOWS/system32/config", disk.folder / "Export",
                                           disk.folder / "Backup"};
  for (const std::filesystem::path& folder : folders) {
    std::filesystem::create_directories(folder);
    std::ofstream(folder / ".quillbox-a1B2c3") << "half a file";
  }
  const auto inUse = disk.temp.File("c/Backup/.quillbox-d4E5f6", "another program's");
  const LockedFile holder(inUse);
  disk.temp.File("c/Backup/.quillbox-notes.txt", "the person's own");
  OfflinePlatform platform(options, dialogs);
  platform.GetFiles().WriteFile(WinPath("C:\\Export\\a.reg"), "text");
  platform.GetShell().CopyFile({.source = WinPath("C:\\Export\\a.reg"), .target = WinPath("C:\\Backup")});
  platform.GetShell().FinishCopies();
  for (const std::filesystem::path& folder : folders) {
    EXPECT_FALSE(std::filesystem::exists(folder / ".quillbox-a1B2c3")) << folder;
  }
  EXPECT_TRUE(std::filesystem::exists(inUse));
  EXPECT_TRUE(std::filesystem::exists(folders[3] / ".quillbox-notes.txt"));
}

TEST_F(OfflinePlatformTest, TheEditorGetsTheDiskItsLockAndTheRawCommandLine) {
  NEEDS(Scripts);
  options.drives = {{'D', disk.temp.Folder("data")}};
  // A shell script in the registry editor's place, which reports to the file $OUT.
  const std::filesystem::path editor = disk.temp.File("editor", "#!/bin/sh\nOUT='" + (disk.temp / "out").string() + R"('
for a in "$@"; do
  echo "<$a>" >> "$OUT"
  if [ "$last" = --lock ]; then [ -e "/proc/self/fd/$a" ] && echo passed >> "$OUT"; fi
  last=$a
done
cp ')" + (disk.anna / "ntuser.dat").string() + "' \"$OUT.hive\"\necho 'line 3 makes no sense' >&2\nexit 1\n");
  std::filesystem::permissions(editor, std::filesystem::perms::owner_all);
  options.registryEditor = editor;
  OfflinePlatform platform(options, dialogs);
  platform.GetDrives().SetCurrentDrive('D');
  platform.GetRegistry().Create({RegistryRoot::CurrentUser, "Identities\\{3}"});
  const std::string command = R"(REGEDIT.EXE /e:A Main.reg "HKEY_CURRENT_USER\Identities\{1}\)";
  EXPECT_EQ(platform.GetProcesses().RunAndWait(command, ShowStyle::Normal).exitCode, 1);
  EXPECT_THAT(disk.temp.Read("state/quillbox.log"), HasSubstr("ended with code 1: line 3 makes no sense"));
  const std::string out = disk.temp.Read("out");
  for (const std::string& part :
       {"<--disk>\n<" + disk.folder.string() + ">", std::string("<--profile>\n<Anna>"),
        "<--drive>\n<D=" + (disk.temp / "data").string() + ">",
        "<--directory>\n<D:\\>\n<--command-line>\n<" + command + ">", std::string("passed\n")}) {
    EXPECT_THAT(out, HasSubstr(part));
  }
  const Hive seen = Hive::Load(AsBytes(disk.temp.Read("out.hive")), "seen");
  EXPECT_TRUE(seen.Find(seen.Root(), "Identities\\{3}").has_value()) << "written before the editor started";
}

TEST_F(OfflinePlatformTest, OtherCommandsAreNotStarted) {
  options.registryEditor = disk.temp / "no editor";
  OfflinePlatform platform(options, dialogs);
  for (const char* command : {"regedit /s x.reg", "regedit32 x", "notepad x", "", " regedit"}) {
    EXPECT_FALSE(platform.GetProcesses().RunAndWait(command, ShowStyle::Normal).started) << command;
  }
}

}  // namespace
}  // namespace quillbox
