#include "platform/offline/offline_platform.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <map>

#include "sample_disk.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

using testing::HasSubstr;

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
  std::map<std::string, Bytes> Everything() const {
    std::map<std::string, Bytes> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(disk.folder)) {
      if (entry.is_regular_file()) files[entry.path()] = ReadBytes(entry.path());
    }
    return files;
  }
  /// What a person asks for in a window reaches other disks only.
  void TryToWrite() {
    OfflinePlatform platform(options, dialogs);
    platform.GetRegistry().Create(kNewUserKey);
    platform.GetRegistry().Create(kNewMachineKey);
    OfflineFiles& files = platform.GetFiles();
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
  const std::map<std::string, Bytes> sound = Everything();
  const struct {
    std::filesystem::path hive;
    const char *key, *name;
  } rows[] = {{kUser, "Environment", "Anna"},
              {kSoftware, "Microsoft\\Windows\\CurrentVersion", "this Windows (SOFTWARE)"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    DamageKeys(row.hive, {row.key});
    const std::map<std::string, Bytes> before = Everything();
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
    EXPECT_THAT(
        again.SystemDescription(),
        testing::EndsWith("(damaged in 1 place: what cannot be read is left out; changes go to a private copy)"));
    WriteBytes(row.hive, sound.at(row.hive));
    dialogs.messages.clear();
    std::filesystem::remove_all(options.stateFolder);
  }
}

TEST_F(SalvageTest, ARegistryWhoseLogsCannotBeUsedIsWrittenOnlyIfThePersonSaysYes) {
  LeaveUnclosed(kUser);
  disk.temp.File("c/Documents and Settings/Anna/ntuser.dat.LOG", "no log");
  const std::map<std::string, Bytes> before = Everything();
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_THAT(WhyNot(), HasSubstr("its logs cannot be used (ntuser.dat.LOG: "));
  EXPECT_THAT(dialogs.LastMessage(),
              testing::MatchesRegex("The registry of Anna was not closed cleanly, and its logs cannot be used:\n\n"
                                    "ntuser.dat.LOG: [^\n]+\n\nWindows might still apply them. "
                                    "Go on with the registry as it is\\?"));
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
  const HostFd holder(open(inUse.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(flock(holder.Get(), LOCK_EX), 0);
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

}  // namespace
}  // namespace quillbox
