#include "platform/offline/folder_memory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "offline_fixture.h"
#include "platform/offline/windows_names.h"

namespace quillbox {
namespace {

struct FolderMemoryTest : testing::Test {
  FolderMemoryTest() { AddIdentity("{A}"); }

  static RegistryPath Identity(const char* userId) {
    return {RegistryRoot::CurrentUser, std::string("Identities\\") + userId};
  }
  void AddIdentity(const char* userId) { registry.Create(Identity(userId)); }
  void RemoveIdentity(const char* userId) { registry.DeleteTree(Identity(userId)); }
  /// A new start of the program on the disk.
  FolderMemory Memory(const char* profile = "Ann") { return {state, {c, profile}, drives, registry}; }
  static WinPath OnZ(const std::filesystem::path& host) { return WinPath(quillbox::OnZ(host)); }
  std::optional<FolderFault> FaultOf(const std::filesystem::path& host) { return Memory().FaultOf(OnZ(host)); }

  TempFolder temp;
  std::filesystem::path c = temp.Folder("disk/c");
  std::filesystem::path d = temp.Folder("disk/d");
  std::filesystem::path home = temp.Folder("home/backup");
  std::filesystem::path state = temp / "state";
  TestLog log;
  FixedClock clock;
  OfflineDrives drives{DriveMap(c, {{'D', d}})};
  OfflineFiles files{drives};
  OfflineRegistry registry{clock, files, log};
  HiveFile hive{HostPlace::Anywhere(MakeHiveFile(temp / "disk/c/NTUSER.DAT")), HiveMode::Write, state, log};
  bool mounted = (registry.Mount({RegistryRoot::CurrentUser, ""}, hive), true);
};

TEST_F(FolderMemoryTest, AChoiceIsRememberedForItsDiskAndProfile) {
  EXPECT_FALSE(Memory().IsChosen(OnZ(home)));
  Memory().Choose(OnZ(home));
  EXPECT_TRUE(Memory().IsChosen(OnZ(home)));
  EXPECT_TRUE(Memory().IsChosen(WinPath(OnZ(temp / "HOME").Text() + "/x/../backup\\"))) << "under any of its names";
  EXPECT_FALSE(Memory("Bob").IsChosen(OnZ(home)));
  EXPECT_FALSE(Memory().IsChosen(OnZ(temp / "home")));
  EXPECT_FALSE(FolderMemory(state, {d, "Ann"}, drives, registry).IsChosen(OnZ(home)));
  std::filesystem::create_directory_symlink(c, temp / "link");
  EXPECT_TRUE(FolderMemory(state, {temp / "link", "Ann"}, drives, registry).IsChosen(OnZ(home)));

  Memory().Choose(OnZ(temp / "home"));
  EXPECT_FALSE(Memory().IsChosen(OnZ(home))) << "another was chosen since";
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
  temp.Folder("home/a\nfolder x%");
  const WinPath odd = OnZ(temp / "home").Join(WindowsName("a\nfolder x%"));
  Memory().Choose(odd);
  const auto folder = state / "backup-folders";
  struct stat info = {};
  ASSERT_EQ(stat(folder.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700U);
  ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
  const auto file = std::filesystem::directory_iterator(folder)->path();
  const std::string text = temp.Read(file.lexically_relative(temp.Path()).string());
  EXPECT_EQ(text, "Quillbox backup folder 1\ndisk " + c.string() + "\nprofile Ann\nfolder " +
                      (temp / "home/a%0Afolder x%25").string() + "\nidentity {A}\n");
  EXPECT_TRUE(Memory().IsChosen(odd));
  for (const std::string& damaged : {text.substr(0, text.size() / 2), "more\n" + text, std::string()}) {
    std::ofstream(file) << damaged;
    EXPECT_FALSE(Memory().IsChosen(odd)) << damaged;
  }
}

TEST_F(FolderMemoryTest, AChoiceThatCannotBeWrittenHoldsForTheRun) {
  temp.File("state/backup-folders", "in the way");
  FolderMemory memory = Memory();
  EXPECT_THROW(memory.Choose(OnZ(home)), Error);
  EXPECT_TRUE(memory.IsChosen(OnZ(home)));
  EXPECT_FALSE(Memory().IsChosen(OnZ(home)));
}

TEST_F(FolderMemoryTest, SystemFoldersAndTheDisksOwnAreNobodysChoice) {
  for (const auto& fine : {home, home / "not/there/yet", temp / "disk"}) EXPECT_EQ(FaultOf(fine), std::nullopt) << fine;
  std::filesystem::create_directory_symlink("/proc/self", temp / "home/status");
  const std::string status = (temp / "home/status/fd").string();
  for (const std::string& system :
       {status, std::string("/PROC/self/fd"), std::string("/sys/kernel/new"), std::string("/tmp/../dev")}) {
    EXPECT_EQ(FaultOf(system), FolderFault::SystemFolder) << system;
  }
  for (const auto& own : {c, d / "Mail"}) EXPECT_EQ(FaultOf(own), FolderFault::OfTheSystem) << own;
  EXPECT_EQ(Memory().FaultOf(WinPath(std::string("Z:\\a\0b", 6))), FolderFault::NoSuchPlace);
}

}  // namespace
}  // namespace quillbox
