// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/search_window.h"

#include "support/host_tricks.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Form2Test : public SampleWindows {
 protected:
  void SetUp() override {
    MakeDisk();
    onDisk.File("C/Mail/a/Inbox.dbx", "first");
    onDisk.File("C/Mail/b/Inbox.dbx", "second");
    onDisk.File("C/Mail/b/Old.dbx", "old");
    onDisk.File("D/Elsewhere/Book.wa~", "book");
  }
  Form2& OpenSearch() {
    Start().cmdSearch.click();
    return windows->form2;
  }
  Form2& SearchMail() {
    Form2& form = OpenSearch();
    windows->session.backupFolder.Choose(WinPath("C:\\Mail"));
    form.srchBackup.click();
    windows->session.backupFolder.Choose(WinPath(kBackup));
    return form;
  }
  static std::vector<std::string> Rows(const Form2& form) {
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < form.lvFiles.RowCount(); ++row) {
      rows.push_back(form.lvFiles.Text(row, 1) + form.lvFiles.Text(row, 0));
    }
    return rows;
  }
  static std::size_t RowOf(const Form2& form, const std::string& path) {
    const auto rows = Rows(form);
    return static_cast<std::size_t>(std::find(rows.begin(), rows.end(), path) - rows.begin());
  }
};

TEST_F(Form2Test, ItOpensFilled) {
  Form2& form = OpenSearch();
  EXPECT_EQ(form.Label3.caption, "0 Searches");
  EXPECT_EQ(form.txtbackupPath.caption, kBackup);
  EXPECT_THAT(form.cboFileType.items.Get(), ElementsAre("*.dbx", "*.mbx", "*.idx", "*.wab", "*.wa~"));
  EXPECT_THAT(form.cboDrives.items.Get(),
              ElementsAre("C:\\{volume has no label}", "D:\\{volume has no label}", "All Hard Drives (C:\\, D:\\)"))
      << "each drive once, and never the host's own";
  const IdentityInfo& first = Identities().front();
  EXPECT_EQ(form.cmbResIdentity.text, first.userId);
  EXPECT_EQ(form.IdentyPth.text, first.FolderText());
  const IdentityInfo& second = Identities()[1];
  form.cmbResIdentity.pick(1);
  EXPECT_EQ(form.lblusrname.caption, second.username);
  EXPECT_EQ(form.IdentyPth.text, second.FolderText());
}

TEST_F(Form2Test, ADriveOrAllDrivesAreSearchedForWhatTheTypeSays) {
  Form2& form = OpenSearch();
  dialogs.onProgress = [&](const ScriptedDialogs::ProgressShown&) {
    EXPECT_EQ(form.cmdSearch.caption, "Please Wait");
    EXPECT_EQ(form.pointer, Pointer::Hourglass);
    return true;
  };
  form.cmdSearch.click();
  EXPECT_THAT(Rows(form), Contains("C:\\Mail\\a\\Inbox.dbx"));
  EXPECT_THAT(Rows(form), Each(testing::StartsWith("C:\\")));
  EXPECT_EQ(form.Label3.caption, std::to_string(form.lvFiles.RowCount()));
  EXPECT_EQ(form.sb2.panels[0], "Search Complete");
  EXPECT_EQ(form.cmdSearch.caption, "Search");
  EXPECT_EQ(dialogs.progress.front().text, "0 found, now in C:\\");
  EXPECT_EQ(dialogs.progress.front().done + dialogs.progress.front().total, 0U) << "nobody knows how much there is";
  EXPECT_EQ(dialogs.openProgressDisplays, 0);

  const std::pair<const char*, const char*> types[] = {
      {"*.dbx", "Outlook Express 5+"},
      {"*.mbx", "Outlook Express 4 Message Store"},
      {"*.idx", "Outlook Express 4 Message Index"},
      {"*.wab", "Address Book"},
      {"*.wa~", "Address Book Backup"},
  };
  for (const auto& [pattern, description] : types) {
    form.cboFileType.pick(pattern);
    EXPECT_EQ(form.Label13.caption, description);
  }
  form.cboDrives.pick(2);
  form.cmdSearch.click();
  EXPECT_THAT(Rows(form), ElementsAre("D:\\Elsewhere\\Book.wa~"));

  form.cboFileType.type("old.*");
  EXPECT_EQ(form.Label13.caption, "Address Book Backup") << "a pattern of one's own has no description";
  form.cmdSearch.click();
  EXPECT_THAT(Rows(form), ElementsAre("C:\\Mail\\b\\Old.dbx"));
  form.cboFileType.type("  ");
  EXPECT_FALSE(form.cmdSearch.enabled);

  if (!WhyNot(Trick::Modes).empty()) return;
  const auto folder = sample.driveC / "Mail/a";
  std::filesystem::permissions(temp.Path(), std::filesystem::perms{0755});
  std::filesystem::permissions(folder, std::filesystem::perms{0});
  form.cboDrives.pick(0);
  form.cboFileType.pick("*.dbx");
  std::optional<OrdinaryUser> user(std::in_place);
  form.cmdSearch.click();
  user.reset();
  std::filesystem::permissions(folder, std::filesystem::perms{0755});
  EXPECT_EQ(form.sb2.panels[1], "Folders not read: 1");
}

TEST_F(Form2Test, CancelKeepsWhatWasFoundAndSearchesNoFurtherDrive) {
  Form2& form = OpenSearch();
  form.cboDrives.pick(2);
  form.cboFileType.type("*.*");
  dialogs.onProgress = [&](const ScriptedDialogs::ProgressShown&) { return dialogs.progress.size() < 3; };
  form.cmdSearch.click();
  EXPECT_EQ(dialogs.progress.size(), 3U);
  EXPECT_EQ(form.sb2.panels[0], "Search Cancelled");
  EXPECT_EQ(form.Label3.caption, std::to_string(form.lvFiles.RowCount()));
}

TEST_F(Form2Test, CheckedFilesAreBackedUpAskingBeforeOneReplacesAnother) {
  Form2& form = SearchMail();
  ASSERT_EQ(form.lvFiles.RowCount(), 3U);
  form.cndSelectAll.click();
  form.lvFiles.check(RowOf(form, "C:\\Mail\\b\\Old.dbx"), false);
  dialogs.overwriteAnswers = {OverwriteAnswer::No};
  form.cmdCopyFiles.click();
  EXPECT_THAT(Names(BackupFolderOnHost()), ElementsAre("Inbox.dbx"));
  ASSERT_EQ(dialogs.overwriteQuestions.size(), 1U);
  EXPECT_EQ(dialogs.overwriteQuestions[0].target.Text(), "D:\\Backup\\Inbox.dbx");
  EXPECT_EQ(form.sb2.panels[0], "Copy Complete");
  EXPECT_EQ(form.sb2.panels[1], "1 of 2 files copied: 1 not replaced");
  form.cmdDeselectAll.click();
  form.cmdCopyFiles.click();
  EXPECT_EQ(form.sb2.panels[1], "No files were checked");
  windows->lastBackup.Open();
  EXPECT_THAT(windows->lastBackup.lblBackup.caption.Get(), testing::StartsWith("Back Up Files, "));
  form.lvFiles.check(RowOf(form, "C:\\Mail\\b\\Old.dbx"), true);
  platform->CopyWithFaults().writeError = ENOSPC;
  form.cmdCopyFiles.click();
  EXPECT_EQ(dialogs.messages.back().buttons, MessageButtons::Ok) << "after a single file nothing can go on";
  form.cndSelectAll.click();
  dialogs.overwriteAnswers = {OverwriteAnswer::YesToAll};
  dialogs.messageAnswers = {MessageAnswer::No};
  form.cmdCopyFiles.click();
  EXPECT_EQ(dialogs.messages.back().buttons, MessageButtons::YesNo) << "after one of several it can";

  windows->session.backupFolder.Reset();
  form.cmdCopyFiles.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please select a backup folder or create one from the Tools menu.");
  EXPECT_EQ(form.sb2.panels[0], "");
  form.srchBackup.click();
  EXPECT_EQ(form.Label3.caption, "0");
  EXPECT_EQ(form.sb2.panels[0], "Search Complete");
}

TEST_F(Form2Test, CheckedFilesAreRestoredIntoTheChosenIdentityAfterAYes) {
  Form2& form = SearchMail();
  form.IdentyPth.type("C:\\Store");
  form.cndSelectAll.click();
  dialogs.messageAnswers = {MessageAnswer::No};
  dialogs.messageAnswers.resize(6, MessageAnswer::Yes);
  form.resDBXFiles.click();
  EXPECT_FALSE(std::filesystem::exists(sample.driveC / "Store"));
  EXPECT_THAT(dialogs.LastAsked(), testing::StartsWith("Restoring DBX files will overwrite those"));

  form.cmdDeselectAll.click();
  form.resDBXFiles.click();
  EXPECT_EQ(form.sb2.panels[0], "No Items Restored");

  form.lvFiles.check(RowOf(form, "C:\\Mail\\b\\Inbox.dbx"), true);
  form.resDBXFiles.click();
  EXPECT_EQ(Content(sample.driveC / "Store/Inbox.dbx"), "second");
  EXPECT_EQ(form.sb2.panels[0], "Restore Complete");
  EXPECT_EQ(form.sb2.panels[1], "1 file copied");

  form.IdentyPth.type("This Identity is empty, there are no values to save.");
  form.resDBXFiles.click();
  EXPECT_THAT(dialogs.LastMessage(), testing::StartsWith("There is no message store folder"));
  EXPECT_EQ(form.sb2.panels[0], "") << "nothing is copied to a folder that the marker would name";
  windows->session.backupFolder.Reset();
  form.resDBXFiles.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please select a backup folder or create one from the Tools menu.");
  windows->session.backupFolder.Choose(WinPath(kBackup));
  form.IdentyPth.type("C:\\Mail\\a\\Inbox.dbx");
  form.resDBXFiles.click();
  EXPECT_THAT(dialogs.LastMessage(), testing::StartsWith("The folder \"C:\\Mail\\a\\Inbox.dbx\" cannot be made"));
}

TEST_F(Form2Test, CloseKeepsAndTheCloseBoxForgets) {
  Form2& form = SearchMail();
  form.cboFileType.pick("*.idx");
  form.cmbResIdentity.pick(1);
  form.escape();
  EXPECT_TRUE(windows->form1.visible);
  windows->form1.cmdSearch.click();
  EXPECT_EQ(form.lvFiles.RowCount(), 3U);
  EXPECT_EQ(form.cboFileType.text, "*.idx");
  EXPECT_EQ(form.lblusrname.caption, Identities()[1].username);

  form.close();
  EXPECT_TRUE(!form.visible && windows->form1.visible);
  Store().SetKeyValue(IdentityKey(Identities().front().userId), "Username", "Renamed", ValueType::Sz);
  windows->form1.cmdSearch.click();
  EXPECT_EQ(form.lvFiles.RowCount(), 0U);
  EXPECT_EQ(form.cboFileType.text, "*.dbx");
  EXPECT_EQ(form.Label13.caption, "Outlook Express 5+");
  EXPECT_EQ(form.cboFileType.items->size(), 5U);
  EXPECT_EQ(form.lblusrname.caption, "Renamed") << "the identities are read again";
  EXPECT_EQ(windows->form1.Label7.caption, "Renamed");
}

TEST_F(Form2Test, TheFolderWindowReturnsHereWithTheNewFolder) {
  Form2& form = OpenSearch();
  form.cmdbkfldr2.click();
  EXPECT_TRUE(windows->form3.visible && !form.visible);
  windows->form3.Drive1.pick("C:\\");
  windows->form3.cmdSetPath.click();
  EXPECT_EQ(form.txtbackupPath.caption, "C:\\");
  windows->form3.cmdClse.click();
  EXPECT_TRUE(form.visible && !windows->form1.visible);
}

TEST_F(Form2Test, ADoubleClickOpensTheFolderOfTheRow) {
  Form2& form = SearchMail();
  form.lvFiles.open(RowOf(form, "C:\\Mail\\b\\Old.dbx"));
  EXPECT_THAT(platform->shell.explored, ElementsAre("C:\\Mail\\b\\|/n,/e,/select Old.dbx"));
}

}  // namespace
}  // namespace quillbox
