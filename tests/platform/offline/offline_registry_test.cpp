#include "platform/offline/offline_registry.h"

#include <gmock/gmock.h>

#include "platform/offline/offline_fixture.h"
#include "text/error.h"

namespace quillbox {
namespace {

class OfflineRegistryTest : public testing::Test, protected OfflineFixture {
 protected:
  OfflineRegistryTest() {
    registry.Mount({RegistryRoot::CurrentUser, ""}, user_);
    registry.Mount({RegistryRoot::LocalMachine, "Software"}, software_);
    registry.Mount({RegistryRoot::LocalMachine, "System"}, system_);
  }
  static RegistryPath User(std::string subkey) { return {RegistryRoot::CurrentUser, std::move(subkey)}; }
  static RegistryPath Machine(std::string subkey) { return {RegistryRoot::LocalMachine, std::move(subkey)}; }
  Status Exists(const RegistryPath& path) { return registry.Open(path, Access::Read).status; }

  HiveFile user_{HostPlace::Anywhere(MakeHiveFile(disk / "user/NTUSER.DAT")), HiveMode::Write, disk / "state", log};
  HiveFile software_{HostPlace::Anywhere(MakeHiveFile(disk / "config/software")), HiveMode::Write, disk / "state", log};
  HiveFile system_{HostPlace::Anywhere(MakeHiveFile(disk / "config/system")), HiveMode::Write, disk / "state", log};
};

TEST_F(OfflineRegistryTest, TheMachineRootShowsItsHives) {
  const Key root = registry.Open(Machine(""), Access::Read).key;
  EXPECT_EQ(registry.Info(root).subkeys, 2u);
  EXPECT_EQ(registry.EnumKey(root, 1).name, "System");
  EXPECT_EQ(registry.EnumKey(root, 2).status, Status::NoMoreItems);
  EXPECT_EQ(registry.EnumValue(root, 0).status, Status::NoMoreItems);
  EXPECT_EQ(registry.Query(root, "", std::nullopt).status, Status::FileNotFound);
  EXPECT_EQ(registry.Open(Machine(""), Access::Full).status, Status::AccessDenied);
  EXPECT_EQ(registry.Create(Machine("Other")).status, Status::AccessDenied);
  for (const char* hive : {"", "Software"}) EXPECT_EQ(registry.DeleteTree(Machine(hive)), Status::AccessDenied);
  EXPECT_EQ(Exists(Machine("SOFTWARE")), Status::Success);
  EXPECT_EQ(Exists(Machine("Softwar")), Status::FileNotFound);
  EXPECT_EQ(Exists({RegistryRoot::Users, ""}), Status::FileNotFound);
}

TEST_F(OfflineRegistryTest, TheCurrentControlSetIsTheSelectedOne) {
  const Key select = registry.Create(Machine("System\\Select")).key;
  registry.Create(Machine("System\\ControlSet003\\Control\\Nls"));
  EXPECT_EQ(Exists(Machine("System\\CurrentControlSet")), Status::FileNotFound);
  registry.SetValue(select, "Current", ValueType::Dword, Bytes{3, 0, 0, 0});
  EXPECT_EQ(Exists(Machine("System\\currentcontrolset\\Control\\Nls")), Status::Success);
  EXPECT_EQ(Exists(Machine("Software\\CurrentControlSet")), Status::FileNotFound);
}

TEST_F(OfflineRegistryTest, WhatAnotherProgramWroteIsSeenThroughOpenKeys) {
  const Key kept = registry.Create(User("a\\kept")).key;
  const Key gone = registry.Create(User("a\\gone")).key;
  registry.Commit();
  HiveFile other = Open("user/NTUSER.DAT");
  other.Edit().DeleteTree(*other.View().Find(other.View().Root(), "a\\gone"));
  other.Edit().SetValue(*other.View().Find(other.View().Root(), "a\\kept"), "n", 4, Bytes{1, 0, 0, 0});
  other.Commit(kTestTime + 1);
  registry.Reload();
  EXPECT_EQ(registry.Query(kept, "n", std::nullopt).size, 4u);
  EXPECT_EQ(registry.Info(gone).status, Status::KeyDeleted);
}

TEST_F(OfflineRegistryTest, OneHiveThatFailsKeepsTheOthersOfTheCommandBack) {
  registry.Create(User("new"));
  registry.Create(Machine("Software\\new"));
  MakeHiveFile(disk / "user/NTUSER.DAT", "by another program");
  EXPECT_THROW(registry.Commit(), Error);
  const HiveFile software = Open("config/software", HiveMode::Read);
  EXPECT_FALSE(software.View().Find(software.View().Root(), "new"));
}

TEST_F(OfflineRegistryTest, ARestoreFromADamagedFileChangesNothing) {
  disk.File("bad.dat", "regf and nothing more");
  registry.EnablePrivilege("SeRestorePrivilege");
  const Key key = registry.Create(User("k")).key;
  registry.Create(User("k\\sub"));
  EXPECT_EQ(registry.RestoreKey(key, WinPath("C:\\bad.dat"), 8), Status::BadRegistry);
  EXPECT_EQ(registry.Info(key).subkeys, 1u);
  EXPECT_THAT(log.Text(), testing::HasSubstr("bad.dat"));
}

TEST_F(OfflineRegistryTest, AFileThatIsLargerThanAnyHiveIsNotRead) {
  std::filesystem::resize_file(disk.File("big.dat", "regf"), (std::uintmax_t{1} << 31) + 1);
  registry.EnablePrivilege("SeRestorePrivilege");
  const Key key = registry.Create(User("k")).key;
  EXPECT_EQ(registry.RestoreKey(key, WinPath("C:\\big.dat"), 8), Status::RegistryIo);
  EXPECT_EQ(registry.WhyRefused(), "it is larger than 2 GB, and no hive has more");
  EXPECT_EQ(registry.Open(User("k"), Access::Read).status, Status::Success);
  EXPECT_EQ(registry.WhyRefused(), std::nullopt);
  EXPECT_THAT(FaultOf([&] { Open("big.dat", HiveMode::Read); }),
              testing::HasSubstr("big.dat: it is larger than 2 GB, and no hive or log has more"));
}

}  // namespace
}  // namespace quillbox
