// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/export_mail_window.h"

#include "sample/sample_mail.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

class ExportMailTest : public SampleWindows {
 protected:
  ExportMailForm& Open() {
    windows->form1.menuBar.click("exportMail");
    return windows->exportMail;
  }
  /// "[x] Inbox | 3 | 13 KB | copy of ..." of each row.
  std::vector<std::string> Rows() {
    const ListView& list = windows->exportMail.lvFolders;
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < list.RowCount(); ++row) {
      rows.push_back(std::string(list.IsChecked(row) ? "[x] " : "[ ] ") + list.Text(row, 0) + " | " +
                     list.Text(row, 1) + " | " + list.Text(row, 3));
    }
    return rows;
  }
};

TEST_F(ExportMailTest, ListsAnIdentitysFoldersAndExportsThemAll) {
  Start();
  ExportMailForm& form = Open();
  EXPECT_EQ(form.cmbIdentity.items->size(), 2U) << "the third identity has no mail";
  EXPECT_THAT(Rows(), ElementsAre("[x] Inbox | 3 | ", "[x] Outbox | 0 | ", "[x] Sent Items | 3 | ",
                                  "[x] Deleted Items | 3 | ", "[x] Drafts | 3 | ", "[x] Choir | 3 | ",
                                  "[x] news.example.net | 0 | ", "[x]     comp.lang.c++ | 3 | "));
  EXPECT_THAT(form.lblTotal.caption.Get(), StartsWith("8 folders, 18 messages, "));
  EXPECT_FALSE(form.cmdOpenTarget.enabled);
  form.cmdExport.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please choose the folder to export to.");
  dialogs.folderAnswers = {WinPath("D:\\Out")};
  form.cmdBrowse.click();
  form.optFiles.click();
  form.cmdExport.click();
  EXPECT_THAT(dialogs.LastAsked(),
              AllOf(StartsWith("All mail of the folders that you chose was exported, read back and compared.\n\n"
                               "18 of 18 messages are in D:\\Out.\n\nWhat became of each folder is in "
                               "D:\\Out\\Export Reports\\20"),
                    EndsWith(".txt. [OK, information]")));
  EXPECT_EQ(form.sb1.panels[0], "All mail was exported");
  EXPECT_EQ(Rows()[0], "[x] Inbox | 3 | 3 written");
  EXPECT_THAT(Names(onDisk / "D/Out"), ElementsAre("Export Reports", "Main Identity"));
  EXPECT_EQ(Names(onDisk / "D/Out/Main Identity/Inbox").size(), 3U);
  form.cmdOpenTarget.click();
  EXPECT_EQ(platform->shell.explored, std::vector<std::string>{"D:\\Out"});
  form.cmdClose.click();
  EXPECT_TRUE(windows->form1.visible);
}

TEST_F(ExportMailTest, SaysWhatIsMissingAndNeverDone) {
  Start();
  ExportMailForm& form = Open();
  const std::string inbox = NameOf(OnHost(form.lblSource.caption) / "Inbox.dbx");
  std::filesystem::resize_file(PathOf(inbox), 10'000);
  std::filesystem::remove(PathOf(inbox).parent_path() / "Choir.dbx");
  form.cmbIdentity.pick(0);
  EXPECT_THAT(Rows(), Contains("[x] Choir | 0 | the file Choir.dbx is not there"));
  form.txtTarget.type(" D:\\Out ");
  form.cmdExport.click();
  EXPECT_THAT(dialogs.LastAsked(), AllOf(StartsWith("NOT all mail was exported: 2 folders are not complete.\n\n"
                                                    "12 of 18 messages are in D:\\Out."),
                                         EndsWith(" [OK, exclamation]")));
  EXPECT_EQ(form.sb1.panels[0], "NOT all mail was exported");
  EXPECT_THAT(Rows()[0], HasSubstr("NOT COMPLETE, 0 of 3: "));
  EXPECT_THAT(Rows()[5], HasSubstr("NOT WRITTEN: "));
  EXPECT_THAT(onDisk.Read("D/Out/Export Reports/" + Names(onDisk / "D/Out/Export Reports")[0]),
              HasSubstr("Choir: NOT COMPLETE\r\n"));
  dialogs.onProgress = [](const auto&) { return false; };
  form.cmdExport.click();
  EXPECT_THAT(dialogs.LastMessage(), StartsWith("The export was cancelled, so mail is missing."));
  EXPECT_EQ(form.sb1.panels[0], "The export was cancelled");
  form.cmdDeselectAll.click();
  form.cmdExport.click();
  EXPECT_EQ(dialogs.LastMessage(), "No folder is checked, so there is nothing to export.");
  form.cmdSelectAll.click();
  form.txtTarget.type(form.lblSource.caption.Get() + "\\Out");
  form.cmdExport.click();
  EXPECT_THAT(dialogs.LastMessage(), EndsWith("it is the folder that the mail is read from, or below it."));
  EXPECT_FALSE(form.cmdOpenTarget.enabled);
}

TEST_F(ExportMailTest, TakesAnyFolderAndOffersCopiesToBeMerged) {
  Start();
  const auto inbox = [](std::size_t count) {
    const Bytes bytes = MessageStore(SampleMail(MailTopic::Inbox, count));
    return std::string(bytes.begin(), bytes.end());
  };
  onDisk.File("D/Old/Inbox.dbx", inbox(2));
  onDisk.File("D/Old/Inbox (1).dbx", inbox(3));
  ExportMailForm& form = Open();
  dialogs.folderAnswers = {std::nullopt, WinPath("D:\\Old")};
  form.cmdFromFolder.click();
  EXPECT_EQ(Rows().size(), 8U) << "the choice of a folder was cancelled";
  form.cmdFromFolder.click();
  EXPECT_EQ(form.lblSource.caption, "D:\\Old");
  EXPECT_EQ(form.cmbIdentity.text, "");
  EXPECT_THAT(form.lblTotal.caption.Get(), EndsWith(" - Folders.dbx is not there"));
  EXPECT_THAT(Rows(), ElementsAre("[x] Inbox | 2 | ", "[ ] Inbox (1) | 3 | copy of Inbox"));
  form.chkMerge.click();
  form.chkRecover.click();
  EXPECT_THAT(Rows()[1], StartsWith("[x]"));
  form.txtTarget.type("D:\\Out");
  form.optMaildir.click();
  form.cmdExport.click();
  EXPECT_THAT(Rows(), ElementsAre("[x] Inbox | 2 | 3 written, 2 there before", "[x] Inbox (1) | 3 | copy of Inbox"));
  EXPECT_EQ(Names(onDisk / "D/Out/Old/.Inbox/cur").size(), 3U);
  form.chkMerge.click();
  EXPECT_THAT(Rows()[1], StartsWith("[ ]"));
}

TEST_F(ExportMailTest, WorksWithoutAnIdentity) {
  Store().DeleteKey(CurrentUser(kIdentitiesKey));
  windows->form1.Open();
  onDisk.File("D/Old/Inbox.dbx", "not a store");
  ExportMailForm& form = Open();
  EXPECT_THAT(form.lblSource.caption.Get(), StartsWith("No identity has mail here."));
  form.cmdExport.click();
  form.chkMerge.click();
  dialogs.folderAnswers = {WinPath("D:\\Old")};
  form.cmdFromFolder.click();
  EXPECT_THAT(Rows(), ElementsAre(StartsWith("[x] Inbox | 0 | offset 0x0: ")));
}

}  // namespace
}  // namespace quillbox
