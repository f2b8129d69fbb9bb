// SPDX-License-Identifier: GPL-3.0-or-later
// What every platform's registry promises. Written against Windows' own calls, whose answers it fixes for all others.
#include <gtest/gtest.h>

#include <array>

#include "platform/contract_world.h"
#include "support/host_tricks.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

using namespace std::string_literals;

class RegistryContract : public testing::Test {
 protected:
  RegistryPath Path(const std::string& subkey) const { return world_->key.Child(subkey); }
  Status Exists(const std::string& subkey) { return registry.Open(Path(subkey), Access::Read).status; }
  Key Make(const std::string& subkey) {
    OpenResult result = registry.Create(Path(subkey));
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

  ScriptedDialogs dialogs_;
  std::unique_ptr<ContractWorld> world_ = MakeContractWorld(dialogs_);
  Registry& registry = world_->GetPlatform().GetRegistry();
};

TEST_F(RegistryContract, MakesParentsAndFindsKeysInAnyCase) {
  Make("One\\Zwei\\Trois");
  EXPECT_EQ(Exists("ONE\\zwei\\"), Status::Success);
  EXPECT_EQ(Exists("One\\Zw"), Status::FileNotFound);
  EXPECT_EQ(registry.Open(Path("none"), Access::SetValue).status, Status::FileNotFound);
}

TEST_F(RegistryContract, OpensSubkeysAsByTheirPath) {
  Set(Make("One\\Zwei"), "v", "x");
  const Key one = registry.Open(Path("One"), Access::Read).key;
  EXPECT_EQ(Get(registry.OpenSubkey(one, "ZWEI", Access::Read).key, "v"), "x");
  EXPECT_EQ(registry.OpenSubkey(one, "Zw", Access::Read).status, Status::FileNotFound);
  const Key write = registry.OpenSubkey(one, "Zwei", Access::SetValue).key;
  EXPECT_EQ(Set(write, "v", "y"), Status::Success);
  EXPECT_EQ(Get(write, "v"), "status 5");
  EXPECT_EQ(registry.OpenSubkey(Key(), "Zwei", Access::Read).status, Status::InvalidHandle);
  ASSERT_EQ(registry.DeleteTree(Path("One")), Status::Success);
  EXPECT_EQ(registry.OpenSubkey(one, "Zwei", Access::Read).status, Status::KeyDeleted);
}

TEST_F(RegistryContract, AccessIsWhatTheKeyWasOpenedWith) {
  Make("k");
  const Key read = registry.Open(Path("k"), Access::Read).key;
  const Key write = registry.Open(Path("k"), Access::SetValue).key;
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

TEST_F(RegistryContract, QueryAnswersByTheBuffer) {
  const Key key = Make("k");
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

TEST_F(RegistryContract, DataOfEveryTypeComesBackAsWritten) {
  const Key key = Make("k");
  const std::vector<std::pair<ValueType, std::string>> values = {
      {ValueType::Sz, "Gr\u00FC\u00DFe \u4F60 \U0001F600\0after"s},
      {ValueType::ExpandSz, "%A%."},
      {ValueType::MultiSz, "one\0two\0\0"s},
      {ValueType::Binary, "\xFF\x00\x80"s},
      {ValueType::Dword, "\x01\x02\x03\x04"},
      {ValueType::None, "odd"},
      {static_cast<ValueType>(0x12345), "?"},
      {ValueType::Binary, ""},
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

TEST_F(RegistryContract, StoredBytesAreUtf16AndSurvive) {
  const Key key = Make("k");
  Set(key, "text", "\u00E9\0"s);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data, (Bytes{0xE9, 0, 0, 0}));
  const Bytes odd = {'a', 0, 0x00, 0xD8, 'b'};  // a surrogate without its partner, and half a character
  ASSERT_EQ(registry.SetStoredValue(key, "text", ValueType::Sz, odd), Status::Success);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data, odd);
  EXPECT_EQ(Get(key, "text"), "a\xED\xA0\x80");
  // What is behind the text in memory is not looked at.
  const Bytes behind = {'a', 0, 'b', 0, 0, 0};
  ASSERT_EQ(registry.SetStoredValue(key, "text", ValueType::Sz, ByteView(behind).first(4)), Status::Success);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data.size(), 4u);
}

TEST_F(RegistryContract, AKeyDeletedWhileOpenStaysDeleted) {
  const Key open = Make("k\\a\\b");
  const Key neighbour = Make("k\\ab");
  ASSERT_EQ(registry.DeleteTree(Path("K\\A")), Status::Success);
  EXPECT_EQ(registry.DeleteTree(Path("k\\a")), Status::FileNotFound);
  Make("k\\a\\b");
  EXPECT_EQ(Get(open, "v"), "status 1018");
  EXPECT_EQ(Set(open, "v", "x"), Status::KeyDeleted);
  EXPECT_EQ(registry.Info(open).status, Status::KeyDeleted);
  EXPECT_EQ(Set(neighbour, "v", "x"), Status::Success);
  EXPECT_EQ(registry.DeleteTree({RegistryRoot::CurrentUser, "\\"}), Status::AccessDenied);
  EXPECT_EQ(registry.DeleteTree({RegistryRoot::LocalMachine, "Software"}), Status::AccessDenied);
}

TEST_F(RegistryContract, KeysAreSavedOnceAndRestoredOverOpenOnesWhenForced) {
  NEEDS(Privileges);
  const WinPath file = world_->folder.Join("saved.dat");
  const Key key = Make("from");
  Make("from\\sub");
  EXPECT_EQ(registry.SaveKey(key, file), Status::PrivilegeNotHeld);
  ASSERT_TRUE(registry.EnablePrivilege("SeBackupPrivilege"));
  EXPECT_EQ(registry.SaveKey(key, file), Status::Success);
  EXPECT_EQ(registry.SaveKey(key, file), Status::FileExists);

  const Key target = Make("to");
  const Key below = Make("to\\old");
  EXPECT_EQ(registry.RestoreKey(target, file, 8), Status::PrivilegeNotHeld);
  ASSERT_TRUE(registry.EnablePrivilege("SeRestorePrivilege"));
  EXPECT_EQ(registry.RestoreKey(target, world_->folder.Join("none"), 8), Status::FileNotFound);
  EXPECT_EQ(registry.RestoreKey(target, file, 0), Status::AccessDenied) << "a key below is open";
  ASSERT_EQ(registry.RestoreKey(target, file, 8), Status::Success);
  EXPECT_EQ(registry.Info(below).status, Status::KeyDeleted);
  EXPECT_EQ(Exists("to\\sub"), Status::Success);
  EXPECT_EQ(registry.Info(target).subkeys, 1u);
  EXPECT_FALSE(registry.EnablePrivilege("SeNoSuchPrivilege"));
}

}  // namespace
}  // namespace quillbox
