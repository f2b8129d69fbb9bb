// SPDX-License-Identifier: GPL-3.0-or-later
// The windows that manage identities, and the main window's commands beside them.
#include "identities/create_identity.h"
#include "identities/user_id.h"
#include "support/sample_ids.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

class IdentityWindowsTest : public SampleWindows {
 protected:
  /// Starts the program and opens a window by its menu item.
  void OpenBy(const char* item, Form& form) {
    Start();
    windows->form1.menuBar.click(item);
    EXPECT_TRUE(form.visible);
  }
  void ExpectClosedBy(Form& form) {
    form.close();
    EXPECT_FALSE(form.visible);
    EXPECT_TRUE(windows->form1.visible);
  }
};

TEST_F(IdentityWindowsTest, ANewIdentityIsMadeOrNothingIs) {
  Form7& form = windows->form7;
  OpenBy("crtnewID", form);
  const RegistrySnapshot before = Snapshot();
  const auto expectNothing = [&] {
    form.cmdCreateNewIdentity.click();
    EXPECT_EQ(form.sb1.panels[0], "No New Identity Was Created.");
    EXPECT_EQ(Snapshot(), before);
  };
  dialogs.messageAnswers = {MessageAnswer::No};
  expectNothing();
  for (const auto& answer : {std::optional<std::string>(), std::optional<std::string>("")}) {
    dialogs.messageAnswers = {MessageAnswer::Yes};
    dialogs.inputAnswers = {answer};
    expectNothing();
  }
  dialogs.messages.clear();
  dialogs.messageAnswers = {MessageAnswer::Yes};
  dialogs.inputAnswers = {" Guest "};
  form.cmdCreateNewIdentity.click();
  const std::string userId = form.txtNewGUID.text;
  EXPECT_TRUE(IsUserId(userId));
  EXPECT_EQ(form.txtNewUsername.text, " Guest ");
  EXPECT_EQ(form.sb1.panels[0], "New {USER_ID} Created");
  EXPECT_THAT(dialogs.Texts(), ElementsAre(StartsWith("This creates a new Identity"),
                                           "The new Identity: \n" + userId + "\nwill be created."));
  EXPECT_EQ(dialogs.LastInput(), "USER_ID : " + userId + "|Enter new Username.\n\nPress CANCEL to exit|");
  EXPECT_EQ(Read(IdentityKey(userId), "Identity Ordinal"), RegValue(4));
  EXPECT_THAT(windows->form1.cmbUserIDs.items.Get(), Contains(userId));
  ExpectClosedBy(form);
  windows->form1.menuBar.click("crtnewID");
  EXPECT_EQ(form.txtNewUsername.text.Get() + form.txtNewGUID.text.Get(), "");
}

TEST_F(IdentityWindowsTest, ACloneNeedsOneDestinationAndABackupFolder) {
  Form4& form = windows->form4;
  OpenBy("CloneIdentity", form);
  const RegistrySnapshot before = Snapshot();
  const auto refused = [&](std::string source) {
    form.cmbSource.pick(source);
    form.cmdClone.click();
    return dialogs.LastAsked();
  };
  EXPECT_EQ(refused(kMain), "No Destination Identity USER_IDs were checked to be cloned. [OK, exclamation]");
  form.Check1.click();
  form.cmbDestination.pick(kMain);
  EXPECT_THAT(refused(kMain), StartsWith("Source and Destination Identities can not be the same Identity"));
  form.Check2.click();
  EXPECT_EQ(refused(kMain), "Check only one Destination Identity USER_IDs to be cloned. [OK]");
  EXPECT_FALSE(form.Check1.checked || form.Check2.checked);
  form.Check2.click();
  EXPECT_THAT(refused(kMain), HasSubstr("not a {USER_ID}: \"Please create a new Identity\""));
  std::filesystem::remove_all(BackupFolderOnHost());
  form.Check2.click();
  form.Check1.click();
  form.cmbDestination.pick(kGuest);
  refused(kMain);
  EXPECT_THAT(dialogs.Texts(), Contains(AllOf(HasSubstr("was not cloned"), HasSubstr("The registry is as it was."))));
  EXPECT_EQ(form.StatusBar1.panels[0], "");
  EXPECT_EQ(Snapshot(), before);
  // Of a registry that is half changed the user reads which half.
  onDisk.Folder("D/Backup/Store Root2K.reg");
  EXPECT_THAT(refused(kMain), HasSubstr("Done before that: The accounts were merged."));
  std::filesystem::remove(BackupFolderOnHost() / "Store Root2K.reg");
  windows->session.backupFolder.Reset();
  EXPECT_EQ(refused(kMain), "Please select a backup folder or create one from the Tools menu [OK]");
  form.close();
  windows->form1.menuBar.click("CloneIdentity");
  EXPECT_EQ(form.lblDestinationUser.caption, "");
  EXPECT_EQ(dialogs.messages.size(), 9U) << "opened without a backup folder, it says so as well";
  form.close();
  Store().DeleteKey(CurrentUser(kIdentitiesKey));
  windows->form1.menuBar.click("CloneIdentity");
  EXPECT_THAT(dialogs.Texts(), Contains("Registry read error 2Identities"));
}

TEST_F(IdentityWindowsTest, AnIdentityIsClonedOntoANewOneWithItsMessages) {
  Form4& form = windows->form4;
  OpenBy("CloneIdentity", form);
  dialogs.messageAnswers = {MessageAnswer::Yes};
  dialogs.inputAnswers = {"Bob"};
  form.StatusBar1.panels[1] = "old";
  form.cmdCreateIdentity.click();
  const std::string userId = form.txtuserid.text;
  EXPECT_EQ(form.StatusBar1.panels[1], "");
  EXPECT_EQ(form.StatusBar1.panels[0], userId + " Created");
  EXPECT_EQ(form.lblDestinationUser.caption, "Bob");
  form.cmbSource.pick(kMain);
  EXPECT_EQ(form.lblSourceUser.caption, "Main Identity");
  const auto folderOf = [&](const std::string& id) {
    return OnHost(ReadStoreFolder(Store(), platform->GetSystemFacts(), id).value().Text());
  };
  std::filesystem::create_directory(folderOf(kMain) / "Old mail");
  std::ofstream(folderOf(kMain) / "Old mail/2003.dbx", std::ios::binary) << "old";
  for (CheckBox* box : {&form.Check2, &form.chkCopyDBX}) box->click();
  form.cmdClone.click();
  EXPECT_EQ(form.StatusBar1.panels[0], "Cloning Complete");
  EXPECT_EQ(form.StatusBar1.panels[1], "");
  EXPECT_EQ(form.lblDestUName.caption, "Bob");
  EXPECT_FALSE(form.Check2.checked || form.chkCopyDBX.checked);
  EXPECT_EQ(dialogs.messages.size(), 2u);
  EXPECT_EQ(Names(folderOf(userId)), Names(folderOf(kMain)));
  EXPECT_EQ(Content(folderOf(userId) / "Old mail/2003.dbx"), "old");
  EXPECT_EQ(Read(IdentitySettingsKey(userId), "WindowTitle"), RegValue("Outlook Express at home"));
  EXPECT_THAT(windows->form1.cmbUserNames.items.Get(), Contains("Bob"));

  // A source without a store has its settings cloned, and the person reads why there are no messages.
  form.cmbSource.pick(kGuest);
  for (CheckBox* box : {&form.Check2, &form.chkCopyDBX}) box->click();
  form.cmdClone.click();
  EXPECT_EQ(form.StatusBar1.panels[0], "Cloning Complete");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("were not copied"));
  ExpectClosedBy(form);
}

TEST_F(IdentityWindowsTest, ACloneWhoseStoreRootLeadsElsewhereIsPointedToItsMessages) {
  const char* folders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
  const std::string moved = "D:\\Lokale Einstellungen\\Anwendungsdaten";
  Store().SetKeyValue(folders, "Local AppData", moved, ValueType::Sz);
  Form4& form = windows->form4;
  OpenBy("CloneIdentity", form);
  form.cmbSource.pick(kOffice);
  form.cmbDestination.pick(kGuest);
  for (CheckBox* box : {&form.Check1, &form.chkCopyDBX}) box->click();
  dialogs.messageAnswers = {MessageAnswer::Yes};
  form.cmdClone.click();
  const std::string below = "\\Identities\\" + kGuest + "\\Microsoft\\Outlook Express";
  EXPECT_THAT(dialogs.LastMessage(),
              AllOf(HasSubstr(moved + below), HasSubstr("Ann Miller\\Local Settings\\Application Data" + below)));
  EXPECT_EQ(Read(IdentitySettingsKey(kGuest), "Store Root"), RegValue(moved + below + "\\"));
  EXPECT_THAT(Names(OnHost(Read(IdentitySettingsKey(kGuest), "Store Root").AsText())), Contains("Inbox.dbx"));
}

TEST_F(IdentityWindowsTest, RemovingAsksAndGoesOnToTheLastOne) {
  Form5& form = windows->form5;
  OpenBy("remIdent", form);
  const RegistrySnapshot before = Snapshot();
  dialogs.messageAnswers = {MessageAnswer::No};
  form.cmdRemoveIdent.click();
  EXPECT_EQ(dialogs.LastAsked(), "No Changes occurred. [OK]");
  dialogs.messages.pop_back();
  EXPECT_THAT(dialogs.LastAsked(), StartsWith("Are you sure you want to delete this Identity"));
  EXPECT_EQ(Snapshot(), before);

  form.cmbDelIdent.pick(kOffice);
  EXPECT_EQ(form.lblusrnameIdent.caption, "Büro");
  for (const std::string& userId : {kOffice, kMain, kGuest}) {
    form.cmbDelIdent.pick(userId);
    dialogs.messageAnswers = {MessageAnswer::Yes};
    form.cmdRemoveIdent.click();
    EXPECT_THAT(form.cmbDelIdent.items.Get(), Not(Contains(userId)));
    EXPECT_EQ(windows->form1.cmbUserIDs.items.Get(), form.cmbDelIdent.items.Get());
  }
  EXPECT_THAT(dialogs.Texts(), AllOf(Contains("Registry read error 2 Default User ID Username"),
                                     Contains("Identity has been removed.")));
  EXPECT_EQ(form.cmbDelIdent.text, "");
  EXPECT_EQ(form.lblusrnameIdent.caption, "");
  // With nothing shown there is nothing to ask about, and the key of all identities stays.
  form.cmdRemoveIdent.click();
  EXPECT_EQ(Read(kIdentitiesKey, "Default User ID"), RegValue(kMain));
  EXPECT_TRUE(std::filesystem::exists(sample.driveD / "Mail/Office"));
  ExpectClosedBy(form);
}

TEST_F(IdentityWindowsTest, TheDefaultAndTheStartIdentityAreChanged) {
  Form8& form = windows->form8;
  OpenBy("chgStartIdent", form);
  EXPECT_THAT(form.cmbStartAs.items.Get(), ElementsAre(kNobody, kMain, kOffice, kGuest));
  EXPECT_EQ(form.cmbStartAs.text, kMain);
  EXPECT_EQ(form.lblUsernameStartAs.caption, "Main Identity");
  EXPECT_EQ(form.lblForceStart.caption, "");
  form.cmbDefUserID.pick(kOffice);
  form.cmdChgDefault.click();
  EXPECT_EQ(Read(kIdentitiesKey, "Default User ID"), RegValue(kOffice));
  EXPECT_EQ(windows->form1.Label9.caption, kOffice);
  EXPECT_EQ(windows->form1.Label10.caption, "Büro");

  form.cmbStartAs.pick(kOffice);
  form.cmdStartAs.click();
  EXPECT_EQ(Read(kIdentitiesKey, "Last Username"), RegValue("Main Identity"));
  form.cmbStartAs.pick(kNobody);
  EXPECT_EQ(form.lblUsernameStartAs.caption, "Prompt For Identity");
  EXPECT_EQ(form.lblForceStart.caption, "To retain this setting, you must use Exit and Logoff");
  form.cmdStartAs.click();
  for (const char* name : {"Start As", "Last User ID"}) EXPECT_EQ(Read(kIdentitiesKey, name), RegValue(kNobody));
  EXPECT_EQ(Read(kIdentitiesKey, "Last Username"), RegValue(""));
  // An empty choice, as a removed default leaves it, writes nothing.
  form.cmbDefUserID.text = "";
  form.cmbStartAs.text = "";
  const RegistrySnapshot before = Snapshot();
  form.cmdChgDefault.click();
  form.cmdStartAs.click();
  EXPECT_EQ(Snapshot(), before);
  ExpectClosedBy(form);
}

TEST_F(IdentityWindowsTest, ARenameRefusesNamesThatAreTaken) {
  Form1& form = Start();
  form.cmbUserNames.pick("Main Identity");
  dialogs.inputAnswers = {std::nullopt, "Guest", "Main Identity", "guest"};
  const auto rename = [&] { form.menuBar.click("chgIdentName"); };
  rename();
  EXPECT_EQ(form.sb1.panels[0], "No changes made.");
  EXPECT_EQ(dialogs.LastInput(), "Current Username: Main Identity|Enter new Username|Main Identity");
  for (int taken = 0; taken < 2; ++taken) {
    rename();
    EXPECT_EQ(dialogs.LastAsked(), "Name already exists [OK, exclamation]");
    EXPECT_EQ(form.sb1.panels[0], "");
    EXPECT_EQ(Read(IdentityKey(kMain), "Username"), RegValue("Main Identity"));
  }
  rename();
  EXPECT_EQ(Read(IdentityKey(kMain), "Username"), RegValue("guest"));
  EXPECT_THAT(form.cmbUserNames.items.Get(), ElementsAre("guest", "Büro", "Guest"));
  for (const auto* shown : {&form.Label7, &form.Label10}) EXPECT_EQ(shown->caption, "guest");
  EXPECT_EQ(form.cmbUserNames.text, "guest");
}

TEST_F(IdentityWindowsTest, ASavedFileIsCarriedOverAndMerged) {
  Form17& form = windows->form17;
  OpenBy("usrIDString", form);
  form.cmdMerge.click();
  EXPECT_THAT(dialogs.Texts(), ElementsAre("", "Registry file has been merged."));
  EXPECT_TRUE(platform->processes.commandLines.empty());
  std::ofstream(BackupFolderOnHost() / "a.b.reg", std::ios::binary)
      << "REGEDIT4\n\n[HKEY_CURRENT_USER\\Identities\\" << kMain << "]\n\"Carried\"=\"over\"\n";
  dialogs.openFileAnswers = {WinPath("D:\\Backup\\a.b.reg"), std::nullopt};
  form.cmpOpen.click();
  form.cmpOpen.click();
  EXPECT_EQ(dialogs.LastFile(dialogs.openFileDialogs), "D:\\Backup|*.reg|Registration Files (*.reg) | *.reg");
  EXPECT_EQ(form.lblselectedfile.caption, "a");
  form.cmboUserIDs97.pick(kGuest);
  EXPECT_EQ(form.lblcurUsrName17.caption, "Guest");
  form.cmdReplace.click();
  EXPECT_EQ(form.lblFinished.caption, "File Saved as: D:\\Backup\\Newa.reg");
  form.cmdMerge.click();
  EXPECT_THAT(dialogs.Texts(), Contains("D:\\Backup\\Newa.reg"));
  EXPECT_EQ(Read(IdentityKey(kGuest), "Carried"), RegValue("over"));
  EXPECT_EQ(Read(IdentityKey(kMain), "Carried"), RegValue());

  // Refusals leave nothing to merge either.
  dialogs.openFileAnswers = {WinPath("D:\\Backup\\no id.reg"), WinPath("D:\\Backup\\wide.reg"),
                             WinPath("D:\\Backup\\folder.reg"), WinPath("D:\\Backup\\a.b.reg")};
  std::ofstream(BackupFolderOnHost() / "no id.reg", std::ios::binary) << "REGEDIT4\n\"{x\"=\"" << kMain << "\"\n";
  std::ofstream(BackupFolderOnHost() / "wide.reg", std::ios::binary) << std::string("W\0i\0n\0{\0", 8);
  std::ofstream(BackupFolderOnHost() / "folder.reg", std::ios::binary) << kMain;
  std::filesystem::create_directory(BackupFolderOnHost() / "Newfolder.reg");
  for (const char* reason :
       {"no id.reg\" has its first \"{\" before something that is not a {USER_ID}: {x\"=\"",
        "wide.reg\" is UTF-16 text without the mark that registry files begin with.", "Newfolder.reg\" is a folder."}) {
    form.cmpOpen.click();
    form.cmdReplace.click();
    EXPECT_THAT(dialogs.LastMessage(), HasSubstr(std::string("No file was made: \"D:\\Backup\\") + reason));
    EXPECT_EQ(form.lblFinished.caption, "");
  }
  form.cmpOpen.click();
  windows->session.backupFolder.Reset();
  form.cmdReplace.click();
  EXPECT_EQ(dialogs.LastMessage(), "Please select a backup folder or create one from the Tools menu.");
  windows->session.backupFolder.Choose(WinPath(kBackup));

  // A replacement that fails leaves nothing to merge, and says nothing.
  std::filesystem::remove(BackupFolderOnHost() / "a.b.reg");
  form.cmdReplace.click();
  EXPECT_EQ(form.lblFinished.caption, "");
  ExpectClosedBy(form);
  for (Label* label : {&form.lblselectedfile, &form.lblFinished}) label->caption = "old";
  OpenBy("usrIDString", form);
  EXPECT_EQ(form.lblselectedfile.caption.Get() + form.lblFinished.caption.Get(), "");
}

TEST_F(IdentityWindowsTest, TheSwitchedOffReplacementWorksByPrompts) {
  Form1& form = Start();
  form.menuBar.click("repUSERID");
  EXPECT_TRUE(dialogs.messages.empty());
  std::ofstream(BackupFolderOnHost() / "x.reg", std::ios::binary) << "REGEDIT4\n" << kMain << "\n";
  const auto run = [&](const std::optional<std::string>& userId) {
    dialogs.messageAnswers = {MessageAnswer::Yes};
    dialogs.openFileAnswers = {WinPath("D:\\Backup\\x.reg")};
    dialogs.inputAnswers = {userId};
    form.RunHandler("repUSERID", form.menuBar.Item("repUSERID").onClick);
  };
  run(std::nullopt);
  EXPECT_THAT(Names(BackupFolderOnHost()), ElementsAre("x.reg"));
  run(kOffice);
  EXPECT_THAT(dialogs.LastAsked(), StartsWith("You will be prompted for a {USER_ID}"));
  EXPECT_EQ(dialogs.LastInput(), "Current {USER_ID}: " + kMain + "|Enter new {USER_ID}|");
  EXPECT_EQ(form.sb1.panels[0], "File Saved as: D:\\Backup\\Newx.reg");
  EXPECT_EQ(Content(BackupFolderOnHost() / "Newx.reg"), "REGEDIT4\r\n" + kOffice + "\r\n");
}

}  // namespace
}  // namespace quillbox
