#include "core/registry_store.h"

#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

using namespace std::string_literals;

constexpr const char* kTestKey = "Software\\Test";

class RegistryStoreTest : public SamplePlatform {
 protected:
  void SetUp() override {
    MakeDisk();
    key = Store().CreateKey(CurrentUser(kTestKey));
  }
  void Put(const char* name, ValueType type, const std::string& bytes) {
    const Bytes data(bytes.begin(), bytes.end());
    ASSERT_EQ(platform->GetRegistry().SetValue(key, name, type, data), Status::Success);
  }
  RegValue Get(const char* name, ExpandableText expandable = ExpandableText::Read) {
    return Store().RegistryGetKeyValue(CurrentUser(kTestKey), name, expandable);
  }
  Key key;
};

TEST_F(RegistryStoreTest, ReadsEachTypeAsItsKindOfValue) {
  const struct {
    ValueType type;
    std::string bytes;
    RegValue read;
  } rows[] = {{ValueType::Sz, "abc\0def\0"s, "abc"},
              {ValueType::Sz, "", ""},
              {ValueType::ExpandSz, "%Temp%\\x\0"s, "%Temp%\\x"},
              {ValueType::Dword, "\xFF\xFF\xFF\xFF", -1},
              {ValueType::Dword, "\x05\x01", 0x105},
              {ValueType::Dword, "\1\0\0\0\0\0\0\0"s, {}},
              {ValueType::Binary, "\0\x81"s, Bytes{0x00, 0x81}},
              {ValueType::Binary, "", {}},
              {ValueType::MultiSz, "a\0\0"s, {}}};
  for (const auto& [type, bytes, read] : rows) {
    Put("v", type, bytes);
    EXPECT_EQ(Get("v"), read) << static_cast<unsigned>(type) << " " << bytes;
  }
  Put("v", ValueType::ExpandSz, "%Temp%");
  EXPECT_TRUE(Get("v", ExpandableText::Ignore).IsEmpty());
  EXPECT_TRUE(Get("missing").IsEmpty());
  EXPECT_EQ(RegValue(-1).AsText(), "-1");
}

TEST_F(RegistryStoreTest, ProbesTellMissingEmptyAndHeldData) {
  Put("empty", ValueType::Sz, "");
  Put("full", ValueType::Sz, "x");
  const RegistryPath path = CurrentUser(kTestKey);
  EXPECT_EQ(Store().ProbeValue(path, "full"), Status::MoreData);
  EXPECT_EQ(Store().ProbeValue(path, "empty"), Status::Success);
  EXPECT_EQ(Store().ProbeValue(path, "missing"), Status::FileNotFound);
  EXPECT_EQ(Store().ProbeValue(CurrentUser("Software\\Nothing"), "x"), Status::FileNotFound);
}

TEST_F(RegistryStoreTest, WhatIsWrittenReadsBack) {
  const std::string longText = std::string(5000, 'x') + "ü.";
  EXPECT_EQ(Store().SetValueEx(key, "text", ValueType::ExpandSz, longText), Status::Success);
  EXPECT_EQ(Store().ReadStringValue(CurrentUser(kTestKey), "text"), longText);
  EXPECT_EQ(Store().SetValueEx(key, "number", ValueType::Dword, "1"), Status::Success);
  EXPECT_EQ(Get("number"), RegValue(1));
  EXPECT_EQ(Store().SetValueEx(key, "number", ValueType::Dword, "one"), Status::InvalidParameter);
  EXPECT_EQ(Get("number"), RegValue(1));
  EXPECT_EQ(Store().SetValueEx(key, "bytes", ValueType::Binary, Bytes{1}), Status::Success);
  EXPECT_TRUE(Get("bytes").IsEmpty());

  Store().SetKeyValue("Software\\Nothing", "x", "y", ValueType::Sz);
  EXPECT_EQ(Store().OpenKey(CurrentUser("Software\\Nothing")).status, Status::FileNotFound);
  EXPECT_THAT(platform->log.lines, ::testing::Contains(::testing::HasSubstr("Software\\Nothing")));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(RegistryStoreTest, OfTwoProductNamesTheOneOfWindowsNtCountsAndWithoutAnyTheLastKnown) {
  const RegistryPath windows{RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion"};
  Store().CreateKey(windows);
  Store().SetKeyValue2(windows.subkey, "ProductName", "Microsoft Windows 98", ValueType::Sz);
  Store().DetectOsCode();
  EXPECT_EQ(Store().GetOsCode(), OsCode::XP);
  Store().DeleteKey(windows);
  Store().DeleteKey({RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion"});
  Store().DetectOsCode();
  EXPECT_EQ(Store().GetOsCode(), OsCode::XP);
}

TEST_F(RegistryStoreTest, AKeySavedAsAHiveReplacesAnOlderFile) {
  const WinPath file("D:\\key.hiv");
  temp.File("disk/D/key.hiv", "an older file");
  Store().SaveKey(CurrentUser(kTestKey), file);
  EXPECT_TRUE(temp.Read("disk/D/key.hiv").starts_with("regf"));
  Store().SaveKey(CurrentUser("Software\\Nothing"), file);
  EXPECT_FALSE(std::filesystem::exists(sample.driveD / "key.hiv"));
}

TEST_F(RegistryStoreTest, FoldersAndFilesAreSeenAsWindowsSeesThem) {
  FileSystem& files = platform->GetFiles();
  for (const char* folder : {"C:\\Windows", "c:\\windows\\", "D:\\"})
    EXPECT_TRUE(DirExists(files, WinPath(folder))) << folder;
  for (const char* folder : {"C:\\Windows\\nothing", "Q:\\", "C:\\WINDOWS\\system32\\config\\system"}) {
    EXPECT_FALSE(DirExists(files, WinPath(folder))) << folder;
  }
  EXPECT_EQ(FileList(files, WinPath("C:\\WINDOWS\\*.dbx")), std::vector<std::string>{""});
}

}  // namespace
}  // namespace quillbox
