// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/rules_window.h"

#include <stdexcept>

#include "reports/general_date.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

struct RulesForm::Words {
  const char* form;
  const char* title;
  RuleSet set;
  const char* textFile;
  const char* textFilter;
  const char* pageFile;
  const char* pageFilter;
};

const RulesForm::Words RulesForm::kMail = {
    .form = "Form10",
    .title = "Mail - Message Rules",
    .set = RuleSet::Mail,
    .textFile = "Mail Rules.txt",
    .textFilter = "Text Files (*.txt) | *.txt",
    .pageFile = "Mail Rules.htm",
    .pageFilter = "HTML Files (*.htm) | *.htm",
};
const RulesForm::Words RulesForm::kNews = {
    .form = "Form11",
    .title = "News - Message Rules",
    .set = RuleSet::News,
    .textFile = "News Rules.txt",
    .textFilter = "Text Files (*.txt) | *.txt",
    .pageFile = "News Rules.htm",
    .pageFilter = "Text Files (*.htm) | *.htm",
};

RulesForm::RulesForm(ProgramWindows& windows, const Words& words)
    : Form(windows.guard, words.form, words.title),
      lblUserIDtxt(*this, "lblUserIDtxt", "User ID"),
      cmboUserIDs97(*this, "cmboUserIDs97"),
      lblusrNym(*this, "lblusrNym", "Username:"),
      lblcurUsrName17(*this, "lblcurUsrName17"),
      lblNumRulesText(*this, "lblNumRulesText", "Number of Rules"),
      lblNumRules(*this, "lblNumRules"),
      cmdSave(*this, "cmdSave", "Save To Text File"),
      cmdHTML(*this, "cmdHTML", "Save To HTML File"),
      cmdClose4(*this, "cmdClose4", "Close"),
      session_(windows.session),
      windows_(windows),
      words_(words) {
  cmdSave.isDefault = true;
  cmdClose4.isCancel = true;
  cmboUserIDs97.onClick = [this] { cmboUserIDs97_Click(); };
  cmdSave.onClick = [this] { Save(words_.textFile, words_.textFilter, ReportFormat::Text); };
  cmdHTML.onClick = [this] { Save(words_.pageFile, words_.pageFilter, ReportFormat::Html); };
  cmdClose4.onClick = [this] { cmdClose4_Click(); };
}

LayoutNode RulesForm::Layout() {
  return Column({
      Grid(2, {1},
           {Item(lblUserIDtxt), Item(cmboUserIDs97), Item(lblusrNym), Item(lblcurUsrName17), Item(lblNumRulesText),
            Item(lblNumRules)}),
      Space(),
      Row({Item(cmdSave, 1), Item(cmdHTML, 1), Item(cmdClose4, 1)}),
  });
}

void RulesForm::Open() {
  Form_Load();
  windows_.ReplaceMainWindow(*this);
}

void RulesForm::Form_Load() {
  session_.GetInputPaths();
  ListAndShowUserIds(cmboUserIDs97, session_.Catalogue());
  ShowIdentity();
}

void RulesForm::ShowIdentity() {
  const RegistryPath identity = CurrentUser(IdentityKey(cmboUserIDs97.text));
  lblcurUsrName17.caption = TextOf(session_.store.RegistryGetKeyValue(identity, "Username", ExpandableText::Ignore));
  EnumRules();
}

void RulesForm::EnumRules() {
  lblNumRules.caption = "";
  lblNumRules.caption = std::to_string(Reader().EnumRules(cmboUserIDs97.text).size());
}

RuleReader RulesForm::Reader() {
  return RuleReader(session_.store, words_.set, CodePage(session_.platform.GetSystemFacts().CodePageNumber()));
}

void RulesForm::cmboUserIDs97_Click() {
  ShowIdentity();
}

void RulesForm::Save(const char* name, const char* filter, ReportFormat format) {
  Dialogs& dialogs = session_.platform.GetDialogs();
  if (lblNumRules.caption == "0") {
    dialogs.Show({.text = "No rules to print", .icon = MessageIcon::Exclamation});
    return;
  }
  const std::string created = GeneralDate(session_.store, session_.platform.GetClock().Now());
  const WinPath folder = session_.backupFolder.Get().value_or(WinPath());
  const auto file =
      dialogs.SaveFile({.title = {}, .folder = folder, .name = name, .filter = filter, .askOverwrite = true});
  if (!file) return;
  const HourglassScope hourglass(*this);
  RuleReader reader = Reader();
  const RulesReport report = MakeRulesReport(reader, cmboUserIDs97.text, created, format);
  WriteReport(session_.platform.GetFiles(), session_.platform.GetSystemFacts(), *file, report.text);
  // Nothing is shown for it, but the log has it.
  if (report.brokenOff) throw std::runtime_error(file->Text() + " ends early. " + *report.brokenOff);
}

void RulesForm::cmdClose4_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
