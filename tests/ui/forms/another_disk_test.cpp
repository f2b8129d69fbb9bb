// SPDX-License-Identifier: GPL-3.0-or-later
// Leaving a disk for another one, and a disk whose registry cannot be opened.
#include "support/sample_windows.h"

namespace quillbox {
namespace {

class AnotherDiskTest : public SampleWindows {
 protected:
  std::filesystem::path Hive() { return sample.driveC / "Documents and Settings" / sample.profile / "NTUSER.DAT"; }
};

TEST_F(AnotherDiskTest, TheDiskIsLeftWithItsChangesWritten) {
  Form1& form = Start();
  int left = 0;
  windows->chooseDisk = [&] {
    left = platform->GetRegistry().Open(CurrentUser("Left"), Access::Read).status == Status::Success &&
                   Content(Hive()).find("Left") != std::string::npos
               ? 1
               : 2;
  };
  Store().CreateKey(CurrentUser("Left"));
  form.menuBar.click("openDisk");
  EXPECT_EQ(left, 1);
  EXPECT_FALSE(form.visible);
}

TEST_F(AnotherDiskTest, ChangesThatCannotBeWrittenKeepTheDiskOpen) {
  Form1& form = Start();
  windows->chooseDisk = [] { FAIL() << "the changes would be lost"; };
  Store().CreateKey(CurrentUser("Left"));
  std::filesystem::remove(Hive());
  form.menuBar.click("openDisk");
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("The changes could not be saved yet."));
  EXPECT_TRUE(form.visible);
}

TEST_F(AnotherDiskTest, ADiskWhoseRegistryCannotBeOpenedIsSearchedAlone) {
  onDisk.File("C/Documents and Settings/Ann Miller/NTUSER.DAT", "no hive");
  const auto search = [&] {
    windows.reset();
    store.reset();
    platform.reset();
    OfflineOptions options{.folder = sample.driveC, .drives = {{'D', sample.driveD}}, .stateFolder = temp / "state"};
    options.registry = RegistryUse::StandIn;
    platform = std::make_unique<RecordingPlatform>(options, dialogs);
    windows = std::make_unique<ProgramWindows>(*platform);
    windows->OpenSearchAlone();
    return &windows->form2;
  };
  Form2* form = search();
  EXPECT_FALSE(windows->form1.visible);
  form->cmdSearch.click();
  form->cndSelectAll.click();
  form->cmdbkfldr2.click();
  std::filesystem::create_directories(BackupFolderOnHost());
  ASSERT_TRUE(windows->session.ChooseBackupFolder(WinPath(kBackup)));
  windows->form3.close();
  form->cmdCopyFiles.click();
  EXPECT_THAT(Names(BackupFolderOnHost()), Contains("Inbox.dbx"));
  EXPECT_TRUE(dialogs.messages.empty());
  int left = 0;
  windows->chooseDisk = [&] { ++left; };
  form->close();
  EXPECT_EQ(left, 1);
  EXPECT_FALSE(form->visible || windows->form1.visible);

  EXPECT_EQ(search()->txtbackupPath.caption, kBackup) << "the backup folder is remembered";
  EXPECT_EQ(Content(Hive()), "no hive");
}

}  // namespace
}  // namespace quillbox
