// SPDX-License-Identifier: GPL-3.0-or-later
// Backups and restores by the main window's buttons: of the selected identity, of all identities, of all there is.
#include "support/host_tricks.h"
#include "support/sample_ids.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

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
  /// Nothing but the backup folder itself may have come to be.
  void ExpectNoBackup() { EXPECT_TRUE(Names(BackupFolderOnHost()).empty()); }
};

TEST_F(QuickBackupTest, TheFolderHoldsExactlyWhatBelongsToTheIdentity) {
  Form1& form = StartOn("Main Identity");
  form.sb1.panels[0] = "old";
  dialogs.onProgress = [&](const auto& /*shown*/) { return !(form.sb1.panels[0] == "old"); };
  WatchStatus();
  form.cmdQuickBackup.click();
  EXPECT_THAT(statuses, Contains("Inbox.dbx Backup Complete"));
  EXPECT_THAT(StatusesButFiles(" Backup Complete"),
              ElementsAre("Adress Book Backup Complete", "{USER_ID} Subkey Backup Complete",
                          "Address Book Subkey Backup Complete", "HKLM Outlook Express Export Complete",
                          "Internet Accounts Manager Subkey Backup Complete", "Backup Complete"));
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
  const std::string target = std::string(kBackup) + "\\Main Identity\\";
  EXPECT_THAT(
      platform->processes.commandLines,
      ElementsAre("regedit /s /e:A \"" + target + "Main Identity.reg\"  HKEY_CURRENT_USER\\Identities\\" +
                      form.Label6.caption.Get(),
                  "regedit /s /e:A \"" + target + "WAB.reg\"  \"HKEY_CURRENT_USER\\Software\\Microsoft\\WAB\"",
                  "regedit /s /e:A \"" + target +
                      "HKLMOutlookExpress.reg\"  \"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Outlook Express\"",
                  "regedit /s /e:A \"" + target +
                      "IAM.reg\"  \"HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts\""));
}

TEST_F(QuickBackupTest, ExistingFilesAreReplacedOnlyWhenThePersonSaysSo) {
  Form1& form = StartOn("Main Identity");
  form.cmdQuickBackup.click();
  const auto inbox = BackupFolderOnHost() / "Main Identity/Inbox.dbx";
  const std::string original = Content(inbox);
  std::ofstream(inbox, std::ios::binary) << "older";

  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel, OverwriteAnswer::Cancel};  // messages, address book
  form.cmdQuickBackup.click();
  EXPECT_EQ(Content(inbox), "older");
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form.sb1.panels[1], Copied(0, "cancelled"));

  form.chkOverwrite.click();
  form.cmdQuickBackup.click();
  EXPECT_EQ(Content(inbox), original);
  EXPECT_EQ(dialogs.overwriteQuestions.size(), 2u);
}

TEST_F(QuickBackupTest, AnEmptyIdentityIsRefusedFirst) {
  Form1& form = StartOn("Guest");
  form.menuBar.click("resDBX");
  EXPECT_THAT(dialogs.LastAsked(), StartsWith("This Identity is empty, there are no files to restore."));
  EXPECT_TRUE(form.visible);
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastAsked(), StartsWith("This Identity is empty, there are no values to save."));
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
  onDisk.File("D/Backup/Main Identity", "a file in the way");
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("D:\\Backup\\Main Identity"));
  EXPECT_EQ(Content(BackupFolderOnHost() / "Main Identity"), "a file in the way");

  std::filesystem::remove_all(BackupFolderOnHost());
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("\"D:\\Backup\" cannot be used because the folder does not exist"));
}

TEST_F(QuickBackupTest, AFullDiskIsOneQuestionAndSaidBesideTheCompletion) {
  Form1& form = StartOn("Main Identity");
  platform->CopyWithFaults().writeError = ENOSPC;
  for (const MessageAnswer answer : {MessageAnswer::Yes, MessageAnswer::No}) {
    dialogs.messages.clear();
    dialogs.messageAnswers = {answer};
    form.cmdQuickBackup.click();
    EXPECT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
    EXPECT_EQ(form.sb1.panels[1], Copied(0, "the disk is full"));
  }
}

TEST_F(QuickBackupTest, AStoreThatIsGoneIsToldAndTheRestBackedUp) {
  Form1& form = StartOn("Main Identity");
  std::filesystem::remove_all(StoreOnHost());
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("\"" + form.Text1.text.Get() + "\" does not exist"));
  EXPECT_EQ(form.sb1.panels[1], "1 message store not copied");
  windows->lastBackup.Open();
  EXPECT_EQ(windows->lastBackup.lvSteps.Text(0, 0), "the messages of \"Main Identity\"");
  EXPECT_EQ(Names(BackupFolderOnHost() / "Main Identity"),
            (std::vector<std::string>{"Ann Miller.wab", "HKLMOutlookExpress.reg", "IAM.reg", "Main Identity.reg",
                                      "WAB.reg"}));
}

TEST_F(QuickBackupTest, FilesOfTheHostThatADiskLinksToAreNeitherCopiedNorReplaced) {
  NEEDS(Links);
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

TEST_F(QuickBackupTest, OfNothingIsNotCompleteAlone) {
  Form1& form = StartOn("Main Identity");
  Store().DeleteKey(CurrentUser("Software\\Microsoft\\WAB"));
  for (const auto& entry : std::filesystem::directory_iterator(StoreOnHost())) std::filesystem::remove(entry);
  form.cmdQuickBackup.click();
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form.sb1.panels[1], "no files copied");
  for (const char* name : {"a..dbx", "b.c.dbx"}) std::ofstream(StoreOnHost() / name, std::ios::binary) << "mail";
  form.cmdQuickBackup.click();
  EXPECT_EQ(form.sb1.panels[1], "no files copied; 2 files left out (full stop in the name)");
}

TEST_F(QuickBackupTest, AnUnknownWindowsCopiesTheFilesAndExportsNothing) {
  Store().DeleteKey({RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion"});
  Form1& form = StartOn("Main Identity");
  EXPECT_THAT(dialogs.Texts(), ElementsAre(HasSubstr("does not say which Windows it is of")));
  EXPECT_THAT(platform->log.Text(), HasSubstr(dialogs.LastMessage()));
  form.menuBar.click("qbk");
  EXPECT_EQ(form.sb1.panels[1], std::string(kLeftOut) + "; no registry keys exported");
  EXPECT_TRUE(platform->processes.commandLines.empty());
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Contains("Inbox.dbx"));
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Not(Contains("IAM.reg")));
  EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
}

constexpr const char* kIamKey = "Software\\Microsoft\\Internet Account Manager\\Accounts";
constexpr const char* kWabKey = "Software\\Microsoft\\WAB";

class CompleteBackupTest : public SampleWindows {
 protected:
  using Files = std::map<std::string, std::string>;

  void SetUp() override {
    MakeDisk();
    form = &Start();
  }
  const IdentityInfo& Identity(const std::string& username) {
    return *std::find_if(Identities().begin(), Identities().end(),
                         [&](const IdentityInfo& identity) { return identity.username == username; });
  }
  std::filesystem::path StoreOf(const std::string& username) { return OnHost(Identity(username).FolderText()); }
  /// Names and bytes of a store's files, those which no backup takes left out.
  static Files FilesIn(const std::filesystem::path& folder) {
    Files files;
    for (const std::string& name : Names(folder)) {
      const bool isLeftOut = name == "Pop3uidl.dbx" || name.find('.') + 4 != name.size();
      if (name.ends_with(".dbx") && !isLeftOut) files[name] = Content(folder / PathOf(name));
    }
    return files;
  }
  void CancelAddressBookRestore() { dialogs.openFileAnswers = {std::nullopt}; }

  Form1* form = nullptr;
};

TEST_F(CompleteBackupTest, AllIdentitiesGetAFolderEachAndEmptyOnesNone) {
  platform->processes.commandLines.clear();
  form->sb1.panels[0] = "old";
  dialogs.onProgress = [this](const auto& /*shown*/) { return !(form->sb1.panels[0] == "old"); };
  form->cmdbkupall.click();
  EXPECT_EQ(form->sb1.panels[0], "Backup Complete");
  EXPECT_EQ(form->sb1.panels[1], std::string("2 Identities Backed Up; ") + kLeftOut);
  EXPECT_EQ(form->cmdbkupall.caption, "Backup All Identities Now");
  EXPECT_EQ(form->pointer, Pointer::Normal);
  EXPECT_EQ(Names(BackupFolderOnHost()), (std::vector<std::string>{"Büro", "Main Identity"}));
  for (const std::string username : {"Büro", "Main Identity"}) {
    std::vector<std::string> expected{"Ann Miller.wab",  "HKLMOutlookExpress.reg", "IAM.reg",
                                      username + ".reg", "SignaturesWinXP.reg",    "WAB.reg"};
    for (const auto& [name, content] : FilesIn(StoreOf(username))) expected.push_back(name);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(Names(BackupFolderOnHost() / PathOf(username)), expected);
    EXPECT_THAT(Content(BackupFolderOnHost() / PathOf(username) / "SignaturesWinXP.reg"), StartsWith("regf"));
  }
  EXPECT_EQ(platform->processes.commandLines.size(), 8u);
  EXPECT_EQ(platform->GetDrives().CurrentDirectory().Text(), kBackup);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CompleteBackupTest, WhatItSavedComesBackAsItWas) {
  const RegistrySnapshot identities = Snapshot(kIdentitiesKey);
  const RegistrySnapshot accounts = Snapshot(kIamKey);
  const RegistrySnapshot addressBook = Snapshot(kWabKey);
  const auto book = OnHost(form->txtwabloc.text);
  const std::string bookContent = Content(book);
  std::map<std::filesystem::path, Files> stores;
  for (const char* username : {"Main Identity", "Büro"}) stores[StoreOf(username)] = FilesIn(StoreOf(username));
  platform->processes.commandLines.clear();

  form->cmdComplete.click();
  EXPECT_EQ(form->sb1.panels[1], std::string("2 Identities Backed Up; ") + kLeftOut);
  EXPECT_EQ(Names(BackupFolderOnHost()),
            (std::vector<std::string>{"AddressBook.reg", "AllIdentities.reg", "Ann Miller.wab", "Büro", "IAM.reg",
                                      "Main Identity"}));
  EXPECT_THAT(Names(BackupFolderOnHost() / PathOf("Büro")), AllOf(Contains("Pop3uidl.dbx"), Not(Contains("IAM.reg"))));
  EXPECT_EQ(platform->processes.commandLines.front(),
            "regedit /s /e:A \"AllIdentities.reg\"  \"HKEY_CURRENT_USER\\Identities\\\"");

  const std::string keptFolder = windows->session.backupFolder.Text();
  for (const IdentityInfo& identity : Identities()) Store().DeleteKey(CurrentUser(IdentityKey(identity.userId)));
  for (const char* key : {kIamKey, kWabKey}) Store().DeleteKey(CurrentUser(key));
  for (const auto& [folder, files] : stores) std::filesystem::remove_all(folder);
  std::filesystem::remove(book);
  platform->EndCommand();
  OpenDisk();
  form = &windows->form1;
  form->Open();
  EXPECT_EQ(form->Label2.caption, "0");

  dialogs.openFileAnswers = {WinPath("D:\\Backup\\Ann Miller.wab")};
  dialogs.onProgress = [&](const auto& /*shown*/) {
    EXPECT_EQ(form->cmdRestore.caption, "Please Wait");
    EXPECT_EQ(form->pointer, Pointer::Hourglass);
    return true;
  };
  WatchStatus();
  form->cmdRestore.click();
  EXPECT_THAT(statuses, Contains("Inbox.dbx Restore Complete"));
  EXPECT_THAT(StatusesButFiles(" Restore Complete"),
              ElementsAre("All Identities Import Complete", "Internet Accounts Manager Import Complete",
                          "Address Book Import Complete", " Address Book Copy Complete", "Restore Complete"));
  EXPECT_EQ(form->cmdRestore.caption, "Complete Restore");
  EXPECT_EQ(form->pointer, Pointer::Normal);
  EXPECT_EQ(form->sb1.panels[1], "");
  EXPECT_EQ(form->Label2.caption, "3");
  EXPECT_EQ(Snapshot(kIdentitiesKey), identities);
  EXPECT_EQ(Snapshot(kIamKey), accounts);
  EXPECT_EQ(Snapshot(kWabKey), addressBook);
  EXPECT_EQ(Content(book), bookContent);
  for (const auto& [folder, files] : stores) {
    EXPECT_EQ(FilesIn(folder), files);
    EXPECT_FALSE(std::filesystem::exists(folder / "Pop3uidl.dbx"));
  }
  EXPECT_EQ(windows->session.backupFolder.Text(), keptFolder);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CompleteBackupTest, WithoutABackupFolderEachStepSaysSo) {
  windows->session.backupFolder.Reset();
  form->cmdComplete.click();
  const std::string folder = "Please select a backup folder or create one from the Tools menu";
  EXPECT_EQ(dialogs.Texts(),
            (std::vector<std::string>{folder + ".", folder + " ", folder + ".", folder + ".", folder + "."}));
  dialogs.messages.clear();
  CancelAddressBookRestore();
  form->cmdRestore.click();
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_EQ(dialogs.LastMessage(), folder + ".");
  EXPECT_EQ(form->sb1.panels[0], "Address Book Import Complete");
}

TEST_F(CompleteBackupTest, ABackupFolderThatIsGoneIsToldOnce) {
  std::filesystem::remove_all(BackupFolderOnHost());
  form->cmdbkupall.click();
  EXPECT_EQ(form->sb1.panels[1], "");
  form->cmdComplete.click();
  ASSERT_EQ(dialogs.messages.size(), 2u);
  for (const Message& message : dialogs.messages) {
    EXPECT_THAT(message.text, AllOf(HasSubstr("backup ended early. What was done until then stays done.\n\n"),
                                    HasSubstr("D:\\Backup: the folder does not exist")));
    EXPECT_EQ(message.icon, MessageIcon::Exclamation);
  }
  EXPECT_EQ(form->cmdbkupall.caption, "Backup All Identities Now");
  CancelAddressBookRestore();
  form->cmdRestore.click();
  EXPECT_THAT(dialogs.Texts(), Contains(StartsWith("The complete restore ended early.")));

  // A folder that holds no backup: three files are missing, and one message names them.
  std::filesystem::create_directories(BackupFolderOnHost());
  dialogs.messages.clear();
  CancelAddressBookRestore();
  form->cmdRestore.click();
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_THAT(dialogs.LastMessage(),
              AllOf(HasSubstr("AllIdentities.reg"), HasSubstr("IAM.reg"), HasSubstr("AddressBook.reg")));
}

TEST_F(CompleteBackupTest, AnIdentityWhoseFolderCannotBeMadeIsNamedAndNotCounted) {
  SetUsername(Identity("Main Identity").userId, "..\\..\\x");
  windows->session.GetInputPaths();
  form->cmdbkupall.click();
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("The backup of \"..\\..\\x\" was not made"));
  EXPECT_EQ(form->sb1.panels[1], "1 Identities Backed Up; 1 identity not backed up");
  EXPECT_EQ(Names(BackupFolderOnHost()), std::vector<std::string>{"Büro"});
  EXPECT_FALSE(std::filesystem::exists(temp / "disk/x"));
  windows->lastBackup.Open();
  EXPECT_EQ(windows->lastBackup.lvSteps.Text(0, 0), "the backup of \"..\\..\\x\"");
}

TEST_F(CompleteBackupTest, OnlyStoresWithAKnownPlaceAreRestored) {
  form->cmdComplete.click();
  onDisk.File("D/Backup/Guest/Inbox.dbx", "a store");
  onDisk.File("D/Backup/Unknown/Inbox.dbx", "of nobody here");
  std::filesystem::remove(BackupFolderOnHost() / "AllIdentities.reg");
  SetUsername(Identity("Main Identity").userId, "..");
  std::filesystem::remove(StoreOf("Büro") / "Inbox.dbx");
  form->chkOverwrite.click();
  dialogs.messages.clear();
  CancelAddressBookRestore();
  form->cmdRestore.click();
  ASSERT_EQ(dialogs.messages.size(), 2u) << "the skipped identities, and the file that is missing";
  EXPECT_THAT(dialogs.messages[0].text, AllOf(HasSubstr("\"Guest\" " + kGuest + ": it was never started"),
                                              HasSubstr("\"..\" " + kMain + ": no folder can have its name")));
  EXPECT_THAT(Names(StoreOf("Büro")), Contains("Inbox.dbx"));
  EXPECT_EQ(Names(BackupFolderOnHost() / "Guest"), std::vector<std::string>{"Inbox.dbx"});
  EXPECT_EQ(form->sb1.panels[0], "Restore Complete");
  EXPECT_EQ(form->sb1.panels[1], "2 message stores not copied");
  EXPECT_THAT(platform->log.Text(), HasSubstr("not copied: the messages of \"Guest\" " + kGuest + ": it was never"));

  const auto folder = StoreOf("Büro");
  std::filesystem::remove_all(folder);
  std::ofstream(folder, std::ios::binary) << "in the way";
  CancelAddressBookRestore();
  form->cmdRestore.click();
  EXPECT_THAT(dialogs.messages[2].text, HasSubstr(": its message store folder \"D:\\Mail\\Office\" cannot be made\n"));
}

TEST_F(CompleteBackupTest, AStoreThatIsNotKnownIsNotAnEmptyIdentity) {
  Store().SetKeyValue(IdentitySettingsKey(kOffice), "Store Root", RegValue(7), ValueType::Dword);
  for (const auto& entry : std::filesystem::directory_iterator(StoreOf("Main Identity"))) {
    std::filesystem::remove(entry);
  }
  for (const std::string& key : {std::string(kWabKey), IdentitySettingsKey(kOffice) + "\\Signatures"}) {
    Store().DeleteKey(CurrentUser(key));
  }
  form->cmdbkupall.click();
  EXPECT_THAT(dialogs.LastMessage(), StartsWith("The messages of \"Büro\" cannot be copied: "));
  EXPECT_EQ(form->sb1.panels[1], "2 Identities Backed Up; no files copied; 1 message store not copied");
  Store().DeleteKey(CurrentUser(IdentityKey(kOffice)));
  windows->session.GetInputPaths();
  form->cmdbkupall.click();
  EXPECT_EQ(form->sb1.panels[1], "1 Identities Backed Up; no files copied");
}

TEST_F(CompleteBackupTest, IdentitiesOfOneNameShareAFolderAndLoseNothingUnasked) {
  SetUsername(kMain, "Twin");
  SetUsername(kOffice, "twin");
  windows->session.GetInputPaths();
  form->chkOverwrite.click();
  form->cmdbkupall.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("Several identities are named \"Twin\""));
  EXPECT_EQ(Names(BackupFolderOnHost()), std::vector<std::string>{"Twin"});
  EXPECT_EQ(form->sb1.panels[1], std::string("2 Identities Backed Up; ") + kLeftOut);

  const auto messages = OnHost(Identities()[0].FolderText());
  const Files before = FilesIn(messages);
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel, OverwriteAnswer::Cancel};
  CancelAddressBookRestore();
  form->cmdRestore.click();
  EXPECT_EQ(FilesIn(messages)["Inbox.dbx"], before.at("Inbox.dbx"));
  EXPECT_THAT(dialogs.messages[dialogs.messages.size() - 2].text, HasSubstr("nothing says whose files"));
}

TEST_F(CompleteBackupTest, CancelOfAQuestionEndsItsStepOnly) {
  form->cmdComplete.click();
  std::filesystem::remove(BackupFolderOnHost() / "Main Identity/Inbox.dbx");
  form->chkOverwrite.click();
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel};  // the address book file
  form->cmdComplete.click();
  EXPECT_EQ(FilesIn(BackupFolderOnHost() / "Main Identity").count("Inbox.dbx"), 1u);
  EXPECT_EQ(form->sb1.panels[0], "Backup Complete");
  EXPECT_THAT(form->sb1.panels[1].Get(),
              AllOf(StartsWith("2 Identities Backed Up; "), HasSubstr(" files copied: cancelled; ")));

  // Cancelled: the files of the first identity, then the address book file. The second identity is asked about again.
  form->chkOverwrite.click();
  std::filesystem::remove(BackupFolderOnHost() / PathOf("Büro/Inbox.dbx"));
  dialogs.overwriteAnswers = {OverwriteAnswer::Cancel, OverwriteAnswer::Cancel, OverwriteAnswer::YesToAll};
  form->cmdbkupall.click();
  EXPECT_EQ(FilesIn(BackupFolderOnHost() / PathOf("Büro")).count("Inbox.dbx"), 1u);
}

TEST_F(CompleteBackupTest, WhatAllItsStepsCouldNotDoIsToldTogether) {
  for (const char* inTheWay : {"AllIdentities.reg", "Büro/SignaturesWinXP.reg"}) {
    onDisk.Folder(std::string("D/Backup/") + inTheWay);
  }
  platform->CopyWithFaults().createError = EROFS;
  dialogs.messageAnswers = {MessageAnswer::Yes};
  form->cmdComplete.click();
  EXPECT_EQ(dialogs.messages.size(), 2u) << "one question for the address book and all stores, one message at the end";
  EXPECT_THAT(dialogs.LastMessage(), AllOf(StartsWith("Not everything was done:"), HasSubstr("AllIdentities.reg"),
                                           HasSubstr("SignaturesWinXP.reg")));
  EXPECT_EQ(form->sb1.panels[0], "Backup Complete");
  EXPECT_THAT(form->sb1.panels[1].Get(),
              AllOf(StartsWith("2 Identities Backed Up; 0 of "), HasSubstr(" files copied: the disk is read-only; ")));

  const WinPath book("D:\\Backup\\Ann Miller.wab");
  onDisk.File("D/Backup/Ann Miller.wab", "book");
  dialogs.openFileAnswers = {book};
  dialogs.overwriteAnswers = {OverwriteAnswer::Yes};
  dialogs.messageAnswers = {MessageAnswer::Yes};
  dialogs.messages.clear();
  form->cmdRestore.click();
  EXPECT_EQ(dialogs.messages.front().buttons, MessageButtons::YesNo) << "the stores are copied after it";
}

}  // namespace
}  // namespace quillbox
