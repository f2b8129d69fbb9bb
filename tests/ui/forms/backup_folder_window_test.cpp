// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/backup_folder_window.h"

#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::Contains;
using ::testing::Not;

class Form3Test : public SampleWindows {
 protected:
  void SetUp() override {
    MakeDisk();
    onDisk.File("C/Backups/note.txt", "n");
  }
  Form3& OpenForm3() {
    Start().menuBar.click("crtbkfldr2");
    return windows->form3;
  }
  void OpenFolder(Form3& form, const std::string& name) {
    for (std::size_t i = 0; i < form.Dir1.items->size(); ++i) {
      if (form.Dir1.FolderAt(i).Name() == name) return form.Dir1.open(i);
    }
    FAIL() << "no folder " << name;
  }
};

TEST_F(Form3Test, OpensInPlaceOfTheMainWindowAtTheBackupFolder) {
  Form3& form = OpenForm3();
  EXPECT_EQ(form.txtbkPth.text, kBackup);
  EXPECT_EQ(form.Dir1.Path().Text(), kBackup);
  EXPECT_THAT(form.Drive1.items.Get(), Contains("C:\\"));
  EXPECT_THAT(form.Drive1.items.Get(), Not(Contains("E:\\")));
  form.close();
  EXPECT_FALSE(form.visible);
  EXPECT_TRUE(windows->form1.visible);
}

TEST_F(Form3Test, APickedFolderBecomesTheBackupFolder) {
  Form3& form = OpenForm3();
  form.Drive1.pick("C:\\");
  EXPECT_EQ(form.txtbkPth.text, "C:\\");
  OpenFolder(form, "Backups");
  EXPECT_EQ(form.txtbkPth.text, "C:\\Backups");
  EXPECT_EQ(form.File1.items, std::vector<std::string>{"note.txt"});
  form.cmdSetPath.click();
  EXPECT_EQ(Read(kIdentitiesKey, "Quillbox"), RegValue("C:\\Backups"));
  EXPECT_EQ(windows->form1.lblbkuppth.caption, "C:\\Backups");
}

TEST_F(Form3Test, ANewFolderIsMadeRightBehindThePathShown) {
  Form3& form = OpenForm3();
  form.Drive1.pick("C:\\");
  OpenFolder(form, "Backups");
  dialogs.inputAnswers = {"\\Mail", "Mail", std::nullopt, "\\a:b"};
  form.cmdMkFolder.click();
  EXPECT_TRUE(std::filesystem::is_directory(sample.driveC / "Backups/Mail"));
  EXPECT_EQ(form.txtbkPth.text, "C:\\Backups\\Mail");
  form.cmdMkFolder.click();
  EXPECT_TRUE(std::filesystem::is_directory(sample.driveC / "BackupsMail"));
  form.cmdMkFolder.click();
  EXPECT_EQ(form.txtbkPth.text, "C:\\BackupsMail");
  form.cmdMkFolder.click();
  EXPECT_EQ(form.txtbkPth.text, "C:\\Backups\\a:b");
  EXPECT_TRUE(dialogs.messages.empty());
  EXPECT_EQ(dialogs.inputs.front().prompt, "Enter folder name");
}

TEST_F(Form3Test, TheListsAreFreshAtEachOpening) {
  Form3& form = OpenForm3();
  form.close();
  onDisk.File("D/Backup/Later/x");
  onDisk.File("D/Backup/later.txt", "x");
  windows->form1.menuBar.click("crtbkfldr2");
  EXPECT_THAT(form.Dir1.items.Get(), Contains("    Later"));
  EXPECT_THAT(form.File1.items.Get(), Contains("later.txt"));
  const std::string drive = form.Drive1.text;
  form.txtbkPth.type("D:\\never");
  form.close();
  windows->form1.menuBar.click("crtbkfldr2");
  EXPECT_EQ(form.Drive1.text, drive) << "the drive stays that of the folders shown";
}

TEST_F(Form3Test, WithoutABackupFolderItStartsAtC) {
  windows->form1.Open();
  windows->form1.menuBar.click("crtbkfldr2");
  EXPECT_EQ(windows->form3.txtbkPth.text, "C:\\");
  EXPECT_EQ(windows->form3.Drive1.text, "C:\\");

  OpenDisk();
  StoreBackupFolder("A:\\gone");
  dialogs.messageAnswers = {MessageAnswer::Yes};
  dialogs.folderAnswers = {WinPath(OnZ(temp.Folder("floppy")))};
  windows->form1.Open();
  windows->form1.menuBar.click("crtbkfldr2");
  EXPECT_EQ(windows->form3.Drive1.items->front(), "A:\\");
  EXPECT_EQ(windows->form3.Drive1.text, "C:\\") << "not at the first drive";
}

TEST_F(Form3Test, AProfileWithoutIdentitiesIsAskedForThePlaceOfTheSetting) {
  Form1& main = windows->form1;
  Store().DeleteKey(CurrentUser(kIdentitiesKey));
  std::filesystem::create_directories(BackupFolderOnHost());
  main.Open();
  dialogs.folderAnswers = {WinPath(kBackup), WinPath(kBackup)};
  dialogs.messageAnswers = {MessageAnswer::No, MessageAnswer::Yes};
  main.menuBar.click("brbkfldr");
  EXPECT_THAT(dialogs.LastMessage(), StartsWith("This profile has no Outlook Express identities yet"));
  main.cmdQuickBackup.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please select a backup folder or create one from the Tools menu");
  main.menuBar.click("brbkfldr");
  EXPECT_EQ(Read(kIdentitiesKey, "Quillbox"), RegValue(kBackup));
  EXPECT_EQ(main.lblbkuppth.caption, kBackup);
}

}  // namespace
}  // namespace quillbox
