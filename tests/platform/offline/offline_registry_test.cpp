// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/offline_registry.h"

#include "platform/offline/offline_fixture.h"

namespace quillbox {
namespace {

using namespace std::string_literals;

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
  Key Make(const RegistryPath& path) {
    OpenResult result = registry.Create(path);
    EXPECT_EQ(result.status, Status::Success);
    return std::move(result.key);
  }
  Status Set(const Key& key, std::string_view name, const std::string& data, ValueType type = ValueType::Sz) {
    return registry.SetValue(key, name, type, Bytes(data.begin(), data.end()));
  }
  HiveFile user_ = NewHive("user/NTUSER.DAT");
  HiveFile software_ = NewHive("config/software");
  HiveFile system_ = NewHive("config/system");
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
  EXPECT_EQ(registry.Create(User(std::string(256, 'x'))).status, Status::InvalidParameter);
}

TEST_F(OfflineRegistryTest, TheCurrentControlSetIsTheSelectedOne) {
  const Key select = Make(Machine("System\\Select"));
  Make(Machine("System\\ControlSet003\\Control\\Nls"));
  EXPECT_EQ(Exists(Machine("System\\CurrentControlSet")), Status::FileNotFound);
  Set(select, "Current", "\3\0\0\0"s, ValueType::Dword);
  EXPECT_EQ(Exists(Machine("System\\currentcontrolset\\Control\\Nls")), Status::Success);
  EXPECT_EQ(Exists(Machine("Software\\CurrentControlSet")), Status::FileNotFound);

  // From key to key, too.
  Key key = registry.Open(Machine(""), Access::Read).key;
  for (const char* name : {"SYSTEM", "CurrentControlSet", "Control", "Nls"}) {
    OpenResult next = registry.OpenSubkey(key, name, Access::Read);
    ASSERT_EQ(next.status, Status::Success) << name;
    key = std::move(next.key);
  }
}

TEST_F(OfflineRegistryTest, WhatAnotherProgramWroteIsSeenThroughOpenKeys) {
  const Key kept = Make(User("a\\kept"));
  const Key gone = Make(User("a\\gone"));
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
  Make(User("new"));
  Make(Machine("Software\\new"));
  MakeHiveFile(disk / "user/NTUSER.DAT", "by another program");
  EXPECT_THROW(registry.Commit(), Error);
  EXPECT_EQ(RootValue(Open("user/NTUSER.DAT")), "by another program");
  const HiveFile software = Open("config/software", HiveMode::Read);
  EXPECT_FALSE(software.View().Find(software.View().Root(), "new"));
}

TEST_F(OfflineRegistryTest, ARestoreFromAFileThatIsNoHiveChangesNothing) {
  disk.File("bad.dat", "regf and nothing more");
  std::filesystem::resize_file(disk.File("big.dat", "regf"), (std::uintmax_t{1} << 31) + 1);
  registry.EnablePrivilege("SeRestorePrivilege");
  const Key key = Make(User("k"));
  Make(User("k\\sub"));
  EXPECT_EQ(registry.RestoreKey(key, WinPath("C:\\bad.dat"), 8), Status::BadRegistry);
  EXPECT_EQ(registry.RestoreKey(key, WinPath("C:\\big.dat"), 8), Status::RegistryIo);
  EXPECT_EQ(registry.WhyRefused(), "it is larger than 2 GB, and no hive has more");
  EXPECT_EQ(registry.Info(key).subkeys, 1u);
  EXPECT_EQ(Exists(User("k")), Status::Success);
  EXPECT_EQ(registry.WhyRefused(), std::nullopt);
  EXPECT_THAT(FaultOf([&] { Open("big.dat", HiveMode::Read); }),
              HasSubstr("big.dat: it is larger than 2 GB, and no hive or log has more"));
}

}  // namespace
}  // namespace quillbox
