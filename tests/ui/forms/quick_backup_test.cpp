#include "support/faulty_copy_io.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAreArray;

class QuickBackupTest : public SampleWindows {
 protected:
  Form1& StartOn(const std::string& username) {
    Form1& form = Start();
    form.cmbUserNames.pick(username);
    return form;
  }
  std::filesystem::path StoreOnHost() { return OnHost(windows->form1.Text1.text); }
  void Rename(const std::string& username) {
    SetUsername(windows->form1.Label6.caption, username);
    windows->session.GetInputPaths();
    windows->form1.cmbUserNames.pick(username);
  }
  /// The files that a quick backup of the selected identity copies.
  std::vector<std::string> Copies() {
    std::vector<std::string> names = Names(StoreOnHost());
    std::erase_if(names, [](const std::string& name) {
      return !name.ends_with(".dbx") || name == "Pop3uidl.dbx" || name.find('.') != name.size() - 4;
    });
    names.push_back("Ann Miller.wab");
    return names;
  }
  /// "0 of 12 files copied: REASON; 1 file left out ...".
  std::string Copied(std::size_t count, const char* reason) {
    return std::to_string(count) + " of " + std::to_string(Copies().size()) + " files copied: " + reason + "; " +
           kLeftOut;
  }
  FaultyCopyIo& CopyWithFaults() {
    auto io = std::make_unique<FaultyCopyIo>();
    FaultyCopyIo& faults = *io;
    platform->CopyWith(std::move(io));
    return faults;
  }
  /// Nothing but the backup folder itself may have come to be.
  void ExpectNoBackup() { EXPECT_TRUE(Names(BackupFolderOnHost()).empty()); }
};

TEST_F(QuickBackupTest, TheFolderHoldsExactlyWhatBelongsToTheIdentity) {
  Form1& form = StartOn("Main Identity");
  form.cmdQuickBackup.click();
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form.sb1.panels[1], kLeftOut);
  EXPECT_THAT(platform->log.Text(), HasSubstr("comp.lang.c++.dbx: its name has a full stop"));
  EXPECT_EQ(form.cmdQuickBackup.caption, "QuickBackup --- Backup The Selected Identity Now");
  EXPECT_EQ(form.pointer, Pointer::Normal);
  EXPECT_TRUE(dialogs.messages.empty());

  std::vector<std::string> expected = Copies();
  for (const char* file : {"HKLMOutlookExpress.reg", "IAM.reg", "Main Identity.reg", "WAB.reg"}) {
    expected.emplace_back(file);
  }
  const auto folder = BackupFolderOnHost() / "Main Identity";
  EXPECT_THAT(Names(folder), UnorderedElementsAreArray(expected));
  EXPECT_EQ(Content(folder / "Inbox.dbx"), Content(StoreOnHost() / "Inbox.dbx"));
  EXPECT_EQ(std::filesystem::last_write_time(folder / "Inbox.dbx"),
            std::filesystem::last_write_time(StoreOnHost() / "Inbox.dbx"));
  EXPECT_THAT(Content(folder / "Main Identity.reg"),
              HasSubstr("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities\\" + form.Label6.caption.Get() + "]\r\n"));
  EXPECT_THAT(Content(folder / "IAM.reg"), HasSubstr("\"Account Name\"="));
  EXPECT_EQ(platform->GetDrives().CurrentDirectory().Text(), kBackup);
}

TEST_F(QuickBackupTest, ExportsRunInOrderWithTheirCommandLines) {
  Form1& form = StartOn("Main Identity");
  form.menuBar.click("qbk");
  const std::string folder = std::string(kBackup) + "\\Main Identity\\";
  EXPECT_THAT(
      platform->processes.commandLines,
      ElementsAre("regedit /s /e:A \"" + folder + "Main Identity.reg\"  HKEY_CURRENT_USER\\Identities\\" +
                      form.Label6.caption.Get(),
                  "regedit /s /e:A \"" + folder + "WAB.reg\"  \"HKEY_CURRENT_USER\\Software\\Microsoft\\WAB\"",
                  "regedit /s /e:A \"" + folder +
                      "HKLMOutlookExpress.reg\"  \"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Outlook Express\"",
                  "regedit /s /e:A \"" + folder +
                      "IAM.reg\"  \"HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts\""));
}

TEST_F(QuickBackupTest, ExistingFilesAreReplacedOnlyWhenThePersonSaysSo) {
  Form1& form = StartOn("Main Identity");
  form.cmdQuickBackup.click();
  const auto inbox = BackupFolderOnHost() / "Main Identity/Inbox.dbx";
  const std::string original = Content(inbox);
  std::ofstream(inbox) << "older";

  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel, OverwriteAnswer::Cancel};  // messages, address book
  form.cmdQuickBackup.click();
  EXPECT_EQ(Content(inbox), "older");
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form.sb1.panels[1], Copied(0, "cancelled"));

  dialogs.overwriteAnswers = {OverwriteAnswer::YesToAll};
  form.cmdQuickBackup.click();
  EXPECT_EQ(Content(inbox), original);
  EXPECT_EQ(dialogs.overwriteQuestions.size(), 3u);

  std::ofstream(inbox) << "older";
  form.chkOverwrite.click();
  form.cmdQuickBackup.click();
  EXPECT_EQ(Content(inbox), original);
  EXPECT_EQ(dialogs.overwriteQuestions.size(), 3u);
}

TEST_F(QuickBackupTest, WhatCannotBeBackedUpIsRefusedFirst) {
  Form1& form = StartOn("Guest");
  form.cmdQuickBackup.click();
  EXPECT_EQ(dialogs.LastMessage(),
            "This Identity is empty, there are no values to save. Please select another Identity.");
  EXPECT_EQ(dialogs.messages.back().icon, MessageIcon::Exclamation);

  form.cmbUserNames.pick("Main Identity");
  windows->session.backupFolder.Reset();
  form.cmdQuickBackup.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please select a backup folder or create one from the Tools menu");
  ExpectNoBackup();
  EXPECT_TRUE(platform->processes.commandLines.empty());
}

TEST_F(QuickBackupTest, AUsernameNeverLeavesTheBackupFolder) {
  Form1& form = StartOn("Main Identity");
  for (const char* username : {"..\\..\\x", "..", "CON", "a:b", "a/b", ""}) {
    SCOPED_TRACE(username);
    dialogs.messages.clear();
    Rename(username);
    form.cmdQuickBackup.click();
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_THAT(dialogs.LastMessage(), HasSubstr(std::string("The backup of \"") + username + "\" was not made"));
    EXPECT_EQ(form.sb1.panels[0], "");
    EXPECT_EQ(form.pointer, Pointer::Normal);
  }
  ExpectNoBackup();
  EXPECT_TRUE(platform->processes.commandLines.empty());
  EXPECT_FALSE(std::filesystem::exists(sample.driveD / "x"));
}

TEST_F(QuickBackupTest, AFolderThatCannotBeMadeIsNamedWithTheReason) {
  Form1& form = StartOn("Main Identity");
  temp.File("disk/D/Backup/Main Identity", "a file in the way");
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("D:\\Backup\\Main Identity"));
  EXPECT_EQ(Content(BackupFolderOnHost() / "Main Identity"), "a file in the way");

  std::filesystem::remove_all(BackupFolderOnHost());
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("\"D:\\Backup\" cannot be used because the folder does not exist"));
}

TEST_F(QuickBackupTest, AFullDiskIsOneQuestionAndSaidBesideTheCompletion) {
  Form1& form = StartOn("Main Identity");
  CopyWithFaults().writeError = ENOSPC;
  for (const MessageAnswer answer : {MessageAnswer::Yes, MessageAnswer::No}) {
    dialogs.messages.clear();
    dialogs.messageAnswers = {answer};
    form.cmdQuickBackup.click();
    EXPECT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
    EXPECT_EQ(form.sb1.panels[1], Copied(0, "the disk is full"));
  }
}

TEST_F(QuickBackupTest, DamagedFilesAreCountedBesideTheCompletion) {
  Form1& form = StartOn("Main Identity");
  form.cmdQuickBackup.click();
  const auto folder = BackupFolderOnHost() / "Main Identity";
  const std::string good = Content(folder / "Inbox.dbx");
  CopyWithFaults().unreadable["Inbox.dbx"] = {{0x800, 1}};
  form.chkOverwrite.click();
  dialogs.messageAnswers = {MessageAnswer::Yes};
  form.cmdQuickBackup.click();
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form.sb1.panels[1], Copied(Copies().size() - 1, "1 kept as damaged"));
  EXPECT_EQ(Content(folder / "Inbox.dbx"), good);
  EXPECT_EQ(Content(folder / "Inbox (damaged).dbx"), std::string(good).replace(0x800, 0x200, 0x200, '\0'));
}

TEST_F(QuickBackupTest, AStoreThatIsGoneIsToldAndTheRestBackedUp) {
  Form1& form = StartOn("Main Identity");
  std::filesystem::remove_all(StoreOnHost());
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("\"" + form.Text1.text.Get() + "\" does not exist"));
  EXPECT_EQ(form.sb1.panels[1], "1 message store not copied");
  EXPECT_EQ(Names(BackupFolderOnHost() / "Main Identity"),
            (std::vector<std::string>{"Ann Miller.wab", "HKLMOutlookExpress.reg", "IAM.reg", "Main Identity.reg",
                                      "WAB.reg"}));
}

TEST_F(QuickBackupTest, FilesOfTheHostThatADiskLinksToAreNeitherCopiedNorReplaced) {
  temp.File("bashrc", "the person's own");
  Form1& form = StartOn("Main Identity");
  std::filesystem::remove(StoreOnHost() / "Inbox.dbx");
  std::filesystem::create_symlink(temp / "bashrc", StoreOnHost() / "Inbox.dbx");
  std::filesystem::create_directories(BackupFolderOnHost() / "Main Identity");
  std::filesystem::create_symlink(temp / "bashrc", BackupFolderOnHost() / "Main Identity/WAB.reg");
  const std::string messages = form.Text1.text;
  dialogs.messageAnswers = {MessageAnswer::Yes};
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.Texts(),
              Contains(HasSubstr("Cannot copy Inbox.dbx.\n\n" + messages + "\\Inbox.dbx: it leads out of the disk.")));
  EXPECT_THAT(dialogs.Texts(),
              Contains(HasSubstr(std::string(kBackup) + "\\Main Identity\\WAB.reg: it leads out of the disk")));
  EXPECT_EQ(form.sb1.panels[1], Copied(Copies().size() - 1, "it leads out of the disk"));
  EXPECT_EQ(Content(temp / "bashrc"), "the person's own");
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Not(Contains("Inbox.dbx")));
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Contains("Folders.dbx"));

  const auto host = StoreOnHost();
  std::filesystem::rename(host, temp / "store");
  std::filesystem::create_directory_symlink(temp / "store", host);
  form.chkOverwrite.click();
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.Texts(),
              Contains("The messages of \"Main Identity\" cannot be copied: its message store folder \"" + messages +
                       "\" cannot be used: it leads out of the disk. The rest of the backup goes on."));
}

TEST_F(QuickBackupTest, AnUnknownWindowsCopiesTheFilesAndExportsNothing) {
  Store().DeleteKey({RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion"});
  Form1& form = StartOn("Main Identity");
  const std::string why =
      "Registry backups are switched off because the registry does not say which Windows it is of: it has no "
      "\"ProductName\" in HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\CurrentVersion or "
      "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion. Files are backed up all the same.";
  EXPECT_THAT(dialogs.Texts(), ElementsAre(why));
  EXPECT_THAT(platform->log.Text(), HasSubstr(why));
  form.cmdQuickBackup.click();
  EXPECT_EQ(form.sb1.panels[1], std::string(kLeftOut) + "; no registry keys exported");
  EXPECT_TRUE(platform->processes.commandLines.empty());
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Contains("Inbox.dbx"));
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Not(Contains("IAM.reg")));
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
}

}  // namespace
}  // namespace quillbox
