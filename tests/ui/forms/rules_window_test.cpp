// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/rules_window.h"

#include "support/sample_ids.h"
#include "support/sample_windows.h"

namespace quillbox {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kFile = "D:\\Backup\\r";

class ReportWindowsTest : public SampleWindows {
 protected:
  std::string Saved() const { return Content(BackupFolderOnHost() / "r"); }
  /// Presses `button` and answers its dialog with kFile.
  void Save(Button& button) {
    dialogs.saveFileAnswers = {WinPath(kFile)};
    button.click();
  }
};

TEST_F(ReportWindowsTest, TheRulesOfTheChosenIdentityAreCountedAndSaved) {
  Start().menuBar.click("svMailMsgRules");
  RulesForm& form = windows->form10;
  EXPECT_EQ(form.lblcurUsrName17.caption, "Main Identity");
  EXPECT_EQ(form.lblNumRules.caption, "10");
  dialogs.saveFileAnswers = {std::nullopt};
  form.cmdHTML.click();
  EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs), "D:\\Backup|Mail Rules.htm|HTML Files (*.htm) | *.htm");
  EXPECT_TRUE(dialogs.saveFileDialogs[0].askOverwrite);

  form.cmboUserIDs97.pick(kOffice);
  EXPECT_EQ(form.lblcurUsrName17.caption, "Büro");
  EXPECT_EQ(form.lblNumRules.caption, "1");
  Save(form.cmdSave);
  EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs), "D:\\Backup|Mail Rules.txt|Text Files (*.txt) | *.txt");
  EXPECT_THAT(Saved(), StartsWith("Mail Rules Text File created: "));
  EXPECT_THAT(Saved(), HasSubstr(std::string("{USER_ID}: ") + kOffice + "\r\n"));
  EXPECT_THAT(Saved(), HasSubstr("Name: Rechnungen f\xFCr B\xFCro\r\n"));
  form.close();
  EXPECT_TRUE(windows->form1.visible && !form.visible);
  windows->form1.menuBar.click("svMailMsgRules");
  EXPECT_EQ(form.lblcurUsrName17.caption, "Main Identity") << "loaded afresh";
}

TEST_F(ReportWindowsTest, NewsRulesHaveAWindowOfTheirOwnAndNoneAreNotPrinted) {
  Start().menuBar.click("svNewsRules");
  RulesForm& form = windows->form11;
  EXPECT_EQ(form.lblNumRules.caption, "5");
  Save(form.cmdHTML);
  EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs), "D:\\Backup|News Rules.htm|Text Files (*.htm) | *.htm");
  Save(form.cmdSave);
  EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs), "D:\\Backup|News Rules.txt|Text Files (*.txt) | *.txt");
  EXPECT_THAT(Saved(), StartsWith("News Rules Text File created: "));
  Save(form.cmdHTML);
  EXPECT_THAT(Saved(), StartsWith("<DIV>News Rules Text File created: "));
  form.cmboUserIDs97.pick(kOffice);
  form.cmdSave.click();
  form.cmdHTML.click();
  ASSERT_EQ(dialogs.messages.size(), 2U);
  EXPECT_EQ(dialogs.LastAsked(), "No rules to print [OK, exclamation]");
}

TEST_F(ReportWindowsTest, ABrokenRuleLeavesTheReportUpToItAndSaysNothing) {
  const RegistryPath rule = CurrentUser(IdentitySettingsKey(kOffice) + "\\Rules\\Mail\\000");
  store->SetValueEx(store->CreateKey(rule.Child("Criteria\\009")), "Type", ValueType::Dword, 31);
  Start().menuBar.click("svMailMsgRules");
  windows->form10.cmboUserIDs97.pick(kOffice);
  Save(windows->form10.cmdSave);
  EXPECT_THAT(Saved(), EndsWith("CriteriaValue: Rechnung f\xE4llig  \r\n"));
  EXPECT_THAT(platform->log.lines.back(),
              EndsWith("r ends early. Value: \"\" is not a number (while decoding a message rule)"));

  dialogs.saveFileAnswers = {WinPath("Q:\\r")};
  windows->form10.cmdSave.click();
  EXPECT_THAT(platform->log.lines.back(), HasSubstr("there is no such drive"));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ReportWindowsTest, TheIdentityReportTellsWhatTheMainWindowShowsAndTheSearchFound) {
  Form1& form = Start();
  form.cmbUserNames.pick("Büro");
  dialogs.saveFileAnswers = {WinPath(kFile), std::nullopt, WinPath("D:\\Backup\\r2")};
  form.menuBar.click("SaveAs");
  EXPECT_THAT(dialogs.LastAsked(), StartsWith("If you are wanting to save the info"));
  EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs),
            "D:\\Backup|Outlook Express Identity Info.txt|Text Files (*.txt) | *.txt");
  EXPECT_EQ(form.sb1.panels[0], std::string(kFile) + " Report Complete");
  EXPECT_THAT(Saved(), HasSubstr("DBX Files Found: 0\r\n \r\nEnd Of File\r\n"));
  EXPECT_THAT(Saved(), HasSubstr(std::string("{USER ID}: \r\nB\xFCro: ") + kOffice + "\r\n \r\n"));

  form.sb1.panels[0] = "";
  windows->form2.cboDrives.text = "D:\\";
  windows->form2.cmdSearch.click();
  form.menuBar.click("SaveAsHTML");
  EXPECT_EQ(form.sb1.panels[0], "") << "cancelled";
  EXPECT_EQ(dialogs.LastFile(dialogs.saveFileDialogs),
            "D:\\Backup|Outlook Express Identity Info.htm|Text Files (*.htm) | *.htm");
  form.menuBar.click("SaveAsHTML");
  EXPECT_EQ(dialogs.messages.size(), 1U) << "a search was performed";
  EXPECT_EQ(form.sb1.panels[0], "D:\\Backup\\r2 File Complete");
  EXPECT_THAT(Content(BackupFolderOnHost() / "r2"),
              HasSubstr("<B> Files Found: </B>" + windows->form2.Label3.caption.Get() + " </DIV>\r\n"));
}

}  // namespace
}  // namespace quillbox
