// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/host_tricks.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

/// A part of the registry and its two menu items.
std::vector<GoldenLine> Parts() {
  return ReadGolden("ui/forms/registry_items_golden.txt");
}

class RegistryItemsTest : public SampleWindows {
 protected:
  void SetUp() override {
    MakeDisk();
    form = &Start();
    form->cmbUserNames.pick("Main Identity");
    userId = form->Label6.caption;
  }
  /// Chooses a menu item, a switched-off one too.
  void Click(const std::string& item) { form->RunHandler(item, form->menuBar.Item(item).onClick); }
  void Save(const std::string& item, const WinPath& chosen) {
    dialogs.saveFileAnswers = {chosen};
    Click(item);
  }
  void Restore(const std::string& item, const WinPath& chosen) {
    dialogs.openFileAnswers = {chosen};
    Click(item);
  }
  std::string OfIdentity(std::string text) {
    const std::size_t star = text.find('*');
    return star == std::string::npos ? text : text.replace(star, 1, userId);
  }
  RegistryPath SettingsKey(const std::string& name) { return CurrentUser(IdentitySettingsKey(userId) + "\\" + name); }

  Form1* form = nullptr;
  std::string userId;
  const WinPath file{"D:\\Backup\\item.reg"};
  static constexpr const char* kFilter = "|Registration Files (*.reg) | *.reg";
};

TEST_F(RegistryItemsTest, EachPartIsSavedAndComesBackAsItWas) {
  for (const GoldenLine& part : Parts()) {
    const std::string commandEnd = OfIdentity(part.Fact("key")[1]);
    if (commandEnd.empty()) continue;
    SCOPED_TRACE(part.Place());
    const GoldenLine saves = part.Fact("saves");
    const GoldenLine merges = part.Fact("merges");
    form->cmbUserIDs.pick(userId);
    std::string key = Trim(commandEnd);
    std::erase(key, '"');
    const RegistryPath path = ParseRegistryPath(key).value();
    const RegistrySnapshot before = SnapshotOf(platform->GetRegistry(), path);
    ASSERT_FALSE(before.empty());
    platform->processes.commandLines.clear();
    form->sb1.panels[1] = "old";

    Save(part[1], file);
    EXPECT_TRUE(dialogs.saveFileDialogs.back().askOverwrite);
    EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs), "D:\\Backup|" + saves[1] + kFilter);
    EXPECT_EQ(form->sb1.panels[0], saves[2]);
    EXPECT_EQ(form->sb1.panels[1], "");
    Store().DeleteKey(path);
    Restore(part[2], file);
    EXPECT_EQ(dialogs.LastFile(dialogs.openFileDialogs), "D:\\Backup|" + merges[1] + kFilter);
    EXPECT_EQ(form->sb1.panels[0], merges[2]);
    EXPECT_EQ(SnapshotOf(platform->GetRegistry(), path), before);
    EXPECT_EQ(platform->processes.commandLines,
              (std::vector<std::string>{"regedit /s /e:A \"D:\\Backup\\item.reg\"" + commandEnd,
                                        "regedit /s /c \"D:\\Backup\\item.reg"}));
    EXPECT_EQ(form->Label2.caption, "3");
  }
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(RegistryItemsTest, SignaturesAreAHiveFileOnXp) {
  const RegistryPath key = SettingsKey("Signatures");
  const RegistrySnapshot before = SnapshotOf(platform->GetRegistry(), key);
  platform->processes.commandLines.clear();
  Save("sigs", file);
  EXPECT_EQ(form->sb1.panels[0], "Signatures Export Complete");
  EXPECT_EQ(dialogs.saveFileDialogs.back().name, "SignaturesXP.reg");
  EXPECT_THAT(onDisk.Read("D/Backup/item.reg"), StartsWith("regf"));
  Store().DeleteKey(key.Child("00000000"));
  Store().CreateKey(key.Child("of another time"));
  Restore("resSigs", file);
  EXPECT_EQ(dialogs.openFileDialogs.back().name, "SignaturesXP.reg");
  EXPECT_EQ(SnapshotOf(platform->GetRegistry(), key), before);
  EXPECT_EQ(form->sb1.panels[0], "Signatures Import Complete");
  EXPECT_TRUE(platform->processes.commandLines.empty());

  // A damaged file changes nothing; nor does one that is text.
  const std::string hive = onDisk.Read("D/Backup/item.reg");
  for (const std::string& bad : {hive.substr(0, hive.size() / 2), std::string("REGEDIT4\r\n"), std::string()}) {
    onDisk.File("D/Backup/item.reg", bad);
    Restore("resSigs", file);
    EXPECT_THAT(dialogs.LastMessage(), HasSubstr("the key was not restored from D:\\Backup\\item.reg"));
    EXPECT_EQ(SnapshotOf(platform->GetRegistry(), key), before);
  }
}

TEST_F(RegistryItemsTest, TheKindOfWindowsChoosesTheFormAndTheNameOfSignatures) {
  const RegistryPath nt{RegistryRoot::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion"};
  const auto signatures = [&] {
    windows->session.store.DetectOsCode();
    platform->processes.commandLines.clear();
    Save("sigs", file);
    const std::string command = platform->processes.commandLines.empty() ? "" : platform->processes.commandLines[0];
    return dialogs.saveFileDialogs.back().name + " " + command.substr(0, command.find('"'));
  };
  Store().SetKeyValue2(nt.subkey, "ProductName", "Microsoft Windows 2000", ValueType::Sz);
  EXPECT_EQ(signatures(), "SignaturesWin2k.reg ");
  Store().SetKeyValue2(nt.subkey, "ProductName", "Windows NT", ValueType::Sz);
  EXPECT_EQ(signatures(), "Signatures.reg regedit /s /e:A ");
  const std::string windows98 = "Software\\Microsoft\\Windows\\CurrentVersion";
  Store().CreateKey({RegistryRoot::LocalMachine, windows98});
  Store().SetKeyValue2(windows98, "ProductName", "Microsoft Windows 98", ValueType::Sz);
  EXPECT_EQ(signatures(), "Signatures.reg regedit /s /e:A ") << "of two names that of Windows NT counts";
  Store().DeleteKey(nt);
  EXPECT_EQ(signatures(), "Signatures.reg regedit /s /e ");
  Store().DeleteKey({RegistryRoot::LocalMachine, windows98});
  EXPECT_EQ(signatures(), "Signatures.reg regedit /s /e ") << "without any the last one that was known";

  // Started anew on a registry that does not say which Windows it is: nothing is exported, and all items but one say
  // that they are done.
  platform->EndCommand();
  OpenDisk();
  form = &Start();
  form->cmbUserIDs.pick(userId);
  for (const GoldenLine& part : Parts()) {
    form->sb1.panels[0] = "before";
    Save(part[1], WinPath("D:\\never.reg"));
    EXPECT_EQ(form->sb1.panels[0], part[1] == "regIAM" ? "before" : part.Fact("saves")[2]);
  }
  EXPECT_TRUE(platform->processes.commandLines.empty());
  EXPECT_FALSE(std::filesystem::exists(sample.driveD / "never.reg"));
}

TEST_F(RegistryItemsTest, AMissingKeyIsToldBeforeAMissingFolder) {
  windows->session.backupFolder.Reset();
  form->cmbUserNames.pick("Guest");
  for (const GoldenLine& part : Parts()) {
    Click(part[1]);
    EXPECT_EQ(dialogs.LastAsked(), part.Fact("refuses")[1]) << part.Place();

    form->sb1.panels[0] = "before";
    dialogs.openFileAnswers = {std::nullopt};
    Click(part[2]);
    EXPECT_EQ(form->sb1.panels[0], "before");
  }
  form->cmbUserNames.pick("Main Identity");
  Click("sigs");
  EXPECT_EQ(dialogs.LastMessage(), "Please select a backup folder or create one from the Tools menu.");
  EXPECT_TRUE(platform->processes.commandLines.empty());
}

TEST_F(RegistryItemsTest, FilesThatCannotBeMergedAreToldAndDamageNothing) {
  Save("msgRules", file);
  const std::string good = onDisk.Read("D/Backup/item.reg");
  const RegistrySnapshot before = Snapshot();
  const std::pair<std::string, std::string> files[] = {
      {std::string("\0\1\2\xFF", 4), "this is not a registry file"},
      {good.substr(0, good.rfind('=') + 2), "line "},
      {"REGEDIT4\r\n\r\n[HKEY_USERS\\S-1\\Identities]\r\n\"x\"=\"y\"\r\n", "line 3: \"HKEY_USERS\\S-1\\Identities\""},
  };
  for (const auto& [content, told] : files) {
    dialogs.messages.clear();
    onDisk.File("D/Backup/item.reg", content);
    Restore("resMsgRules", file);
    ASSERT_EQ(dialogs.messages.size(), 1u) << told;
    EXPECT_THAT(dialogs.LastMessage(), AllOf(HasSubstr("D:\\Backup\\item.reg"), HasSubstr(told)));
    EXPECT_EQ(form->sb1.panels[0], "Message Rules Import Complete");
    EXPECT_EQ(Snapshot(), before);
  }
}

TEST_F(RegistryItemsTest, AFileOfAnotherDisksIdentityIsToldApart) {
  const RegistrySnapshot before = Snapshot();
  onDisk.File(
      "D/Backup/item.reg",
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities\\{F0}\\Software\\Microsoft\\Outlook Express\\5.0\\Rules]\r\n");
  Restore("resMsgRules", file);
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("this registry did not have:\n\n{F0}\n"));
  Store().DeleteKey(CurrentUser("Identities\\{F0}"));
  EXPECT_EQ(Snapshot(), before);

  // All identities of another disk bring that disk's backup folder along, which is not taken over.
  onDisk.File("D/Backup/item.reg", "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Identities]\r\n\"Quillbox\"=\"E:\\\\Old\"\r\n");
  Restore("resAllIdent", file);
  EXPECT_EQ(windows->session.backupFolder.Text(), kBackup);
}

TEST_F(RegistryItemsTest, AnExportThatCannotBeWrittenIsToldAndLeavesTheOlderFile) {
  NEEDS(FailingCalls);
  Save("Identity", file);
  const std::string older = onDisk.Read("D/Backup/item.reg");
  for (const char* item : {"Identity", "sigs"}) {
    const FileSizeLimit full(1024);
    Save(item, file);
    EXPECT_THAT(dialogs.LastMessage(), AllOf(StartsWith("Not everything was done:"), HasSubstr("item.reg"))) << item;
  }
  EXPECT_EQ(onDisk.Read("D/Backup/item.reg"), older);
  EXPECT_EQ(Names(BackupFolderOnHost()), std::vector<std::string>{"item.reg"});
  Save("Identity", WinPath("D:\\Gone\\item.reg"));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("D:\\Gone\\item.reg"));
}

TEST_F(RegistryItemsTest, TheAddressBookFileGoesThereAndBack) {
  const auto book = OnHost(form->txtwabloc.text);
  const std::string content = Content(book);
  Click("addBookFile");
  EXPECT_EQ(form->sb1.panels[0], " Address Book Copy Complete");
  EXPECT_EQ(Content(BackupFolderOnHost() / "Ann Miller.wab"), content);
  std::ofstream(book, std::ios::binary) << "newer";
  dialogs.overwriteAnswers = {OverwriteAnswer::Yes};
  Restore("resWAB", WinPath("D:\\Backup\\Ann Miller.wab"));
  EXPECT_EQ(dialogs.LastFile(dialogs.openFileDialogs), "D:\\Backup|AddressBook.WAB|Address Book (*.WAB) | *.WAB");
  EXPECT_EQ(form->sb1.panels[0], " Address Book Copy Complete");
  EXPECT_EQ(Content(book), content);

  platform->CopyWithFaults().writeError = ENOSPC;
  dialogs.overwriteAnswers = {OverwriteAnswer::Yes, OverwriteAnswer::Yes};
  Click("addBookFile");
  Restore("resWAB", WinPath("D:\\Backup\\Ann Miller.wab"));
  ASSERT_EQ(dialogs.messages.size(), 2U);
  for (const Message& message : dialogs.messages) EXPECT_EQ(message.buttons, MessageButtons::Ok) << "no file is left";

  windows->session.backupFolder.Reset();
  form->sb1.panels[1] = "old";
  Click("addBookFile");
  EXPECT_EQ(dialogs.LastAsked(), "Please select a backup folder or create one from the Tools menu. [OK]");
  EXPECT_EQ(form->sb1.panels[1], "");

  Store().DeleteKey(CurrentUser("Software\\Microsoft\\WAB"));
  Restore("resWAB", WinPath("D:\\Backup\\Ann Miller.wab"));
  EXPECT_THAT(dialogs.LastMessage(), HasSubstr("no folder to copy"));
}

}  // namespace
}  // namespace quillbox
