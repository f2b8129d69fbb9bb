// SPDX-License-Identifier: GPL-3.0-or-later
// The registry as the program reads it: values, identities, the paths that it names; and what copies come to.
#include "core/address_book_slots.h"
#include "core/copy_tally.h"
#include "core/disk_path.h"
#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "support/sample_ids.h"
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
  EXPECT_THAT(platform->log.lines, Contains(HasSubstr("Software\\Nothing")));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(RegistryStoreTest, AListOfNoFilesHasOneEmptyName) {
  EXPECT_THAT(FileList(platform->GetFiles(), WinPath("C:\\WINDOWS\\*.dbx")), ElementsAre(""));
}

TEST_F(RegistryStoreTest, AnExportThatTheEditorOnlySaysItMadeIsAFailure) {
  Store().DetectOsCode();
  const std::string identities = "HKEY_CURRENT_USER\\Identities";
  const WinPath file("D:\\export.reg");
  EXPECT_TRUE(Store().RegExport(identities, file, KeyForm::Quoted));
  EXPECT_TRUE(Store().RegExport(identities, file, KeyForm::Quoted)) << "at once, so perhaps with the same time";
  platform->processes.forward = false;
  EXPECT_FALSE(Store().RegExport(identities, WinPath("D:\\new.reg"), KeyForm::Quoted));
  const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  std::filesystem::last_write_time(sample.driveD / "export.reg", old);
  EXPECT_FALSE(Store().RegExport(identities, file, KeyForm::Quoted));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("The registry editor did not write D:\\export.reg, to which it was to "
                                               "export HKEY_CURRENT_USER\\Identities."));
}

TEST_F(RegistryStoreTest, AKeySavedAsAHiveReplacesAnOlderFile) {
  const WinPath file("D:\\key.hiv");
  onDisk.File("D/key.hiv", "an older file");
  Store().SaveKey(CurrentUser(kTestKey), file);
  EXPECT_TRUE(onDisk.Read("D/key.hiv").starts_with("regf"));
  Store().SaveKey(CurrentUser("Software\\Nothing"), file);
  EXPECT_FALSE(std::filesystem::exists(sample.driveD / "key.hiv"));
}

class IdentityCatalogueTest : public SamplePlatform {
 protected:
  IdentityCatalogue Load() { return LoadCatalogue(Store(), platform->GetSystemFacts()); }
};

TEST_F(IdentityCatalogueTest, AnIdentityNeverStartedGetsTheMarkerInTheRegistry) {
  Load();
  EXPECT_EQ(Read(IdentitySettingsKey(kGuest), "Store Root"),
            RegValue("This Identity is empty, there are no values to save."));
  const OpenResult settings = Store().OpenKey(CurrentUser(IdentitySettingsKey(kGuest)));
  EXPECT_EQ(platform->GetRegistry().Query(settings.key, "Store Root", std::nullopt).type, ValueType::ExpandSz);
}

TEST_F(IdentityCatalogueTest, ExpandsOnlyTheFirstVariable) {
  SystemFacts& facts = platform->GetSystemFacts();
  const std::string profile = "C:\\Documents and Settings\\Ann Miller";
  EXPECT_EQ(ExpandStoreRoot(facts, "%UserProfile%\\a\\%Temp%"), profile + "\\a\\%Temp%");
  EXPECT_EQ(ExpandStoreRoot(facts, "C:\\Mail\\%userprofile%\\Store"), profile + "\\Store");
  EXPECT_EQ(ExpandStoreRoot(facts, "C:\\100% mail"), "C:\\100% mail");
  EXPECT_EQ(ExpandStoreRoot(facts, "C:\\Mail\\%NotSet%\\Store"), "%NotSet%\\Store");
}

TEST_F(IdentityCatalogueTest, AValueThatIsNoTextEndsTheLoad) {
  Store().SetKeyValue(IdentitySettingsKey(kMain), "Store Root", RegValue(7), ValueType::Dword);
  const IdentityCatalogue load = Load();
  EXPECT_EQ(load.end.kind, LoadEnd::Kind::Failed);
  EXPECT_THAT(load.end.failure, HasSubstr("Store Root"));
}

TEST_F(IdentityCatalogueTest, AnEmptyAddressBookSlotHoldsNoneAndWithoutTheKeyNoneIsLoaded) {
  const OpenResult key = Store().OpenKey(CurrentUser(kAddressBookKey));
  platform->GetRegistry().SetValue(key.key, "WAB3", ValueType::Sz, {});
  EXPECT_EQ(LoadAddressBookSlots(Store()).names[3], std::nullopt);
  for (const char* name : {"", "WAB1"}) Store().SetValueEx(key.key, name, ValueType::Binary, RegValue(Bytes{1, 2}));
  Store().SetValueEx(key.key, "WAB2", ValueType::Sz, "C:\\a.wab");
  const SlotsLoad load = LoadAddressBookSlots(Store());
  EXPECT_EQ(load.names[1], std::nullopt);
  EXPECT_EQ(load.names[2], "a.wab");
  Store().DeleteKey(CurrentUser(kAddressBookKey));
  EXPECT_FALSE(LoadAddressBookSlots(Store()).keyOpened);
}

class DiskPathTest : public SamplePlatform {
 protected:
  /// The path that is used, or why none is.
  std::string Decide(const std::string& text) {
    const DiskPath path(platform->GetDrives(), WinPath(text));
    EXPECT_EQ(path.Stored().Text(), text);
    return path.IsUsable() ? path.Path().Text() : path.Refusal().Sentence();
  }
};

TEST_F(DiskPathTest, OnlyFullPathsOnTheDisksOwnDrivesAreUsed) {
  EXPECT_EQ(Decide("C:\\Mail\\"), "C:\\Mail");
  EXPECT_EQ(Decide("d:\\Mail\\.\\x\\..\\a.wab"), "d:\\Mail\\a.wab");
  EXPECT_EQ(Decide("C:/a/../../../b.wab"), "C:\\b.wab") << "no name holds a way out of its folder";
  const std::pair<const char*, std::vector<std::string>> refused[] = {
      {"that Windows has no such drive", {"Z:\\home\\x", "z:/home", "Z:x", "Z:"}},
      {"drive E: is not attached", {"E:\\x", "e:/x", "E:"}},
      {"it is not a full path", {"", "Mail", "..\\x", "\\home\\x", "/home/x", "C:x", "C:", "%X%\\y", ":\\x"}},
      {"it is on another computer", {"\\\\server\\share", "\\\\?\\Z:\\home", "//./Z:/home", "\\/x"}}};
  for (const auto& [why, paths] : refused) {
    for (const std::string& path : paths)
      EXPECT_EQ(Decide(path), "The path \"" + path + "\" is not used: " + why + ".");
  }
}

TEST_F(DiskPathTest, ARefusalNamesTheValueAndThePathInOneLine) {
  EXPECT_EQ(CheckStoreFolder(platform->GetDrives(), "{1\n}", WinPath("Z:\\a\nb")).Refusal().Sentence(),
            "The path \"Z:\\a\u240Ab\", which the disk's registry names in the value \"Store Root\" of "
            "HKEY_CURRENT_USER\\Identities\\{1\u240A}\\Software\\Microsoft\\Outlook Express\\5.0, is not used: that "
            "Windows has no such drive.");
}

TEST_F(DiskPathTest, AVariableOfTheDiskLeadsNowhereElse) {
  Store().CreateKey(CurrentUser("Environment"));
  Store().SetKeyValue("Environment", "HOST", "Z:\\home", ValueType::Sz);
  platform->EndCommand();
  OpenDisk();
  EXPECT_EQ(Decide(ExpandStoreRoot(platform->GetSystemFacts(), "C:\\%HOST%\\x")),
            "The path \"Z:\\home\\x\" is not used: that Windows has no such drive.");
}

CopyResult Result(CopyEnd end, const char* reason = "") {
  return {.source = {}, .target = {}, .end = end, .keptAs = {}, .reason = reason};
}

TEST(CopyTallyTest, SaysOnlyWhatDidNotGoAsAsked) {
  const CopyResult copied = Result(CopyEnd::Copied);
  const CopyResult damaged = Result(CopyEnd::KeptDamaged);
  const CopyResult leftOut = Result(CopyEnd::LeftOut);
  const CopyResult kept = Result(CopyEnd::NotReplaced);
  const CopyResult full = Result(CopyEnd::Failed, "the disk is full");
  const CopyResult stopped = Result(CopyEnd::Cancelled, "the disk is full");
  const CopyResult cancelled = Result(CopyEnd::Cancelled, "cancelled");
  const struct {
    std::vector<CopyResult> results;
    const char* text;
  } rows[] = {{{}, ""},
              {{copied, copied}, ""},
              {{full, stopped, stopped}, "0 of 3 files copied: the disk is full"},
              {{copied, damaged, copied}, "2 of 3 files copied: 1 kept as damaged"},
              {{leftOut, leftOut}, "0 of 2 files copied: 2 left out as damaged"},
              {{copied, cancelled, cancelled}, "1 of 3 files copied: cancelled"},
              {{copied, kept, full, damaged, full, copied},
               "2 of 6 files copied: 1 not replaced, the disk is full (2 files), 1 kept as damaged"}};
  for (const auto& row : rows) EXPECT_EQ(CopyTally(row.results).Text(), row.text);
  EXPECT_EQ(CopyTally({copied}).After("2 Identities Backed Up"), "2 Identities Backed Up");
  EXPECT_EQ(CopyTally({copied, copied}).CountText(), "2 files copied");
  EXPECT_EQ(CopyTally({copied, full}, {"1 message store not copied"}).After("2 Identities Backed Up"),
            "2 Identities Backed Up; 1 of 2 files copied: the disk is full; 1 message store not copied");
}

}  // namespace
}  // namespace quillbox
