#include "platform/registry_contract.h"

#include <algorithm>
#include <array>
#include <vector>

namespace quillbox {

using namespace std::string_literals;

RegistryContract::RegistryContract() : system(GetParam()()), registry(system->GetRegistry()), base(system->Base()) {}

Key RegistryContract::Make(const RegistryPath& path) {
  OpenResult result = registry.Create(path);
  EXPECT_EQ(result.status, Status::Success);
  return std::move(result.key);
}

Status RegistryContract::Set(const Key& key, std::string_view name, ValueType type, const std::string& data) {
  return registry.SetValue(key, name, type, Bytes(data.begin(), data.end()));
}

std::string RegistryContract::Get(const Key& key, std::string_view name) {
  std::vector<std::uint8_t> buffer(registry.Query(key, name, std::nullopt).size);
  const QueryResult result = registry.Query(key, name, buffer);
  if (result.status != Status::Success) return "status " + std::to_string(static_cast<int>(result.status));
  return {buffer.begin(), buffer.end()};
}

TEST_P(RegistryContract, MakesParentsAndFindsKeysInAnyCase) {
  EXPECT_EQ(Exists(base), Status::FileNotFound);
  Make(base.Child("One\\Zwei\\Trois"));
  EXPECT_EQ(Exists(base.Child("ONE\\zwei\\")), Status::Success);
  EXPECT_EQ(Exists(base.Child("One\\Zw")), Status::FileNotFound);
  EXPECT_EQ(registry.Open(base.Child("none"), Access::SetValue).status, Status::FileNotFound);
  EXPECT_EQ(registry.Create(base.Child(std::string(256, 'x'))).status, Status::InvalidParameter);
}

TEST_P(RegistryContract, AccessIsWhatTheKeyWasOpenedWith) {
  Make(base);
  const Key read = registry.Open(base, Access::Read).key;
  const Key write = registry.Open(base, Access::SetValue).key;
  EXPECT_EQ(Set(read, "v", ValueType::Sz, "x"), Status::AccessDenied);
  EXPECT_EQ(registry.DeleteValue(read, "v"), Status::AccessDenied);
  EXPECT_EQ(Set(write, "v", ValueType::Sz, "x"), Status::Success);
  EXPECT_EQ(Get(write, "v"), "status 5");
  EXPECT_EQ(registry.EnumKey(write, 0).status, Status::AccessDenied);
  EXPECT_EQ(Get(read, "v"), "x");
  const Key none;
  EXPECT_EQ(Get(none, "v"), "status 6");
  EXPECT_EQ(Set(none, "v", ValueType::Sz, "x"), Status::InvalidHandle);
  EXPECT_EQ(registry.Info(none).status, Status::InvalidHandle);
}

TEST_P(RegistryContract, QueryAnswersByTheBuffer) {
  const Key key = Make(base);
  Set(key, "abc", ValueType::Sz, "abc\0"s);
  Set(key, "empty", ValueType::Sz, "");
  std::array<std::uint8_t, 8> buffer = {};
  const auto query = [&](std::string_view name, std::size_t size) {
    return registry.Query(key, name, std::span(buffer).first(size));
  };
  EXPECT_EQ(query("abc", 0).status, Status::MoreData);
  EXPECT_EQ(query("abc", 3).status, Status::MoreData);
  EXPECT_EQ(query("abc", 3).size, 4u);
  EXPECT_EQ(query("ABC", 8).status, Status::Success);
  EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 4), "abc\0"s);
  EXPECT_EQ(query("empty", 0).status, Status::Success);
  EXPECT_EQ(query("none", 0).status, Status::FileNotFound);
  EXPECT_EQ(query("", 8).status, Status::FileNotFound);
  EXPECT_EQ(registry.Query(key, "abc", std::nullopt).status, Status::Success);
  EXPECT_EQ(registry.Query(key, "abc", std::nullopt).type, ValueType::Sz);
}

TEST_P(RegistryContract, DataOfEveryTypeComesBackAsWritten) {
  const Key key = Make(base);
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
    ASSERT_EQ(Set(key, name, values[i].first, values[i].second), Status::Success) << i;
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

TEST_P(RegistryContract, StoredBytesAreUtf16AndSurvive) {
  const Key key = Make(base);
  Set(key, "text", ValueType::Sz, "\u00E9\0"s);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data, (Bytes{0xE9, 0, 0, 0}));
  const Bytes odd = {'a', 0, 0x00, 0xD8, 'b'};  // a surrogate without its partner, and half a character
  ASSERT_EQ(registry.SetStoredValue(key, "text", ValueType::Sz, odd), Status::Success);
  EXPECT_EQ(registry.EnumStoredValue(key, 0).data, odd);
  EXPECT_EQ(Get(key, "text"), "a\xED\xA0\x80");
}

TEST_P(RegistryContract, EnumerationIsByUpperCasedName) {
  const Key key = Make(base);
  for (const char* name : {"b", "C", "a", "\u00E4hnlich"}) Make(base.Child(name));
  std::vector<std::string> names;
  for (std::uint32_t i = 0; registry.EnumKey(key, i).status == Status::Success; ++i) {
    names.push_back(registry.EnumKey(key, i).name);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"a", "b", "C", "\u00E4hnlich"}));
  EXPECT_EQ(registry.EnumKey(key, 4).status, Status::NoMoreItems);
  EXPECT_EQ(registry.Info(key).subkeys, 4u);
}

TEST_P(RegistryContract, AKeyDeletedWhileOpenStaysDeleted) {
  const Key parent = Make(base);
  const Key open = Make(base.Child("a\\b"));
  const Key neighbour = Make(base.Child("ab"));
  ASSERT_EQ(registry.DeleteTree(base.Child("A")), Status::Success);
  EXPECT_EQ(registry.DeleteTree(base.Child("A")), Status::FileNotFound);
  Make(base.Child("a\\b"));
  EXPECT_EQ(Get(open, "v"), "status 1018");
  EXPECT_EQ(Set(open, "v", ValueType::Sz, "x"), Status::KeyDeleted);
  EXPECT_EQ(registry.Info(open).status, Status::KeyDeleted);
  EXPECT_EQ(Set(neighbour, "v", ValueType::Sz, "x"), Status::Success);
  EXPECT_EQ(registry.Info(parent).subkeys, 2u);
}

TEST_P(RegistryContract, SavedKeysComeBackWithEverythingBelow) {
  const WinPath file = system->Folder().Join("saved.dat");
  const Key key = Make(base.Child("from"));
  Set(Make(base.Child("from\\sub")), "v", ValueType::ExpandSz, "x\0"s);
  EXPECT_EQ(registry.SaveKey(key, file), Status::AccessDenied);
  ASSERT_TRUE(registry.EnablePrivilege("SeBackupPrivilege"));
  EXPECT_EQ(registry.SaveKey(key, file), Status::Success);
  EXPECT_EQ(registry.SaveKey(key, file), Status::FileExists);

  const Key target = Make(base.Child("to"));
  const Key below = Make(base.Child("to\\old"));
  EXPECT_EQ(registry.RestoreKey(target, file, 8), Status::AccessDenied);
  ASSERT_TRUE(registry.EnablePrivilege("SeRestorePrivilege"));
  EXPECT_EQ(registry.RestoreKey(target, system->Folder().Join("none"), 8), Status::FileNotFound);
  EXPECT_EQ(registry.RestoreKey(target, file, 0), Status::AccessDenied) << "a key below is open";
  ASSERT_EQ(registry.RestoreKey(target, file, 8), Status::Success);
  EXPECT_EQ(Get(Make(base.Child("to\\sub")), "v"), "x\0"s);
  EXPECT_EQ(Exists(base.Child("to\\old")), Status::FileNotFound);
  EXPECT_EQ(registry.Info(below).status, Status::KeyDeleted);
  EXPECT_EQ(registry.Info(target).subkeys, 1u);
  EXPECT_FALSE(registry.EnablePrivilege("SeNoSuchPrivilege"));
}

}  // namespace quillbox
