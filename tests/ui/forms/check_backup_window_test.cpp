// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/check_backup_window.h"

#include "support/sample_windows.h"

namespace quillbox {
namespace {

class CheckBackupTest : public SampleWindows {
 protected:
  CheckBackupForm& Open() {
    windows->form1.menuBar.click("checkBackup");
    return windows->checkBackup;
  }
  std::string Row(std::size_t row) {
    const ListView& list = windows->checkBackup.lvFiles;
    return list.Text(row, 0) + " | " + list.Text(row, 1) + " | " + list.Text(row, 3);
  }
};

TEST_F(CheckBackupTest, ChecksTheBackupFolderComparesItAndSavesTheResult) {
  Start().cmdQuickBackup.click();
  CheckBackupForm& form = Open();
  EXPECT_EQ(form.txtFolder.text.Get(), "D:\\Backup");
  EXPECT_FALSE(form.cmdSave.enabled);
  form.chkDisk.click();
  form.cmdCheck.click();
  EXPECT_EQ(form.sb1.panels[0], "The backup is NOT whole");
  EXPECT_THAT(form.lblResult.caption.Get(), HasSubstr("1 file is MISSING."));
  EXPECT_EQ(Row(0),
            "Main Identity\\comp.lang.c++.dbx |  | MISSING: Folders.dbx has it for the folder comp.lang.c++, with 3 "
            "messages");
  EXPECT_EQ(Row(form.lvFiles.RowCount() - 1),
            "Main Identity\\WAB.reg | Registry file | whole, 3 keys, 8 values; as on the disk");
  dialogs.saveFileAnswers = {WinPath("D:\\check.txt")};
  form.cmdSave.click();
  EXPECT_THAT(Content(onDisk / "D/check.txt"), HasSubstr("Main Identity\\Inbox.dbx (Message store, "));
  form.cmdClose.click();
  EXPECT_TRUE(windows->form1.visible);
}

TEST_F(CheckBackupTest, SaysWhyAFolderIsNotChecked) {
  Start();
  CheckBackupForm& form = Open();
  form.txtFolder.type("");
  form.cmdCheck.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please choose the folder of the backup to check.");
  form.txtFolder.type("D:\\Nothing");
  form.cmdCheck.click();
  EXPECT_EQ(dialogs.LastMessage(), "D:\\Nothing: it does not exist (while checking a backup)");
  form.txtFolder.type("D:\\Backup");
  form.cmdCheck.click();
  EXPECT_EQ(form.sb1.panels[0], "There is no backup in this folder");
  dialogs.onProgress = [](const auto&) { return false; };
  form.cmdCheck.click();
  EXPECT_EQ(form.sb1.panels[0], "The check was cancelled");
}

}  // namespace
}  // namespace quillbox
