#include "platform/offline/offline_registry.h"

#include <array>

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
  /// The value's data, or its status as "status 2".
  std::string Get(const Key& key, std::string_view name) {
    std::vector<std::uint8_t> buffer(registry.Query(key, name, std::nullopt).size);
    const QueryResult result = registry.Query(key, name, buffer);
    if (result.status != Status::Success) return "status " + std::to_string(static_cast<int>(result.status));
    return {buffer.begin(), buffer.end()};
  }

  HiveFile user_ = NewHive("user/NTUSER.DAT");
  HiveFile software_ = NewHive("config/software");
  HiveFile system_ = NewHive("config/system");
};

TEST_F(OfflineRegistryTest, MakesParentsAndFindsKeysInAnyCase) {
  Make(User("One\\Zwei\\Trois"));
  EXPECT_EQ(Exists(User("ONE\\zwei\\")), Status::Success);
  EXPECT_EQ(Exists(User("One\\Zw")), Status::FileNotFound);
  EXPECT_EQ(registry.Open(User("none"), Access::SetValue).status, Status::FileNotFound);
  EXPECT_EQ(registry.Create(User(std::string(256, 'x'))).status, Status::InvalidParameter);
}

TEST_F(OfflineRegistryTest, AccessIsWhatTheKeyWasOpenedWith) {
  const Key read = registry.Open(User(""), Access::Read).key;
  const Key write = registry.Open(User(""), Access::SetValue).key;
  EXPECT_EQ(Set(read, "v", "x"), Status::AccessDenied);
  EXPECT_EQ(registry.DeleteValue(read, "v"), Status::AccessDenied);
  EXPECT_EQ(Set(write, "v", "x"), Status::Success);
  EXPECT_EQ(Get(write, "v"), "status 5");
  EXPECT_EQ(registry.EnumKey(write, 0).status, Status::AccessDenied);
  EXPECT_EQ(Get(read, "v"), "x");
  const Key none;
  EXPECT_EQ(Get(none, "v"), "status 6");
  EXPECT_EQ(Set(none, "v", "x"), Status::InvalidHandle);
  EXPECT_EQ(registry.Info(none).status, Status::InvalidHandle);
}

TEST_F(OfflineRegistryTest, QueryAnswersByTheBuffer) {
  const Key key = Make(User("k"));
  Set(key, "abc", "abc\0"s);
  std::array<std::uint8_t, 8> buffer = {};
  EXPECT_EQ(registry.Query(key, "abc", std::span(buffer).first(3)).status, Status::MoreData);
  EXPECT_EQ(registry.Query(key, "abc", std::span(buffer).first(3)).size, 4u);
  EXPECT_EQ(registry.Query(key, "ABC", buffer).status, Status::Success);
  EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 4), "abc\0"s);
  EXPECT_EQ(registry.Query(key, "", buffer).status, Status::FileNotFound);
  EXPECT_EQ(registry.Query(key, "abc", std::nullopt).status, Status::Success);
  EXPECT_EQ(registry.Query(key, "abc", std::nullopt).type, ValueType::Sz);
}

TEST_F(OfflineRegistryTest, DataOfEveryTypeComesBackAsWritten) {
  const Key key = Make(User("k"));
  const std::vector<std::pair<ValueType, std::string>> values = {
      {ValueType::Sz, "Gr\u00FC\u00DFe \u4F60 \U0001F600\0after"s},
      {ValueType::ExpandSz, "%A%."},
      {ValueType::MultiSz, "one\0two\0\0"s},
      {ValueType::Binary, "\xFF\x00\x80"s},
      {ValueType::Dword, "\x01\x02\x03\x04"},
      {ValueType::None, "odd"},
      {static_cast<ValueType>(0x12345), "?"},
      {ValueType::Binary, std::string(100'000, '\xA5')},
      {ValueType::Sz, std::string(40'000, 'z')}};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string name = i == 0 ? "" : "v" + std::to_string(i);
    ASSERT_EQ(Set(key, name, values[i].second, values[i].first), Status::Success) << i;
  }
  std::uint32_t i = 0;
  for (; i < values.size(); ++i) {
    const ValueResult value = registry.EnumValue(key, i);
    EXPECT_EQ(value.type, values[i].first);
    EXPECT_EQ(std::string(value.data.begin(), value.data.end()), values[i].second) << i;
    EXPECT_EQ(Get(key, value.name), values[i].second) << i;
  }
  EXPECT_EQ(registry.EnumValue(key, i).status, Status::NoMoreItems);
  EXPECT_EQ(registry.DeleteValue(key, "V1"), Status::Success);
  EXPECT_EQ(registry.DeleteValue(key, "v1"), Status::FileNotFound);
  EXPECT_EQ(registry.Info(key).values, values.size() - 1);
}

TEST_F(OfflineRegistryTest, StoredBytesAreUtf16AndSurvive) {
  const Key key = Make(User("k"));
  Set(key, "text", "\u00E9\0"s);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data, (Bytes{0xE9, 0, 0, 0}));
  const Bytes odd = {'a', 0, 0x00, 0xD8, 'b'};  // a surrogate without its partner, and half a character
  ASSERT_EQ(registry.SetStoredValue(key, "text", ValueType::Sz, odd), Status::Success);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data, odd);
  EXPECT_EQ(Get(key, "text"), "a\xED\xA0\x80");
}

TEST_F(OfflineRegistryTest, AKeyDeletedWhileOpenStaysDeleted) {
  const Key open = Make(User("k\\a\\b"));
  const Key neighbour = Make(User("k\\ab"));
  ASSERT_EQ(registry.DeleteTree(User("K\\A")), Status::Success);
  EXPECT_EQ(registry.DeleteTree(User("k\\a")), Status::FileNotFound);
  Make(User("k\\a\\b"));
  EXPECT_EQ(Get(open, "v"), "status 1018");
  EXPECT_EQ(Set(open, "v", "x"), Status::KeyDeleted);
  EXPECT_EQ(registry.Info(open).status, Status::KeyDeleted);
  EXPECT_EQ(Set(neighbour, "v", "x"), Status::Success);
}

TEST_F(OfflineRegistryTest, KeysAreSavedOnceAndRestoredOverOpenOnesWhenForced) {
  const WinPath file("C:\\saved.dat");
  const Key key = Make(User("from"));
  Make(User("from\\sub"));
  EXPECT_EQ(registry.SaveKey(key, file), Status::AccessDenied);
  ASSERT_TRUE(registry.EnablePrivilege("SeBackupPrivilege"));
  EXPECT_EQ(registry.SaveKey(key, file), Status::Success);
  EXPECT_EQ(registry.SaveKey(key, file), Status::FileExists);

  const Key target = Make(User("to"));
  const Key below = Make(User("to\\old"));
  EXPECT_EQ(registry.RestoreKey(target, file, 8), Status::AccessDenied);
  ASSERT_TRUE(registry.EnablePrivilege("SeRestorePrivilege"));
  EXPECT_EQ(registry.RestoreKey(target, WinPath("C:\\none"), 8), Status::FileNotFound);
  EXPECT_EQ(registry.RestoreKey(target, file, 0), Status::AccessDenied) << "a key below is open";
  ASSERT_EQ(registry.RestoreKey(target, file, 8), Status::Success);
  EXPECT_EQ(registry.Info(below).status, Status::KeyDeleted);
  EXPECT_EQ(Exists(User("to\\sub")), Status::Success);
  EXPECT_EQ(registry.Info(target).subkeys, 1u);
  EXPECT_FALSE(registry.EnablePrivilege("SeNoSuchPrivilege"));
}

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
  const Key select = Make(Machine("System\\Select"));
  Make(Machine("System\\ControlSet003\\Control\\Nls"));
  EXPECT_EQ(Exists(Machine("System\\CurrentControlSet")), Status::FileNotFound);
  Set(select, "Current", "\3\0\0\0"s, ValueType::Dword);
  EXPECT_EQ(Exists(Machine("System\\currentcontrolset\\Control\\Nls")), Status::Success);
  EXPECT_EQ(Exists(Machine("Software\\CurrentControlSet")), Status::FileNotFound);
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
