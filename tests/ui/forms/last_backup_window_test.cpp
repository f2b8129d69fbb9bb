// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/last_backup_window.h"

#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class LastBackupTest : public SampleWindows {
 protected:
  LastBackupForm& Open() {
    windows->form1.menuBar.click("lastBackup");
    return windows->lastBackup;
  }
  /// "Inbox.dbx | 1234 bytes | copied to ..." of the row.
  std::string Row(std::size_t row) {
    const ListView& list = windows->lastBackup.lvSteps;
    return list.Text(row, 0) + " | " + list.Text(row, 1) + " | " + list.Text(row, 2);
  }
};

TEST_F(LastBackupTest, SaysWhatWasNotDoneFirstAndChecksEveryCopy) {
  Form1& main = Start();
  Store().DeleteKey(CurrentUser("Software\\Microsoft\\Internet Account Manager"));
  EXPECT_EQ(Open().lblBackup.caption, "No backup was made since the program was started.");
  EXPECT_FALSE(windows->lastBackup.cmdCheck.enabled);
  windows->lastBackup.close();
  main.cmdComplete.click();
  LastBackupForm& form = Open();
  EXPECT_THAT(form.lblBackup.caption.Get(), StartsWith("Complete Backup, "));
  EXPECT_EQ(form.lblFolder.caption, "Backup folder: D:\\Backup");
  EXPECT_EQ(form.sb1.panels[0], "21 files copied; 1 left out; 6 registry keys exported, 1 not exported");
  EXPECT_THAT(Row(0), AllOf(HasSubstr("comp.lang.c++.dbx | "), HasSubstr("left out: its name has a full stop")));
  EXPECT_EQ(form.lvSteps.RowCount(), 29U) << "what was not done, and each copy and export";
  form.cmdCheck.click();
  EXPECT_EQ(form.sb1.panels[0], "21 copies are the same as the source; 6 registry files can be read");
  EXPECT_EQ(dialogs.progress.back().done + dialogs.progress.back().total, 0U) << "registry files have no known end";
  const auto size = std::filesystem::file_size(BackupFolderOnHost() / "AllIdentities.reg");
  EXPECT_EQ(Row(23),
            "AllIdentities.reg |  | readable, " + std::to_string(size) + " bytes: D:\\Backup\\AllIdentities.reg");
  const auto inbox = BackupFolderOnHost() / PathOf("Büro/Inbox.dbx");
  std::string content = Content(inbox);
  content[3]++;
  std::ofstream(inbox, std::ios::binary) << content;
  std::filesystem::remove(BackupFolderOnHost() / "AllIdentities.reg");
  form.cmdCheck.click();
  EXPECT_EQ(form.sb1.panels[0],
            "20 copies are the same as the source, 1 is NOT; 5 registry files can be read, 1 can NOT");
  EXPECT_THAT(Row(0), AllOf(StartsWith("Inbox.dbx | "),
                            HasSubstr("DIFFERENT from D:\\Backup\\Büro\\Inbox.dbx, first at offset 3")));
  EXPECT_THAT(Row(1), HasSubstr("NOT READABLE: D:\\Backup\\AllIdentities.reg: "));

  std::filesystem::remove(BackupFolderOnHost() / "Ann Miller.wab");
  form.cmdCheck.click();
  EXPECT_THAT(form.sb1.panels[0].Get(), StartsWith("19 copies are the same as the source, 2 are NOT; "));
  EXPECT_THAT(Row(0), HasSubstr("NOT READABLE: D:\\Backup\\Ann Miller.wab: "));

  form.close();
  EXPECT_TRUE(main.visible);
}

TEST_F(LastBackupTest, TheSavedTextSaysHowEachStepEnded) {
  Start().cmdbkupall.click();
  EXPECT_THAT(Open().lblBackup.caption.Get(), StartsWith("Backup of All Identities, "));
  const auto copy = [](CopyEnd end, const char* reason = "") {
    const WinPath target(std::string("D:\\Backup\\x") + (end == CopyEnd::KeptDamaged ? " (damaged).dbx" : ".dbx"));
    return CopyResult{WinPath("C:\\Mail\\x.dbx"), target, 7, end, "", reason};
  };
  const auto made = [](KeyExport::End end, const char* reason = "") {
    return KeyExport{"HKEY_CURRENT_USER\\Key", WinPath("D:\\Backup\\x.reg"), end, reason};
  };
  using End = KeyExport::End;
  const BackupRecord all = {
      .command = "Complete Backup",
      .ended = 0,
      .folder = WinPath("D:\\Backup"),
      .copies = {copy(CopyEnd::Copied), copy(CopyEnd::KeptDamaged), copy(CopyEnd::LeftOut), copy(CopyEnd::NotReplaced),
                 copy(CopyEnd::Cancelled, "cancelled"), copy(CopyEnd::Failed, "the disk is full")},
      .exports = {made(End::Written), made(End::NothingThere), made(End::NotStarted), made(End::Failed, "a\nb")},
      .leftOut = {{LeftOut::Kind::NameWithFullStop, "C:\\Mail\\a.b.dbx", "its name has a full stop"},
                  {LeftOut::Kind::MessageStore, "the messages of \"Guest\"", "it was never started"}},
      .endedEarly = "the disk is gone"};
  std::string saved;
  BackupRecord nothing;
  nothing.command = "Quick Backup";
  for (const BackupRecord& record : {all, nothing}) {
    windows->session.KeepBackup(record);
    Open();
    dialogs.saveFileAnswers = {WinPath("C:\\report.txt")};
    windows->lastBackup.cmdSave.click();
    saved += Content(sample.driveC / "report.txt");
  }
  for (const char* file : {"C/Mail/x.dbx", "D/Backup/x.dbx", "D/Backup/x.reg"}) {
    onDisk.File(file, "same");
  }
  windows->session.KeepBackup(all);
  Open().cmdCheck.click();
  EXPECT_EQ(windows->lastBackup.sb1.panels[0], "1 copy is the same as the source; 1 registry file can be read");
  EXPECT_EQ(Row(windows->lastBackup.lvSteps.RowCount() - 2), "x.dbx | 7 bytes | the same as D:\\Backup\\x.dbx");
  std::string wanted;
  for (const std::string& line : GoldenTexts("ui/forms/last_backup_golden.txt")) wanted += line + "\r\n";
  EXPECT_TRUE(FitsGolden(saved, wanted)) << saved;
}

TEST_F(LastBackupTest, AFailureAndACancelledCheckAreSaid) {
  Form1& main = Start();
  main.cmdQuickBackup.click();
  dialogs.overwriteAnswers = {OverwriteAnswer::No, OverwriteAnswer::YesToAll};
  main.cmdQuickBackup.click();
  LastBackupForm& form = Open();
  EXPECT_THAT(form.lblBackup.caption.Get(), StartsWith("Quick Backup, "));
  EXPECT_THAT(Row(0), AllOf(HasSubstr(".dbx | "), HasSubstr(" bytes | not replaced: D:\\Backup\\Main Identity\\")));
  form.close();
  platform->CopyWithFaults().writeError = ENOSPC;
  main.chkOverwrite.click();
  dialogs.messageAnswers = {MessageAnswer::No};
  main.cmdQuickBackup.click();
  Open();
  EXPECT_THAT(Row(0), HasSubstr(" | failed: the disk is full"));
  EXPECT_THAT(Row(1), HasSubstr(" | not copied: the disk is full"));
  dialogs.onProgress = [](const auto& /*shown*/) { return false; };
  form.cmdCheck.click();
  EXPECT_THAT(form.sb1.panels[0].Get(), StartsWith("Check cancelled: 0 copies are the same as the source"));
}

}  // namespace
}  // namespace quillbox
