// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/main_window.h"

#include <set>

#include "support/golden_looks.h"
#include "support/sample_ids.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Form1Test = SampleWindows;

TEST_F(Form1Test, AFirstStartShowsTheIdentitiesAndAsksForABackupFolder) {
  Form1& form = windows->form1;
  form.Open();
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_EQ(dialogs.LastMessage(), "Please Select A Backup Folder Before Proceeding Further");
  EXPECT_EQ(form.lblbkuppth.caption, "None Selected");
  EXPECT_EQ(form.lblbkuppth.colour, Colour::Red);
  EXPECT_EQ(Read(kIdentitiesKey, "Quillbox"), RegValue("None Selected"));
  EXPECT_FALSE(form.chkOverwrite.checked);
  EXPECT_EQ(Read(kIdentitiesKey, "BackupOverWrite"), RegValue(0));

  EXPECT_TRUE(form.visible);
  EXPECT_EQ(form.Label2.caption, std::to_string(Identities().size()));
  EXPECT_EQ(form.cmbUserNames.text, form.cmbUserNames.items.Get().front());
  EXPECT_EQ(form.Label6.caption, form.cmbUserIDs.text);
  EXPECT_EQ(form.Label10.caption, "Main Identity");
  EXPECT_TRUE(form.Text1.allSelected);
  EXPECT_EQ(form.lblOERunning.caption, "Outlook Express is not currently running.");
}

TEST_F(Form1Test, AnyPickerSelectsTheIdentityInAllThree) {
  Form1& form = Start();
  form.sb1.panels[0] = "old";
  for (std::size_t i = 0; i < form.cmbUserIDs.items->size(); ++i) {
    const IdentityInfo identity = Identities()[i];
    const auto expectSelected = [&](const char* picker) {
      SCOPED_TRACE(picker);
      EXPECT_EQ(form.Label7.caption, identity.username);
      EXPECT_EQ(form.Label6.caption, identity.userId);
      EXPECT_EQ(form.Text1.text, identity.FolderText());
      EXPECT_EQ(form.cmbUserNames.text, identity.username);
      EXPECT_EQ(form.cmbUserIDs.text, identity.userId);
      EXPECT_EQ(form.inpth1.text, identity.FolderText());
    };
    form.cmbUserIDs.pick(i);
    expectSelected("user id");
    form.cmbUserNames.pick(0);
    form.cmbUserNames.pick(identity.username);
    expectSelected("username");
    form.inpth1.pick(0);
    form.inpth1.pick(identity.FolderText());
    expectSelected("folder");
  }
  EXPECT_EQ(form.sb1.panels[0], "");
}

TEST_F(Form1Test, OfTwoIdentitiesWithOneNameTheLaterIsSelected) {
  Form1& form = Start();
  const std::vector<IdentityInfo> identities = Identities();
  for (const IdentityInfo& identity : identities) {
    Store().SetKeyValue(IdentityKey(identity.userId), "Username", "Twin", ValueType::Sz);
  }
  windows->session.GetInputPaths();
  form.cmbUserNames.pick(0);
  EXPECT_EQ(form.Label6.caption, identities.back().userId);
}

TEST_F(Form1Test, ARunningOutlookExpressIsTold) {
  Form1& form = Start();
  const std::string second = Identities()[1].userId;
  Store().CreateKey(CurrentUser(IdentitySettingsKey(second)));
  Store().SetKeyValue(IdentitySettingsKey(second), "Running", RegValue(1), ValueType::Dword);
  form.cmdRefresh.click();
  EXPECT_EQ(form.lblOERunning.caption,
            "Outlook Express is currently running. Please close it if you intend to make changes.");
}

TEST_F(Form1Test, AdditionalInformationTogglesTheWindowsHeight) {
  Form1& form = Start();
  EXPECT_EQ(form.heightTwips, 4215);
  form.cmdShowAdditionalInfo.click();
  EXPECT_EQ(form.heightTwips, 8790);
  EXPECT_TRUE(form.Frame1.visible);
  EXPECT_EQ(form.cmdShowAdditionalInfo.caption, "Hide Additional Identity Info");
  form.cmdShowAdditionalInfo.click();
  EXPECT_EQ(form.heightTwips, 4215);
  EXPECT_EQ(form.cmdShowAdditionalInfo.caption, "Show Additional Identity Info");
}

TEST_F(Form1Test, FoldersAndTheWebPageOpenThroughTheShell) {
  Form1& form = Start();
  form.cmbUserNames.pick("Main Identity");
  form.cmdOpenFolder.click();
  form.cmdOpenWab.click();
  form.menuBar.click("opnbkfldr");
  form.menuBar.click("mnuURL");
  form.menuBar.click("manual");
  EXPECT_THAT(
      platform->shell.explored,
      ElementsAre(form.Text1.text.Get(),
                  "C:\\Documents and Settings\\Ann Miller\\Application Data\\Microsoft\\Address Book\\", kBackup));
  EXPECT_THAT(platform->shell.urls, ElementsAre("https://quillbox.example/", "the manual"));
}

TEST_F(Form1Test, TheBackupFolderIsCheckedAtStart) {
  // The first check resets a folder that is gone without a word; the second one, at the end of the start, shows it.
  windows->session.backupFolder.Choose(WinPath("D:\\Gone"));
  EXPECT_EQ(windows->session.backupFolder.Check(true).folder, WinPath("D:\\Gone"));
  windows->session.backupFolder.Choose(WinPath("D:\\Gone"));
  windows->form1.Open();
  EXPECT_EQ(windows->form1.lblbkuppth.caption, "None Selected");
  EXPECT_EQ(Read(kIdentitiesKey, "Quillbox"), RegValue("None Selected"));
  EXPECT_TRUE(dialogs.messages.empty());

  OpenDisk();
  Start();
  EXPECT_EQ(Read(kIdentitiesKey, "Quillbox"), RegValue(kBackup));
  EXPECT_EQ(windows->form1.lblbkuppth.colour, Colour::Default);
}

TEST_F(Form1Test, ABrowsedFolderBecomesTheBackupFolder) {
  Form1& form = Start();
  dialogs.folderAnswers = {std::nullopt, WinPath("D:\\Mail")};
  form.menuBar.click("brbkfldr");
  EXPECT_EQ(form.lblbkuppth.caption, kBackup);
  form.menuBar.click("brbkfldr");
  EXPECT_EQ(form.lblbkuppth.caption, "D:\\Mail");
  EXPECT_EQ(windows->form3.txtbkPth.text, "D:\\Mail");
  EXPECT_EQ(dialogs.folderDialogs.front().title, "Select a directory");
  EXPECT_EQ(dialogs.folderDialogs.front().folder, WinPath()) << "backups go to this computer: it opens on the home";

  OpenResult key = Store().OpenKey(CurrentUser(kIdentitiesKey));
  EXPECT_EQ(platform->GetRegistry().Query(key.key, "Quillbox", std::nullopt).type, ValueType::Sz);
  platform->GetRegistry().DeleteValue(key.key, "Quillbox");
  form.menuBar.click("opnbkfldr");
  EXPECT_EQ(dialogs.LastMessage(), "Backup Folder Has Not Been Set");
}

TEST_F(Form1Test, TheOverwriteBoxIsStoredAndLoaded) {
  Form1& form = Start();
  form.chkOverwrite.click();
  EXPECT_EQ(Read(kIdentitiesKey, "BackupOverWrite"), RegValue(1));
  OpenDisk();
  EXPECT_TRUE(Start().chkOverwrite.checked);
  windows->form1.chkOverwrite.click();
  EXPECT_EQ(Read(kIdentitiesKey, "BackupOverWrite"), RegValue(0));
  OpenDisk();
  EXPECT_FALSE(Start().chkOverwrite.checked);
  Store().SetKeyValue(kIdentitiesKey, "BackupOverWrite", RegValue(7), ValueType::Dword);
  windows->form1.chkOverwrite.checked = true;
  windows->form1.Open();
  EXPECT_TRUE(windows->form1.chkOverwrite.checked);
}

/// The lines of the golden text from "window NAME" to the next window.
std::vector<GoldenLine> WindowLines(const std::string& name) {
  std::vector<GoldenLine> lines;
  std::string window;
  for (const GoldenLine& line : ReadGolden("ui/forms/windows_golden.txt")) {
    if (line[0] == "window") window = line[1];
    if (window == name) lines.push_back(line);
  }
  return lines;
}

TEST_F(Form1Test, EveryWindowHasTheTextsOfTheGoldenText) {
  for (Form* form : windows->All()) {
    if (form->Name() == "Form12" || form->Name() == "Form13") continue;  // they have a golden text of their own
    std::set<std::string> names;
    for (const GoldenLine& line : WindowLines(form->Name())) {
      if (line[0] == "menu") continue;
      names.insert(line[1]);
      if (line[0] != "window") {
        ExpectLook(form->Named<Control>(line[1]), line);
      } else {
        EXPECT_EQ(form->caption, line[2]);
      }
    }
    for (const Control* control : form->Controls()) {
      EXPECT_EQ(names.count(control->Name()), 1U) << form->Name() << " " << control->Name();
    }
  }
}

TEST_F(Form1Test, TheMenuHasTheItemsOfTheGoldenText) {
  std::vector<std::string> wanted;
  for (const GoldenLine& line : WindowLines("Form1")) {
    if (line[0] != "menu") continue;
    wanted.emplace_back();
    for (const std::string& word : line.words) wanted.back() += word + " ";
  }
  std::vector<std::string> items;
  for (const MenuItem& item : windows->form1.menuBar.Items()) {
    items.emplace_back("menu ");
    for (const std::string& caption : item.path)
      items.back() += (&caption == &item.path[0] ? "" : "> ") + caption + " ";
    items.back() += item.name + (item.enabled ? " " : " off ");
  }
  EXPECT_EQ(items, wanted);
}

TEST_F(Form1Test, CommandsClearThePanelsAndOpenTheWindowsOfTheGoldenText) {
  Form1& form = Start();
  form.cmbUserNames.pick("Main Identity");
  dialogs.cancelsAll = true;
  for (const GoldenLine& line : WindowLines("Form1")) {
    const GoldenLine clears = line.Fact("clears");
    if (clears.words.empty()) continue;
    SCOPED_TRACE(line.Place() + " " + line.words.back());
    for (auto& panel : form.sb1.panels) panel = "old";
    if (line[0] == "menu") {
      form.menuBar.click(line.words.back());
    } else {
      form.Named<Button>(line[1]).click();
    }
    std::vector<std::string> cleared = {"clears"};
    for (const std::size_t panel : {0U, 1U}) {
      if (form.sb1.panels[panel]->empty()) cleared.push_back(std::to_string(panel + 1));
    }
    EXPECT_EQ(cleared, clears.words);
    const std::string opens = line.Fact("opens")[1];
    EXPECT_EQ(form.visible, opens.empty());
    for (Form* window : windows->All()) {
      if (window == &form || !window->visible) continue;
      EXPECT_EQ(window->Name(), opens);
      window->close();
    }
    EXPECT_TRUE(form.visible);
  }
}

TEST_F(Form1Test, ClosingTheWindowUnloadsTheOthersInOrderAndEndsTheProgram) {
  Form1& form = Start();
  std::vector<std::string> ends;
  for (Form* window : windows->All()) {
    window->Show();
    window->onChanged = [&ends, window] { ends.push_back(window->Name()); };
  }
  windows->quit = [&] { ends.emplace_back("quit"); };
  form.close();
  EXPECT_THAT(ends, ElementsAre("Form2", "Form3", "Form4", "Form6", "Form9", "Form1", "quit"));
}

TEST_F(Form1Test, AfterALoadThatStoppedNothingIsSelectedAndAllIsBackedUp) {
  Form1& form = Start();
  form.cmbUserIDs.pick(1);
  Store().SetKeyValue(kIdentitiesKey, "Default User ID", "{gone}", ValueType::Sz);
  windows->session.GetInputPaths();
  EXPECT_EQ(dialogs.LastMessage(), "Registry read error 2 Default User ID Username");
  EXPECT_THAT(form.cmbUserNames.items.Get(), ElementsAre("Main Identity"));
  EXPECT_THAT(form.cmbUserIDs.items.Get(), ElementsAre(kMain, kOffice, kGuest));
  EXPECT_THAT(form.inpth1.items.Get(), IsEmpty());
  EXPECT_EQ(form.Label2.caption, "3");
  EXPECT_EQ(form.Label6.caption.Get() + form.Label7.caption.Get() + form.Text1.text.Get(), "");
  EXPECT_THAT(form.txtwabloc.text.Get(), ::testing::EndsWith(".wab"));
  for (const char* item : {"qbk", "Identity", "msgRules", "resSigs", "chgIdentName"}) {
    dialogs.messages.clear();
    form.menuBar.click(item);
    EXPECT_EQ(dialogs.LastMessage(), "No identity is selected.") << item;
  }
  EXPECT_THAT(Names(BackupFolderOnHost()), IsEmpty());
  form.cmdbkupall.click();
  EXPECT_THAT(Names(BackupFolderOnHost()), ElementsAre("Büro", "Main Identity"));

  form.menuBar.click("remIdent");
  windows->form5.cmbDelIdent.pick(kOffice);
  EXPECT_EQ(windows->form5.lblusrnameIdent.caption, "Büro");
  windows->form5.close();
  form.menuBar.click("chgStartIdent");
  EXPECT_EQ(windows->form8.cmbDefUserID.text, "{gone}");
  windows->form8.cmbDefUserID.pick(kOffice);
  windows->form8.cmdChgDefault.click();
  EXPECT_EQ(form.Label7.caption, "Main Identity");
  EXPECT_EQ(form.Label10.caption, "Büro");
  EXPECT_EQ(form.cmbUserNames.items->size(), 3u);

  Store().DeleteKey(CurrentUser(kIdentitiesKey));
  windows->session.GetInputPaths();
  EXPECT_THAT(form.cmbUserNames.items.Get(), IsEmpty());
  EXPECT_EQ(form.Label2.caption, "0");
  EXPECT_EQ(form.Label6.caption, "");
}

}  // namespace
}  // namespace quillbox
