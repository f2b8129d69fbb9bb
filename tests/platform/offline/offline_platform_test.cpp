#include "platform/offline/offline_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sample_disk.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

using testing::HasSubstr;

struct OfflinePlatformTest : testing::Test {
  XpDisk disk;
  ScriptedDialogs dialogs;
  OfflineOptions options = {disk.folder, "", {}, {}, "", disk.temp / "state", "", false};

  std::string WhyNot() {
    try {
      const OfflinePlatform platform(options, dialogs);
    } catch (const Error& error) {
      return Describe(error);
    }
    return "(opened)";
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
    EXPECT_EQ(platform.GetFiles().ExpandEnvironment("%" + std::string(row.name) + "%"), row.value);
  }
  EXPECT_EQ(platform.GetFiles().CodePageNumber(), 1250u);
  EXPECT_TRUE(platform.Warnings().empty());
  EXPECT_FALSE(platform.UsesPrivateCopy());
}

TEST_F(OfflinePlatformTest, ChangesReachTheDiskWhenTheCommandEnds) {
  {
    OfflinePlatform platform(options, dialogs);
    const std::string before = disk.temp.Read("c/Documents and Settings/Anna/ntuser.dat");
    platform.GetRegistry().Create({RegistryRoot::CurrentUser, "Identities\\{3}"});
    EXPECT_EQ(disk.temp.Read("c/Documents and Settings/Anna/ntuser.dat"), before);
    platform.EndCommand();
    EXPECT_EQ(CountIdentities(platform.Profile()).identities, 3u);
    platform.GetRegistry().Create({RegistryRoot::CurrentUser, "Identities\\{4}"});
  }
  EXPECT_EQ(CountIdentities(FindWindowsDisk(disk.folder).profiles[0]).identities, 4u) << "at exit too";
}

TEST_F(OfflinePlatformTest, OpensWithoutAMachineHiveAndSaysSo) {
  disk.temp.File("c/WINDOWS/system32/config/software", "damaged");
  std::filesystem::remove(disk.folder / "WINDOWS/system32/config/system");
  OfflinePlatform platform(options, dialogs);
  ASSERT_EQ(platform.Warnings().size(), 2u);
  EXPECT_THAT(platform.Warnings()[0], HasSubstr("config/software"));
  EXPECT_EQ(platform.GetRegistry().Open({RegistryRoot::CurrentUser, "Identities"}, Access::Full).status,
            Status::Success);
  EXPECT_EQ(platform.GetFiles().CodePageNumber(), 1252u);
}

TEST_F(OfflinePlatformTest, RefusesWhatItCannotOpen) {
  {
    const OfflinePlatform first(options, dialogs);
    EXPECT_THAT(WhyNot(), HasSubstr("Anna")) << "the disk is in use";
    options.readOnly = true;
    EXPECT_EQ(WhyNot(), "(opened)") << "looking does no harm";
    options.readOnly = false;
  }
  options.drives = {{'D', disk.temp / "none"}};
  EXPECT_THAT(WhyNot(), HasSubstr("there is no such folder"));
  options.drives.clear();
  options.currentDirectory = "C:\\none";
  EXPECT_THAT(WhyNot(), HasSubstr("C:\\none"));
  options.currentDirectory.clear();
  disk.temp.File("c/Documents and Settings/Anna/ntuser.dat", "damaged");
  EXPECT_THAT(WhyNot(), HasSubstr("ntuser.dat"));
}

TEST_F(OfflinePlatformTest, FoldersThatAreWrittenAreFreedOfWhatWasLeft) {
  const std::filesystem::path folders[] = {disk.anna, disk.folder / "Export"};
  std::filesystem::create_directories(folders[1]);
  for (const std::filesystem::path& folder : folders) std::ofstream(folder / ".quillbox-a1B2c3") << "half a file";
  OfflinePlatform platform(options, dialogs);
  platform.GetFiles().WriteFile(WinPath("C:\\Export\\a.reg"), "text");
  for (const std::filesystem::path& folder : folders) {
    EXPECT_FALSE(std::filesystem::exists(folder / ".quillbox-a1B2c3")) << folder;
  }
}

}  // namespace
}  // namespace quillbox
