#include "core/registry_store.h"

#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

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
  void SetProductName(const char* subkey, const char* name) {
    const RegistryPath path{RegistryRoot::LocalMachine, subkey};
    Store().CreateKey(path);
    Store().SetKeyValue2(subkey, "ProductName", name, ValueType::Sz);
  }
  Key key;
};

TEST_F(RegistryStoreTest, ReadsEachTypeAsItsKindOfValue) {
  Put("cut", ValueType::Sz, std::string("abc\0def\0", 8));
  Put("zero", ValueType::Sz, "");
  Put("expand", ValueType::ExpandSz, std::string("%Temp%\\x\0", 9));
  Put("all", ValueType::Dword, "\xFF\xFF\xFF\xFF");
  Put("short", ValueType::Dword, std::string("\x05\x01", 2));
  Put("long", ValueType::Dword, std::string("\1\0\0\0\0\0\0\0", 8));
  Put("bytes", ValueType::Binary, std::string("\0\x81", 2));
  Put("none", ValueType::Binary, "");
  Put("multi", ValueType::MultiSz, std::string("a\0\0", 3));

  EXPECT_EQ(Get("cut"), RegValue("abc"));
  EXPECT_EQ(Get("zero"), RegValue(""));
  EXPECT_EQ(Get("expand"), RegValue("%Temp%\\x"));
  EXPECT_TRUE(Get("expand", ExpandableText::Ignore).IsEmpty());
  EXPECT_EQ(Get("all"), RegValue(-1));
  EXPECT_EQ(Get("short"), RegValue(0x105));
  EXPECT_TRUE(Get("long").IsEmpty());
  EXPECT_EQ(Get("bytes"), RegValue(Bytes{0x00, 0x81}));
  EXPECT_TRUE(Get("none").IsEmpty());
  EXPECT_TRUE(Get("multi").IsEmpty());
  EXPECT_TRUE(Get("missing").IsEmpty());
  EXPECT_EQ(Get("all").AsText(), "-1");
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

TEST_F(RegistryStoreTest, OsCodeFollowsTheLastTestThatMatches) {
  const auto detect = [&] {
    Store().DetectOsCode();
    return Store().GetOsCode();
  };
  const char* windowsKey = "Software\\Microsoft\\Windows\\CurrentVersion";
  const char* ntKey = "Software\\Microsoft\\Windows NT\\CurrentVersion";
  EXPECT_EQ(detect(), OsCode::XP);
  SetProductName(windowsKey, "Microsoft Windows 98");
  EXPECT_EQ(detect(), OsCode::XP);
  SetProductName(ntKey, "Microsoft Windows 2000");
  EXPECT_EQ(detect(), OsCode::W2K);
  SetProductName(ntKey, "Windows 7 Professional");
  EXPECT_EQ(detect(), OsCode::NT);
  Store().DeleteKey({RegistryRoot::LocalMachine, ntKey});
  EXPECT_EQ(detect(), OsCode::SE);
  Store().DeleteKey({RegistryRoot::LocalMachine, windowsKey});
  EXPECT_EQ(detect(), OsCode::SE);
}

TEST_F(RegistryStoreTest, CommandLinesOfTheRegistryEditor) {
  platform->processes.forward = false;
  Store().RegExport("HKEY_CURRENT_USER\\A", WinPath("a.reg"));
  EXPECT_TRUE(platform->processes.commandLines.empty());
  Store().DetectOsCode();
  Store().RegExport("HKEY_CURRENT_USER\\Identities\\", WinPath("AllIdentities.reg"));
  Store().RegExport("HKEY_CURRENT_USER\\Identities\\{1}", WinPath("D:\\b\\c.reg"), KeyForm::Plain);
  Store().RegExport("HKEY_CURRENT_USER\\Identities\\{1}", WinPath("c.reg"), KeyForm::PlainAfterOneBlank);
  Store().RegMerge(WinPath("D:\\Back up\\c.reg"));
  EXPECT_THAT(platform->processes.commandLines,
              ::testing::ElementsAre("regedit /s /e:A \"AllIdentities.reg\"  \"HKEY_CURRENT_USER\\Identities\\\"",
                                     "regedit /s /e:A \"D:\\b\\c.reg\"  HKEY_CURRENT_USER\\Identities\\{1}",
                                     "regedit /s /e:A \"c.reg\" HKEY_CURRENT_USER\\Identities\\{1}",
                                     "regedit /s /c \"D:\\Back up\\c.reg"));
}

TEST_F(RegistryStoreTest, AKeySavedAsAHiveComesBack) {
  const WinPath file("D:\\key.hiv");
  Store().SetValueEx(key, "kept", ValueType::Sz, "yes");
  temp.File("disk/D/key.hiv", "an older file");
  Store().SaveKey(CurrentUser(kTestKey), file);
  Store().SetValueEx(key, "kept", ValueType::Sz, "changed");
  Store().SetValueEx(key, "new", ValueType::Sz, "gone afterwards");
  Store().RestoreKey(CurrentUser(kTestKey), file);
  EXPECT_EQ(Get("kept"), RegValue("yes"));
  EXPECT_TRUE(Get("new").IsEmpty());

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
