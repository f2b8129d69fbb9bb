// SPDX-License-Identifier: GPL-3.0-or-later
// A disk that was opened without a drive on which its registry says that messages are.
#include "support/sample_windows.h"

namespace quillbox {
namespace {

class UnattachedDriveTest : public SampleWindows {
 protected:
  void SetUp() override {
    MakeDisk();
    temp.File("disk/E/Mail/Inbox.dbx", "on E:");
    for (const IdentityInfo& identity : LoadCatalogue(Store(), platform->GetSystemFacts()).identities) {
      if (!identity.storeFolder) continue;
      Store().SetKeyValue(IdentitySettingsKey(identity.userId), "Store Root", "E:\\Mail", ValueType::Sz);
    }
    Start();
    dialogs.messages.clear();
  }
  void Name(std::initializer_list<std::optional<WinPath>> folders) { dialogs.folderAnswers = folders; }
  std::string CopiedInbox() { return Content(BackupFolderOnHost() / "Main Identity/Inbox.dbx"); }
};

TEST_F(UnattachedDriveTest, IsNamedOnTheSpotAndUsedFromThenOn) {
  Form1& form = windows->form1;
  dialogs.messageAnswers = {MessageAnswer::Yes, MessageAnswer::Yes, MessageAnswer::Yes};
  Name({WinPath("Z:\\"), std::nullopt, WinPath(OnZ(temp / "disk/E"))});
  form.cmdQuickBackup.click();
  ASSERT_THAT(dialogs.Texts(), Contains("The disk's registry names \"E:\\Mail\", but drive E: is not attached.\n\n"
                                        "If this computer has a folder that is drive E: of that Windows, choose it "
                                        "now."));
  EXPECT_THAT(dialogs.Texts(), Contains(HasSubstr("it is the root folder of this computer")));
  EXPECT_EQ(CopiedInbox(), "on E:");
  EXPECT_THAT(named, ElementsAre("E=" + HostPath(temp / "disk/E").Text()));
  form.menuBar.click("Search");
  EXPECT_THAT(windows->form2.cboDrives.items->back(), HasSubstr("E:\\"));
  dialogs.messages.clear();
  form.cmdOpenFolder.click();
  EXPECT_THAT(dialogs.Texts(), IsEmpty());
}

TEST_F(UnattachedDriveTest, IsAskedForOnceInACommandAndMissedInItsReport) {
  Form1& form = windows->form1;
  dialogs.messageAnswers = {MessageAnswer::No};
  form.cmdbkupall.click();
  EXPECT_THAT(dialogs.Texts(), Contains(AllOf(HasSubstr("E:\\Mail"), HasSubstr("drive E: is not attached."))));
  EXPECT_NE(form.sb1.panels[1], "") << "the status bar says that messages are missing";
  dialogs.messageAnswers = {MessageAnswer::No};
  form.cmdOpenFolder.click();
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("drive E: is not attached."));
}

TEST_F(UnattachedDriveTest, OfTheBackupFolderIsAskedForBeforeTheSettingIsForgotten) {
  for (const bool agrees : {true, false}) {
    StoreBackupFolder("E:\\Mail");
    platform->EndCommand();
    OpenDisk();
    dialogs.messageAnswers = {agrees ? MessageAnswer::Yes : MessageAnswer::No};
    if (agrees) Name({WinPath(OnZ(temp / "disk/E"))});
    windows->form1.Open();
    const char* expected = agrees ? "E:\\Mail" : "None Selected";
    EXPECT_EQ(windows->form1.lblbkuppth.caption, expected);
    EXPECT_EQ(Read(kIdentitiesKey, "Quillbox"), RegValue(expected));
  }
}

}  // namespace
}  // namespace quillbox
