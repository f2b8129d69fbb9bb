// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>
#include <fstream>
#include <functional>
#include <utility>

#include "backup/identity_backup.h"
#include "inspection/inspect_backup.h"
#include "inspection/inspection_text.h"
#include "support/host_tricks.h"
#include "support/sample_platform.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

struct Watched : Progress {
  bool Update(const std::string&, std::uint64_t done, std::uint64_t total) override {
    EXPECT_LE(done, total);
    return --updatesLeft > 0;
  }
  int updatesLeft = 1'000'000;
};

/// A backup of all identities of the sample disk, made as the program makes it.
class InspectionTest : public SamplePlatform {
 protected:
  void SetUp() override {
    SamplePlatform::SetUp();
    fs::create_directory(Folder());
    platform->GetChosenFolders().Choose(WinPath("D:\\Backup"));
    BackupFolder folder(*platform, Store());
    folder.Choose(WinPath("D:\\Backup"));
    catalogue = LoadCatalogue(Store(), platform->GetSystemFacts());
    IdentityBackup backup(*platform, Store(), folder, [](const std::string&) {});
    ASSERT_TRUE(backup.SaveAll(WinPath("D:\\Backup"), catalogue, kBackupOfAll, true));
    platform->GetShell().FinishCopies();
    platform->EndCommand();
  }
  fs::path Folder() const { return sample.driveD / "Backup"; }
  fs::path Main() const { return Folder() / "Main Identity"; }
  static constexpr const char* kMain = "D:\\Backup\\Main Identity";
  /// The folder of the check; its root by default.
  Inspection Check(bool compare = false, const char* folder = "D:\\Backup") {
    const ComparedDisk disk{*platform, Store(), catalogue};
    const CodePage page(platform->GetSystemFacts().CodePageNumber());
    return InspectBackup(platform->GetFiles(), page,
                         {.folder = WinPath(folder), .against = compare ? &disk : nullptr, .shownEvery = {}}, watched);
  }
  static const InspectedFile& Find(const Inspection& inspection, const std::string& name) {
    for (const InspectedFile& file : inspection.files) {
      if (file.path.Text().ends_with("\\" + name)) return file;
    }
    ADD_FAILURE() << "there is no " << name;
    return inspection.files.at(0);
  }
  static std::string FaultOf(const std::function<void()>& act) try {
    act();
    return {};
  } catch (const Error& error) {
    return error.Why();
  }
  static void Write(const fs::path& file, const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; }

  IdentityCatalogue catalogue;
  Watched watched;
};

// The sample has a newsgroup whose store has full stops in its name, which backups leave out.
TEST_F(InspectionTest, ABackupThatWasJustMadeEqualsTheDiskButForWhatBackupsLeaveOut) {
  const Inspection found = Check(true);
  EXPECT_EQ(
      SummaryOf(found),
      "The backup is NOT whole. 26 files are whole. 1 file is MISSING. 2 files are of another kind, whose content "
      "was not checked.\n\nAgainst the disk: 28 files are the same; 1 of the disk NOT in the backup.");
  EXPECT_EQ(
      MissingLines(found).at(0),
      "MISSING: Main Identity\\comp.lang.c++.dbx: Folders.dbx has it for the folder comp.lang.c++, with 3 messages");
  EXPECT_EQ(StateText(Find(found, "Main Identity\\Inbox.dbx")), "whole, 3 messages; as on the disk");

  const Inspection office = Check(true, "D:\\Backup\\B\xC3\xBCro");
  EXPECT_EQ(office.End(), InspectionEnd::Whole);
  EXPECT_EQ(SummaryOf(Check(false, "D:\\Backup\\B\xC3\xBCro")),
            "All 13 files that can be checked are whole. 1 file is of another kind, whose content was not checked.");
}

TEST_F(InspectionTest, EveryDifferenceFromTheDiskIsNamed) {
  std::string inbox = Content(Main() / "Inbox.dbx");
  inbox[0x3000] ^= 1;
  Write(Main() / "Inbox.dbx", inbox);
  const std::string outbox = Content(Main() / "Outbox.dbx");
  Write(Main() / "Outbox.dbx", outbox + std::string(100, '\0'));
  Write(Main() / "Gone.dbx", outbox);
  fs::remove(Main() / "Sent Items.dbx");
  fs::create_directory(Folder() / "Nobody");
  Write(Folder() / "Nobody/Inbox.dbx", outbox);
  Key key = Store().CreateKey(CurrentUser("Software\\Microsoft\\WAB\\New"));
  Store().SetKeyValue("Software\\Microsoft\\WAB\\WAB4", "Changed", RegValue("now"), ValueType::Sz);
  for (const IdentityInfo& identity : catalogue.identities) {
    Store().SetKeyValue(IdentitySettingsKey(identity.userId) + "\\Signatures", "Default Signature", RegValue("none"),
                        ValueType::Sz);
  }
  const Inspection found = Check(true);
  const std::pair<const char*, const char*> expected[] = {
      {"Main Identity\\Inbox.dbx", "Outlook Express\\Inbox.dbx, first at offset 0x3000"},
      {"Main Identity\\Outbox.dbx", "first at offset 0x24BC; it has 9504 bytes, and the disk's 9404"},
      {"Main Identity\\Gone.dbx", "not on the disk any more: "},
      {"Nobody\\Inbox.dbx", "not compared: no identity of the disk has the name of its folder"},
      {"Main Identity\\WAB.reg",
       "DIFFERENT: 2 keys differ from the disk, first [HKEY_CURRENT_USER\\Software\\Microsoft\\WAB\\WAB4] the value "
       "\"Changed\" is on the disk only"},
      {"Main Identity\\SignaturesWinXP.reg",
       "DIFFERENT: 1 key differs from the disk, first [the key itself] the value \"Default Signature\" differs"},
      {"Main Identity\\Main Identity.reg", "DIFFERENT: 1 key differs"},
      {"Main Identity\\IAM.reg", "; as on the disk"},
  };
  for (const auto& [name, text] : expected) EXPECT_THAT(StateText(Find(found, name)), HasSubstr(text)) << name;
  EXPECT_THAT(ReportText(found, "now"), HasSubstr("MISSING: Main Identity\\Sent Items.dbx: Folders.dbx has it"));
  EXPECT_THAT(ReportText(found, "now"), HasSubstr("\\Outlook Express\\Sent Items.dbx\r\n"));
  EXPECT_EQ(found.Comparison(), ComparisonEnd::Different);
}

// A .reg file may look whole where its text ends in an empty line, and an address book where free room is cut off.
TEST_F(InspectionTest, AFileThatIsCutOffIsNotWholeWhateverIsLeftOfIt) {
  for (const char* name : {"Inbox.dbx", "Folders.dbx", "Ann Miller.wab", "IAM.reg", "SignaturesWinXP.reg"}) {
    const std::string bytes = Content(Main() / name);
    const std::string contents = Find(Check(false, kMain), name).contents;
    const std::size_t step = bytes.size() / 60 + 1;
    fs::create_directory(Folder() / "Cut");
    for (std::size_t length = 0; length < bytes.size(); length += step) {
      const std::string cut = bytes.substr(0, length);
      Write(Folder() / "Cut" / name, cut);
      const Inspection found = Check(false, "D:\\Backup\\Cut");
      const InspectedFile& file = found.files.at(0);
      const bool mayBeWhole =
          cut.ends_with("\r\n\r\n") || (file.path.Name().ends_with(".wab") && file.contents == contents);
      EXPECT_TRUE(mayBeWhole || file.state == CheckState::Damaged) << name << " of " << length << " bytes";
      EXPECT_TRUE(mayBeWhole || found.End() == InspectionEnd::NotWhole);
    }
    fs::remove_all(Folder() / "Cut");
  }
}

TEST_F(InspectionTest, DamageHasItsPlace) {
  std::string inbox = Content(Main() / "Inbox.dbx");
  inbox.replace(0xC4, 1, "\x07");
  Write(Main() / "Inbox.dbx", inbox);
  Write(Main() / "IAM.reg", "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"x\"=dword:zz\r\n\r\n");
  Write(Main() / "WAB.reg", "REGEDIT4\r\n\r\n");
  Write(Main() / "Ann Miller.wab", "no book at all");
  Write(Main() / "note.txt", "hello");
  const Inspection found = Check(false, kMain);
  EXPECT_THAT(StateText(Find(found, "Inbox.dbx")), HasSubstr("the header counts 7, and the index leads to 3"));
  EXPECT_THAT(StateText(Find(found, "IAM.reg")), HasSubstr("DAMAGED, 1 key, 0 values, 1 fault: line 4: "));
  EXPECT_EQ(StateText(Find(found, "WAB.reg")),
            "DAMAGED, 0 keys, 0 values, 1 fault: offset 0xC: it ends before its first key");
  EXPECT_EQ(StateText(Find(found, "Ann Miller.wab")),
            "DAMAGED, 1 fault: offset 0x0: its name is that of an address book, but it does not begin as one");
  EXPECT_EQ(StateText(Find(found, "note.txt")), "read, its content is not checked");
  fs::remove(Main() / "Folders.dbx");
  EXPECT_THAT(MissingLines(Check(false, kMain)).at(0), HasSubstr("MISSING: Folders.dbx: there are message stores"));
}

TEST_F(InspectionTest, PipesAndLinksNeitherStopItNorCountAsSeen) {
  NEEDS(Pipes);
  const std::string office = "D:\\Backup\\B\xC3\xBCro";
  const fs::path folder = Folder() / PathOf("B\xC3\xBCro");
  MakePipe(folder / "Pipe.dbx");
  EXPECT_THAT(StateText(Find(Check(false, office.c_str()), "Pipe.dbx")), HasSubstr("not an ordinary file"));
  fs::remove(folder / "Pipe.dbx");
  fs::create_directory_symlink(Main(), folder / "Linked");
  fs::create_symlink(folder / "nowhere", folder / "Dead.dbx");
  const Inspection found = Check(false, office.c_str());
  EXPECT_THAT(SummaryOf(found), HasSubstr("1 folder was NOT looked into."));
  fs::remove(folder / "Dead.dbx");
  EXPECT_EQ(Check(false, office.c_str()).End(), InspectionEnd::NotAllSeen);
}

TEST_F(InspectionTest, ACancelledCheckSaysSo) {
  for (const int after : {1, 5, 40}) {
    watched.updatesLeft = after;
    const Inspection found = Check(true);
    EXPECT_EQ(found.End(), InspectionEnd::Cancelled);
    EXPECT_NE(found.Comparison(), ComparisonEnd::Equal);
    EXPECT_THAT(SummaryOf(found), HasSubstr("it does not say whether the backup is whole"));
  }
  watched.updatesLeft = 1'000'000;
  EXPECT_EQ(FaultOf([&] { Check(false, "D:\\Nothing"); }), "it does not exist");
}

}  // namespace
}  // namespace quillbox
