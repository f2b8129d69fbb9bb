#include "identities/clone_identity.h"

#include "identities/clone_files.h"
#include "identities/create_identity.h"
#include "support/registry_snapshot.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"
#include "text/error.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CloneIdentityTest : public SamplePlatform {
 protected:
  void SetUp() override {
    MakeDisk();
    Store().DetectOsCode();
    LoadCatalogue(Store(), platform->GetSystemFacts());
    std::filesystem::create_directories(sample.driveD / "Backup");
  }
  void Put(const std::string& key, const std::string& name, ValueType type, const std::u16string& text) {
    Key opened = Store().CreateKey(CurrentUser(key));
    ASSERT_EQ(platform->GetRegistry().SetStoredValue(opened, name, type, Utf16Bytes(text + u'\0')), Status::Success);
  }
  IdentityClone Clone(const CloneRequest& wanted) { return IdentityClone(*platform, Store(), wanted); }
  RegistrySnapshot Snapshot(const std::string& key) { return SnapshotOf(platform->GetRegistry(), CurrentUser(key)); }
  /// What the destination must hold: the source's tree under its own {USER_ID}, and its own four values.
  RegistrySnapshot Expected() {
    RegistrySnapshot expected = Snapshot(IdentityKey(kMain));
    RegistrySnapshot destination = Snapshot(IdentityKey(kGuest));
    const std::string root = "\\Software\\Microsoft\\Outlook Express\\5.0|Store Root=";
    for (const std::string value : {"|Username=", "|User ID=", "|Directory Name=", "|Identity Ordinal="}) {
      expected[value] = destination[value];
    }
    const Bytes folder = Utf16Bytes(ToUtf16(UnexpandedStoreFolder(kGuest)) + u'\0');
    expected[root] = "2:" + std::string(folder.begin(), folder.end());
    return expected;
  }
  const CloneRequest request{kMain, kGuest, WinPath("D:\\Backup"), false};
};

TEST(CloneFiles, TheStoreRootFileEndsAsItsWindowsWantsIt) {
  const std::string folder = "%UserProfile%\\Outlook Express\\";
  const std::string file = StoreRootFile({kOffice, folder}, false);
  EXPECT_THAT(file, HasSubstr("REGEDIT4\r\n \r\n[HKEY_CURRENT_USER\\Identities\\" + kOffice +
                              "\\Software\\Microsoft\\Outlook Express\\5.0]\r\n\"Store Root\"=hex(2):25,55,73,65,"));
  EXPECT_TRUE(file.ends_with(",65,73,73,5C,")) << file;
  EXPECT_EQ(StoreRootFile({kOffice, folder}, true), file + "\r\n \r\n");
}

TEST(CloneFiles, AFileThatIsCutOffOrLacksTheIdentityIsRefused) {
  const std::string key = "REGEDIT4\r\n[HKEY_CURRENT_USER\\Identities\\" + kOffice + "]\r\n\"Username\"=\"Bob\"\r\n";
  const CodePage codePage;
  EXPECT_EQ(ReadOwnValues({"a.reg", key}, codePage, kOffice).size(), 1u);
  EXPECT_THROW(ReadOwnValues({"cut.reg", key.substr(0, key.size() - 4)}, codePage, kOffice), Error);
  EXPECT_THROW(RewriteIdentity({"a.reg", key}, codePage, kMain, kOffice, {}), Error);
}

TEST_F(CloneIdentityTest, TheCloneEqualsItsSource) {
  const std::string key = IdentitySettingsKey(kMain) + "\\Odd [x]{y}\\\"quoted\" ]";
  const auto addOddValues = [&](const std::u16string& more) {
    Put(key, "name = \"a\\b\" {z} [HKEY_CURRENT_USER\\SOFTWARE", ValueType::Sz, u"C:\\ \"q\"\r\n\"Username\"=\"no\"");
    Put(key, "Username", ValueType::Sz, u"first\r\n\"Store Root\"=hex(2):00\r\n[HKEY_CURRENT_USER]" + more);
    Put(key, "", ValueType::ExpandSz, u"%Temp%\\ä" + more);
    Put(key, "many", ValueType::MultiSz, u"one\0two\0" + more);
    Put(key, "long", ValueType::Binary, std::u16string(20000, u'{'));
    Put(key, "odd", static_cast<ValueType>(0x10), u"x");
    Put(IdentityKey(kMain), "Kept", ValueType::Dword, u"7");
  };
  for (const char16_t* more : {u"", u"Ж in no code page of the west"}) {
    addOddValues(more);
    const RegistrySnapshot expected = Expected();
    Clone(request).CloneSettings();
    // The clone has its accounts in addition.
    RegistrySnapshot cloned = Snapshot(IdentityKey(kGuest));
    const std::string accounts = "\\Software\\Microsoft\\Internet Account Manager";
    EXPECT_EQ(Snapshot(IdentityKey(kGuest) + accounts + "\\Accounts"),
              Snapshot("SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts"));
    std::erase_if(cloned, [&](const auto& entry) { return entry.first.starts_with(accounts); });
    EXPECT_EQ(cloned, expected);
  }
  EXPECT_EQ(Names(sample.driveD / "Backup"), std::vector<std::string>{"Store Root2K.reg"});
}

TEST_F(CloneIdentityTest, AUsernameThatTheSourcesFormCannotHoldStays) {
  Put(IdentityKey(kGuest), "Username", ValueType::Sz, u"Жанна");
  Clone(request).CloneSettings();
  EXPECT_EQ(Read(IdentityKey(kGuest), "Username"), RegValue("Жанна"));
}

TEST_F(CloneIdentityTest, OwnAccountsAreKept) {
  const std::string accounts = IdentityKey(kGuest) + "\\Software\\Microsoft\\Internet Account Manager";
  Store().CreateKey(CurrentUser(accounts));
  CloneRequest keeping = request;
  keeping.keepFiles = true;
  Clone(keeping).CloneSettings();
  EXPECT_EQ(Snapshot(accounts).size(), 1u);
  EXPECT_EQ(Names(sample.driveD / "Backup"),
            (std::vector<std::string>{"Identity.reg", "IdentitySource.reg", "IdentyDestination.reg", "MainIAM.reg",
                                      "NewIAM.reg", "Store Root2K.reg"}));
  EXPECT_THAT(
      platform->processes.commandLines,
      ElementsAre(
          "regedit /s /e:A \"D:\\Backup\\IdentitySource.reg\" HKEY_CURRENT_USER\\Identities\\" + kMain,
          "regedit /s /e:A \"D:\\Backup\\IdentyDestination.reg\" HKEY_CURRENT_USER\\Identities\\" + kGuest,
          "regedit /s /e:A \"D:\\Backup\\MainIAM.reg\"  \"HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Internet Account "
          "Manager\\Accounts\"",
          "regedit /s /c \"D:\\Backup\\Identity.reg"));
}

TEST_F(CloneIdentityTest, WhatCannotBeClonedChangesNothing) {
  const RegistrySnapshot before = Snapshot(kIdentitiesKey);
  EXPECT_FALSE(Clone(request).Refusal());
  EXPECT_THAT(Clone({kMain, "{00000000-0000-0000-0000-00000000000G}", {}}).Refusal().value().message,
              HasSubstr("not a {USER_ID}"));
  EXPECT_THAT(Clone({kMain, "{11111111-1111-1111-1111-111111111111}", {}}).Refusal().value().message,
              HasSubstr("not in the registry"));
  // An earlier clone's file must not be taken for the export that failed.
  platform->processes.forward = false;
  std::ofstream(sample.driveD / "Backup/IdentitySource.reg") << "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\X]\r\n";
  EXPECT_THROW(Clone(request).CloneSettings(), Error);
  EXPECT_EQ(Snapshot(kIdentitiesKey), before);
}

TEST_F(CloneIdentityTest, WithoutAStoreFolderNoMessagesAreCopied) {
  EXPECT_THAT(Clone({kGuest, kMain, {}}).CopyMessages().value().message, HasSubstr("never started"));
  Store().SetKeyValue(IdentitySettingsKey(kMain), "Store Root", "D:\\Gone", ValueType::Sz);
  EXPECT_THAT(Clone(request).CopyMessages().value().message, HasSubstr("\"D:\\Gone\" does not exist"));
  Store().SetKeyValue(IdentitySettingsKey(kMain), "Store Root", "", ValueType::Sz);
  EXPECT_THAT(Clone(request).CopyMessages().value().message, HasSubstr("no \"Store Root\""));
}

}  // namespace
}  // namespace quillbox
