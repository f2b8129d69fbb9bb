// SPDX-License-Identifier: GPL-3.0-or-later
// A disk whose registry names what is not its own: nobody who opens it and presses the buttons may lose, give away or
// receive a file of this computer.
#include "support/host_tricks.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

constexpr const char* kNoFolder = "Please select a backup folder or create one from the Tools menu";
constexpr const char* kAskStart = "Please Select A Backup Folder Before Proceeding Further";

class HostileDiskTest : public SampleWindows {
 protected:
  void SetUp() override {
    MakeDisk();
    temp.File("host/.config/kept", "the person's");
    temp.File("host/store/Inbox.dbx", "the person's");
    temp.File("host/book.wab", "the person's");
    onDisk.File("C/evil.desktop", "[Desktop Entry]");
    main = LoadCatalogue(Store(), platform->GetSystemFacts()).defaultUserId;
  }
  /// Every file and folder of the person, with what the files hold.
  std::map<std::string, std::string> Host() {
    std::map<std::string, std::string> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(temp / "host")) {
      all[entry.path().string()] = entry.is_directory() ? "a folder" : Content(entry.path());
    }
    return all;
  }
  void SetStore(const std::string& folder) {
    Store().SetKeyValue(IdentitySettingsKey(main), "Store Root", folder, ValueType::ExpandSz);
  }
  void SetBook(const std::string& file, const char* value = "") {
    Store().SetKeyValue(kAddressBookKey, value, file, ValueType::Sz);
  }
  std::string Stored() { return Read(kIdentitiesKey, "Quillbox").AsText(); }
  Form1& Open() {
    windows->form1.Open();
    return windows->form1;
  }
  /// Nothing on the disk itself is asked about.
  Form1& OpenAtMain() {
    Form1& form = Start();
    form.cmbUserIDs.pick(main);
    if (!form.chkOverwrite.checked) form.chkOverwrite.click();
    dialogs.messages.clear();
    return form;
  }

  std::string main;
  const std::string config = OnZ(temp / "host/.config");
};

TEST_F(HostileDiskTest, OnePressOfTheQuickBackupInstallsNoProgram) {
  StoreBackupFolder(config);
  SetUsername(main, "autostart");
  SetBook("C:\\evil.desktop");
  const auto before = Host();
  dialogs.messageAnswers = {MessageAnswer::No};
  Form1& form = Open();
  EXPECT_THAT(dialogs.Texts(),
              ElementsAre("The registry of this disk names " + config + " as the backup folder. Use it?", kAskStart));
  ASSERT_FALSE(dialogs.messages.empty());
  EXPECT_TRUE(dialogs.messages.front().noIsDefault);
  form.cmbUserIDs.pick(main);
  form.cmdQuickBackup.click();
  EXPECT_EQ(dialogs.LastMessage(), kNoFolder);
  form.cmdbkupall.click();
  form.menuBar.click("opnbkfldr");
  form.menuBar.click("dbxFiles");
  EXPECT_THAT(platform->shell.explored, ElementsAre("None Selected"));
  EXPECT_EQ(form.lblbkuppth.caption, "None Selected");
  EXPECT_EQ(form.lblbkuppth.colour, Colour::Red);
  EXPECT_EQ(windows->form2.txtbackupPath.caption, "None Selected");
  EXPECT_THAT(windows->form3.txtbkPth.text.Get(), Not(HasSubstr("Z:")));
  EXPECT_EQ(Host(), before);
  EXPECT_EQ(Stored(), config) << "a refusal leaves what is stored";
}

TEST_F(HostileDiskTest, ConsentIsAskedForOnceAndRemembered) {
  StoreBackupFolder(config);
  dialogs.messageAnswers = {MessageAnswer::Yes};
  EXPECT_EQ(Open().lblbkuppth.caption, config);
  windows->form1.cmbUserIDs.pick(main);
  windows->form1.cmdQuickBackup.click();
  EXPECT_EQ(windows->form1.sb1.panels[0], "Backup Complete");
  EXPECT_TRUE(std::filesystem::exists(temp / "host/.config/Main Identity/Inbox.dbx"));
  platform->EndCommand();
  OpenDisk();
  EXPECT_EQ(Open().lblbkuppth.caption, config);
  EXPECT_EQ(dialogs.messages.size(), 1U);

  // A folder that is gone is no longer the backup folder, as on any drive.
  std::filesystem::remove_all(temp / "host/.config");
  OpenDisk();
  EXPECT_EQ(Open().lblbkuppth.caption, "None Selected");
  EXPECT_EQ(Stored(), "None Selected");
}

TEST_F(HostileDiskTest, WhatThePersonChoosesInTheWindowsNeedsNoQuestion) {
  Form1& form = Start();
  dialogs.folderAnswers = {WinPath(config)};
  form.menuBar.click("brbkfldr");
  EXPECT_EQ(form.lblbkuppth.caption, config);
  form.menuBar.click("crtbkfldr2");
  windows->form3.txtbkPth.type(OnZ(temp / "host/store"));
  windows->form3.cmdSetPath.click();
  EXPECT_EQ(form.lblbkuppth.caption, OnZ(temp / "host/store"));
  platform->EndCommand();
  OpenDisk();
  EXPECT_EQ(Open().lblbkuppth.caption, OnZ(temp / "host/store"));
  EXPECT_TRUE(dialogs.messages.empty());
  // What was chosen before is not remembered for a registry that names it again.
  StoreBackupFolder(config);
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_FALSE(windows->session.backupFolder.Check(true).folder);
  EXPECT_FALSE(windows->session.backupFolder.Check(true).folder) << "No holds for the run";
}

TEST_F(HostileDiskTest, SystemFoldersAndTheDiskItselfAreNeitherOfferedNorTaken) {
  NEEDS(MountPoints);
  std::filesystem::create_directory_symlink(sample.driveC, temp / "host/link");
  std::filesystem::create_directory_symlink("/proc/self", temp / "host/status");
  std::filesystem::create_directory_symlink("loop", temp / "host/loop");
  for (const std::string& folder :
       {OnZ(temp / "host/status/fd"), std::string("Z:\\PROC\\self\\fd"), std::string("Z:\\sys\\kernel"),
        std::string("z:/tmp/../dev"), OnZ(sample.driveD), OnZ(temp / "host/link/Mail"), OnZ(temp / "host/loop/x")}) {
    Form1& form = Start();
    dialogs.messages.clear();
    dialogs.folderAnswers = {WinPath(folder)};
    form.menuBar.click("brbkfldr");
    EXPECT_THAT(dialogs.Texts(), ElementsAre(HasSubstr("\"" + folder + "\" cannot be the backup folder: ")));
    windows->form3.txtbkPth.type(folder);
    windows->form3.cmdSetPath.click();
    form.menuBar.click("addBookFile");
    EXPECT_EQ(dialogs.messages.size(), 3U);
    EXPECT_THAT(dialogs.Texts(), Each(HasSubstr("cannot be the backup folder")));
    EXPECT_EQ(Stored(), kBackup);
    EXPECT_EQ(windows->form2.txtbackupPath.caption, kBackup);

    StoreBackupFolder(folder);
    platform->EndCommand();
    OpenDisk();
    dialogs.messages.clear();
    EXPECT_EQ(Open().lblbkuppth.caption, "None Selected");
    EXPECT_THAT(dialogs.Texts(), ElementsAre(kAskStart));
    EXPECT_THAT(platform->log.lines, Contains(HasSubstr("cannot be the backup folder")));
    EXPECT_EQ(Stored(), folder);
  }
}

TEST_F(HostileDiskTest, AUsernameLeadsNotFromAFolderAboveTheDiskIntoIt) {
  windows->session.backupFolder.Choose(WinPath(OnZ(temp / "disk")));
  SetUsername(main, "D");
  Form1& form = Open();
  form.cmbUserIDs.pick(main);
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.LastMessage(), AllOf(HasSubstr("The backup of \"D\" was not made"), HasSubstr("of the disk")));
  EXPECT_THAT(Names(sample.driveD), Not(Contains("IAM.reg")));
}

TEST_F(HostileDiskTest, AStoreOfThisComputerIsNeitherReadNorWritten) {
  const std::string folder = OnZ(temp / "host/store");
  SetStore(folder);
  const auto before = Host();
  Form1& form = OpenAtMain();
  EXPECT_EQ(form.Text1.text, folder) << "what is stored is shown";
  const auto refusal = AllOf(HasSubstr(folder), HasSubstr("\"Store Root\" of HKEY_CURRENT_USER\\Identities\\" + main),
                             HasSubstr("that Windows has no such drive"));
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(refusal));
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Not(Contains("Inbox.dbx")));

  dialogs.messages.clear();
  form.cmdComplete.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(refusal));
  onDisk.File("D/Backup/Main Identity/Inbox.dbx", "evil");
  onDisk.File("D/Backup/Main Identity/.bashrc.dbx", "evil");
  dialogs.messages.clear();
  dialogs.openFileAnswers = {std::nullopt};
  form.cmdRestore.click();
  EXPECT_THAT(dialogs.Texts(), Contains(refusal));

  dialogs.messages.clear();
  form.cmbUserIDs.pick(main);
  form.cmdOpenFolder.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(refusal));
  EXPECT_THAT(platform->shell.explored, IsEmpty());

  form.menuBar.click("resDBX");
  Form2& search = windows->form2;
  search.srchBackup.click();
  search.cndSelectAll.click();
  search.cmbResIdentity.pick(main);
  dialogs.messageAnswers = {MessageAnswer::Yes, MessageAnswer::Yes};
  search.resDBXFiles.click();
  EXPECT_THAT(dialogs.LastMessage(), refusal);
  search.IdentyPth.type(OnZ(temp / "host"));
  search.resDBXFiles.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("that Windows has no such drive"));

  form.menuBar.click("CloneIdentity");
  Form4& clone = windows->form4;
  clone.cmbSource.pick(main);
  for (std::size_t i = 0; i < clone.cmbDestination.items->size(); ++i) {
    if (clone.cmbDestination.items->at(i) != main) clone.cmbDestination.pick(i);
  }
  clone.Check1.click();
  clone.chkCopyDBX.click();
  clone.cmdClone.click();
  EXPECT_THAT(dialogs.LastMessage(), refusal);
  EXPECT_EQ(Host(), before);
}

TEST_F(HostileDiskTest, ANewIdentitysFolderIsNotMadeOnThisComputer) {
  const auto before = Host();
  Store().SetKeyValue("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", "Local AppData",
                      OnZ(temp / "host"), ValueType::Sz);
  OpenAtMain().menuBar.click("crtnewID");
  dialogs.messageAnswers = {MessageAnswer::Yes};
  dialogs.inputAnswers = {"New"};
  windows->form7.cmdCreateNewIdentity.click();
  EXPECT_THAT(dialogs.LastMessage(), AllOf(HasSubstr("\"Local AppData\""), HasSubstr("no such drive")));
  EXPECT_EQ(Host(), before);
}

TEST_F(HostileDiskTest, AnAddressBookOfThisComputerIsNeitherReadNorWritten) {
  const std::string file = OnZ(temp / "host/book.wab");
  SetBook(file);
  const auto before = Host();
  Form1& form = OpenAtMain();
  EXPECT_EQ(form.txtwabloc.text, file);
  const auto refusal = HasSubstr(
      "which the disk's registry names in the default value of HKEY_CURRENT_USER\\Software\\"
      "Microsoft\\WAB\\WAB4\\Wab File Name, is not used: that Windows has no such drive");
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(AllOf(HasSubstr(file), refusal)));
  dialogs.messages.clear();
  form.cmdbkupall.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(refusal)) << "once for all identities";
  form.menuBar.click("lastBackup");
  EXPECT_EQ(windows->lastBackup.lvSteps.Text(1, 0), "the address book");
  windows->lastBackup.close();
  dialogs.openFileAnswers = {WinPath("C:\\evil.desktop"), std::nullopt};
  dialogs.folderAnswers = {WinPath("D:\\")};
  for (const char* item : {"addBookFile", "resWAB", "MoveWAB"}) {
    dialogs.messages.clear();
    form.menuBar.click(item);
    EXPECT_THAT(dialogs.Texts(), ElementsAre(refusal)) << item;
  }
  dialogs.messages.clear();
  form.cmdShowAdditionalInfo.click();
  form.cmdOpenWab.click();
  form.menuBar.click("chAddBk");
  windows->form6.cmdBrowse1.click();
  EXPECT_THAT(dialogs.openFileDialogs.back().folder.Text(), Not(HasSubstr("Z:")));
  windows->form6.Command1.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(refusal, refusal));
  EXPECT_THAT(windows->form9.lstFiles9.items.Get(), IsEmpty());
  EXPECT_THAT(platform->shell.explored, IsEmpty());
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Not(Contains(EndsWith(".wab"))));
  EXPECT_EQ(Host(), before);
}

TEST_F(HostileDiskTest, TheAddressBookWindowsTakeTheDisksDrivesOnly) {
  const std::string file = OnZ(temp / "host/book.wab");
  SetBook(file, "WAB1");
  SetBook(file, "WABBackup");
  const std::string inUse = Read(kAddressBookKey, "").AsText();
  OpenAtMain().menuBar.click("chAddBk");
  Form6& form = windows->form6;
  EXPECT_EQ(form.Option2.caption, "book.wab");
  dialogs.openFileAnswers = {WinPath(file)};
  dialogs.folderAnswers = {WinPath(OnZ(temp / "host")), WinPath(OnZ(temp / "host"))};
  form.Option2.click();
  form.cmdRestore.click();
  EXPECT_EQ(form.txtRestore.text, file);
  form.cmdBrowse1.click();
  form.cmdChangeWab.click();
  form.Command1.click();
  const std::string listed = windows->form9.txtOutPath3.text;
  windows->form9.cmdBrowse1.click();
  EXPECT_EQ(windows->form9.txtOutPath3.text, listed);
  windows->form1.menuBar.click("MoveWAB");
  EXPECT_THAT(dialogs.Texts(), ElementsAre(HasSubstr("\"WAB1\""), HasSubstr("\"WABBackup\""), HasSubstr("book.wab"),
                                           HasSubstr("host"), HasSubstr("host")));
  EXPECT_THAT(dialogs.Texts(), Each(HasSubstr("that Windows has no such drive")));
  EXPECT_EQ(form.sb1.panels[0], "");
  EXPECT_EQ(Read(kAddressBookKey, "").AsText(), inUse);
}

TEST_F(HostileDiskTest, AnAddressBookWithAWayOutInItsNameStaysInTheBackup) {
  SetBook("C:\\a/../../../../evil.desktop");
  OpenAtMain().cmdQuickBackup.click();
  EXPECT_TRUE(dialogs.messages.empty());
  EXPECT_THAT(Names(BackupFolderOnHost() / "Main Identity"), Contains("evil.desktop"));
  EXPECT_THAT(Names(sample.driveD), Not(Contains("evil.desktop")));
}

TEST_F(HostileDiskTest, AnIdentityWithAForgedNameIsOneLineAndCanBeChosen) {
  const std::string name = "Ann\n\nThe backup is complete.\u202E\x1B[2J";
  SetUsername(main, name);
  SetStore("C:\\Mail\nbox");
  Form1& form = OpenAtMain();
  form.cmbUserNames.pick(name);
  EXPECT_EQ(form.Label6.caption, main);
  form.cmdQuickBackup.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre(AllOf(HasSubstr("Ann\u240A\u240AThe backup is complete.\uFFFD\u241B[2J"),
                                                 HasSubstr("it contains a control character"), Not(HasSubstr("\n")))));
  onDisk.File("D/Backup/note", "");
  dialogs.openFileAnswers = {std::nullopt};
  form.cmdRestore.click();
  for (const std::string& text : dialogs.Texts())
    EXPECT_THAT(text, AllOf(Not(HasSubstr("\n\nThe backup")), Not(HasSubstr("\x1B"))));
  EXPECT_EQ(Read(IdentityKey(main), "Username"), RegValue(name)) << "showing changes nothing";
}

}  // namespace
}  // namespace quillbox
