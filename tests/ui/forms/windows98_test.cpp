// SPDX-License-Identifier: GPL-3.0-or-later
// The windows on a disk of Windows 98, and the way of its mail to a newer Windows.
#include "support/sample_ids.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

constexpr const char* kAccounts = "Software\\Microsoft\\Internet Account Manager\\Accounts";

class Windows98Test : public SampleWindows {
 protected:
  void SetUp() override { OpenDiskOf("98", SampleKind::Windows98); }

  void OpenDiskOf(const char* folder, SampleKind kind) {
    windows.reset();
    sample = MakeSampleDisk(temp / folder, {.smallStores = true, .kind = kind});
    OpenDisk();
  }
};

TEST_F(Windows98Test, ItsBackupsGiveTheIdentitiesToANewerDisk) {
  const std::pair<std::string, std::string> people[] = {{"Main Identity", kMain}, {"Büro", kOffice}};
  const std::filesystem::path backups = BackupFolderOnHost();
  const std::vector<std::string> registry = Names(sample.driveC / "WINDOWS");
  std::map<std::string, RegistrySnapshot> before;
  Form1& form = Start();
  if (!form.chkOverwrite.checked) form.chkOverwrite.click();
  for (const auto& [username, userId] : people) {
    form.cmbUserNames.pick(username);
    form.cmdQuickBackup.click();
    EXPECT_EQ(form.sb1.panels[0], "Backup Complete");
    before[userId] = Snapshot((std::string(kIdentitiesKey) + "\\" + userId).c_str());
    EXPECT_THAT(Content(backups / PathOf(username) / PathOf(username + ".reg")),
                StartsWith("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities\\" + userId + "]\r\n\"Username\"="));
    EXPECT_THAT(Names(backups / PathOf(username)), testing::IsSupersetOf({"Inbox.dbx", "Ann Miller.wab", "IAM.reg"}));
  }
  const RegistrySnapshot accounts = Snapshot(kAccounts);
  EXPECT_GT(accounts.size(), 20u);
  EXPECT_TRUE(dialogs.messages.empty());
  EXPECT_EQ(Names(sample.driveC / "WINDOWS"), registry);

  OpenDiskOf("xp", SampleKind::Xp);
  Store().DeleteKey(CurrentUser(kIdentitiesKey));
  Store().DeleteKey(CurrentUser(kAccounts));
  for (const auto& [username, userId] : people) {
    for (const std::string& file : {username + ".reg", std::string("IAM.reg")}) {
      Store().RegMerge(WinPath(OnZ(backups / PathOf(username) / PathOf(file))));
    }
    EXPECT_EQ(Snapshot((std::string(kIdentitiesKey) + "\\" + userId).c_str()), before[userId]) << username;
  }
  EXPECT_EQ(Snapshot(kAccounts), accounts);
  windows->form1.Open();
  EXPECT_THAT(windows->form1.cmbUserNames.items.Get(), ElementsAre("Main Identity", "Büro"));
}

TEST_F(Windows98Test, TheWindowsSayWhereChangesGoAndKeepThem) {
  const std::string sentence =
      "Windows 98's registry is read only here; changes go to a private copy, and can be merged on that Windows from "
      "the .reg files";
  const std::string user = Content(sample.driveC / "WINDOWS/USER.DAT");
  EXPECT_THAT(Start().lblSystem.caption.Get(), EndsWith("C, Everyone (" + sentence + ")"));
  windows->form1.menuBar.click("msc");
  EXPECT_EQ(windows->form12.lblProtected.caption, sentence + ".");
  SetUsername(kMain, "Renamed");
  platform->EndCommand();
  OpenDisk();
  windows->form1.Open();
  EXPECT_EQ(windows->form1.Label7.caption, "Renamed");
  EXPECT_EQ(Content(sample.driveC / "WINDOWS/USER.DAT"), user);
}

}  // namespace
}  // namespace quillbox
