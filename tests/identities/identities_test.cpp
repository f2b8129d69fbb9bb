// SPDX-License-Identifier: GPL-3.0-or-later
// Identities that are made, cloned or removed, and files that are carried over from one to another.
#include "identities/clone_identity.h"

#include "identities/clone_files.h"
#include "identities/create_identity.h"
#include "identities/manage_identities.h"
#include "identities/replace_string.h"
#include "identities/replace_user_id.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/system_services.h"
#include "support/registry_snapshot.h"
#include "support/sample_ids.h"
#include "support/sample_platform.h"
#include "text/error.h"

namespace quillbox {
namespace {

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
  EXPECT_THAT(Clone({kMain, "{00000000-0000-0000-0000-00000000000G}", {}}).Refusal().value().message,
              HasSubstr("not a {USER_ID}"));
  EXPECT_THAT(Clone({kMain, "{11111111-1111-1111-1111-111111111111}", {}}).Refusal().value().message,
              HasSubstr("not in the registry"));
  // An earlier clone's file must not be taken for the export that failed.
  platform->processes.forward = false;
  std::ofstream(sample.driveD / "Backup/IdentitySource.reg", std::ios::binary)
      << "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\X]\r\n";
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

using ManageIdentitiesTest = SamplePlatform;

TEST_F(ManageIdentitiesTest, ANewIdentityHasItsValuesAndFolder) {
  const std::string userId = "{89ABCDEF-0123-4567-89AB-CDEF01234567}";
  IdentityMaker maker(*platform, Store());
  for (const std::string& username : {std::string("  Ann \"Жanna\" "), std::string(300, 'x'), std::string("y")}) {
    const std::uint32_t ordinal = maker.NextOrdinal();
    maker.Create({userId, username}, ordinal);
    EXPECT_EQ(Read(IdentityKey(userId), "Username"), RegValue(username));
    EXPECT_EQ(Read(IdentityKey(userId), "User ID"), RegValue(userId));
    EXPECT_EQ(Read(IdentityKey(userId), "Identity Ordinal"), RegValue(static_cast<std::int32_t>(ordinal)));
    EXPECT_EQ(Read(IdentityKey(userId), "Directory Name"), RegValue(static_cast<std::int32_t>(0x89ABCDEF)));
    EXPECT_EQ(maker.NextOrdinal(), ordinal + 1);
  }
  EXPECT_FALSE(ReadStoreFolder(Store(), platform->GetSystemFacts(), userId));
  const WinPath folder(DefaultStoreFolder(Store(), *platform, userId));
  EXPECT_TRUE(std::filesystem::is_empty(NativePath(platform->GetDrives().HostPathOf(folder))));

  Key identities = Store().CreateKey(CurrentUser(kIdentitiesKey));
  platform->GetRegistry().DeleteValue(identities, "Identity Ordinal");
  EXPECT_EQ(maker.NextOrdinal(), 0u);
}

TEST_F(ManageIdentitiesTest, WithoutAnIdentitiesKeyNothingIsWrittenAndNoFolderGoesAstray) {
  platform->GetRegistry().DeleteTree(CurrentUser(kIdentitiesKey));
  Store().SetKeyValue("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", "Local AppData", "x",
                      ValueType::Sz);
  IdentityMaker(*platform, Store()).Create({kGuest, "Guest"}, 1);
  EXPECT_TRUE(SnapshotOf(platform->GetRegistry(), CurrentUser(kIdentitiesKey)).empty());
  EXPECT_FALSE(std::filesystem::exists(sample.driveC / "x"));
  EXPECT_EQ(platform->log.lines.size(), 1u);
}

TEST_F(ManageIdentitiesTest, OnlyAnIdentityIsRemoved) {
  const RegistrySnapshot before = SnapshotOf(platform->GetRegistry(), CurrentUser(kIdentitiesKey));
  for (const std::string& userId : {std::string(), kMain + "\\Software"}) RemoveIdentity(Store(), userId);
  EXPECT_EQ(SnapshotOf(platform->GetRegistry(), CurrentUser(kIdentitiesKey)), before);
}

const std::string kOld = kMain, kOther = kOffice, kNew = kGuest;
const std::string kOldLower = "{2b7c0e64-91d3-4f5a-8c17-6e0d53a9f421}";

std::string Utf16(const std::string& text) {
  const Bytes bytes = Utf16Bytes(ToUtf16(text));
  return "\xFF\xFE" + std::string(bytes.begin(), bytes.end());
}

class ReplaceUserIdTest : public ::testing::Test {
 protected:
  std::string Replaced(const std::string& content, const std::string& userId = kNew) {
    temp.File("in.reg", content);
    ReplaceUserId(files, facts, {WinPath("C:\\in.reg"), WinPath("C:\\out.reg"), userId});
    return temp.Read("out.reg");
  }

  TempFolder temp;
  OfflineDrives drives{DriveMap{temp.Path()}};
  HostedFiles files{drives};
  RegistryFacts facts;
};

TEST(ReplaceString, GoesOnAfterWhatWasPutIn) {
  EXPECT_EQ(ReplaceString("an AN An n", {"an", "<an>"}, Case::Ignore), "<an> <an> <an> n");
  EXPECT_EQ(ReplaceString("an AN", {"an", ""}, Case::Match), " AN");
  EXPECT_EQ(ReplaceString("aaa", {"aa", "a"}, Case::Match), "aa");
  EXPECT_EQ(ReplaceString("\xC3\xA4x", {"", "y"}, Case::Ignore), "\xC3\xA4x");
}

TEST_F(ReplaceUserIdTest, ReplacesTheFirstUserIdInBothForms) {
  const auto text = [](const std::string& id, const std::string& mixedLine) {
    return "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities\\" + id + "]\r\n\"User ID\"=\"" + id + "\"\r\n\"Pair\"=\"" +
           mixedLine + "\"\r\n\"lower\"=\"" + kOldLower + "\"\r\n\"other\"=\"" + kOther + "\"\r\n";
  };
  const std::string before = text(kOld, kOld + "ü" + kOldLower);
  const std::string after = text(kNew, kNew + "ü" + kNew);
  EXPECT_EQ(Replaced(before), after);
  EXPECT_EQ(Replaced(Utf16(before)), Utf16(after));
  EXPECT_EQ(FindOldUserId(files, facts, WinPath("C:\\in.reg")), kOld);
  // Where a {USER_ID}'s bytes stand between two characters it is another text.
  const std::string shifted = Utf16("{" + kOld.substr(1) + "\r\n") + "x" + Utf16(kOld).substr(2) + "y";
  EXPECT_EQ(Replaced(shifted), Utf16(kNew + "\r\n") + shifted.substr(2 + 40 * 2) + std::string("\r\0\n\0", 4));
}

TEST_F(ReplaceUserIdTest, WritesTheSystemsLineEnds) {
  EXPECT_EQ(Replaced("a\r" + kOld + "\rb\n\n" + kOld + "\r\nc"), "a\r\n" + kNew + "\r\nb\r\n\r\n" + kNew + "\r\nc\r\n");
  EXPECT_EQ(Replaced(Utf16(kOld + "\nb") + "x"), Utf16(kNew + "\r\nb\r\n") + "x");
}

TEST_F(ReplaceUserIdTest, AFileWithoutAUserIdIsCopiedAsItIs) {
  for (const std::string& content :
       {std::string(), std::string("\xFF\xFE"), std::string("\xFF"), std::string("no brace\rat all\n\n"),
        Utf16("none\n") + "x", "the line ends too soon {8F41D3\r\n" + kOld, std::string("\0\x7B\n\xFF", 4)}) {
    EXPECT_EQ(Replaced(content), content);
  }
  // In code page 932 "{" is the second byte of some characters.
  facts = RegistryFacts({}, 932);
  EXPECT_EQ(Replaced("\x83\x7B\r\n" + kOld + "\r\n"), "\x83\x7B\r\n" + kNew + "\r\n");
}

TEST_F(ReplaceUserIdTest, PiecesAndLongLinesHideNoUserId) {
  // A piece, and the longest line.
  for (const auto& [length, end] : {std::pair(std::size_t{1} << 18, "\r\n"), {kMaxLineBytes, ""}}) {
    for (const std::size_t before : {0, 1, 2, 3, 20, 37, 38, 39, 40, 41, 42}) {
      const std::string start = kOld + "\r\n" + std::string(length - before - 40, 'x') + end;
      ASSERT_EQ(Replaced(start + kOld + "tail\r\n"), kNew + start.substr(38) + kNew + "tail\r\n") << before;
    }
  }
  const std::string wide(kMaxLineBytes / 2 - 60, 'x');
  ASSERT_EQ(Replaced(Utf16(kOld + wide + kOld + "\r\n")), Utf16(kNew + wide + kNew + "\r\n"));
}

TEST_F(ReplaceUserIdTest, NothingIsWrittenThatTheFileCannotHold) {
  temp.File("out.reg", "earlier");
  EXPECT_THROW(Replaced(kOld, "{Ж}"), Error);
  EXPECT_EQ(temp.Read("out.reg"), "earlier");
  EXPECT_EQ(Replaced(Utf16(kOld + "\r\n"), "{Ж}"), Utf16("{Ж}\r\n"));
  EXPECT_EQ(Replaced(kOld, "{ä}"), "{\xE4}\r\n");
  EXPECT_THROW(ReplaceUserId(files, facts, {WinPath("C:\\none.reg"), WinPath("C:\\out.reg"), kNew}), Error);
  EXPECT_EQ(ReplacedFile(WinPath("C:\\Bk"), WinPath("D:\\x\\a.b.reg")).Text(), "C:\\Bk\\Newa.reg");
}

}  // namespace
}  // namespace quillbox
