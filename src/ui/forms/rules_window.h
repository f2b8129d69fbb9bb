// SPDX-License-Identifier: GPL-3.0-or-later
// "Mail - Message Rules" and "News - Message Rules": how many rules an identity has, and all of them, decoded, in a
// file. The two windows differ in their words only.
#pragma once

#include "reports/rules_report.h"
#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class RulesForm : public Form {
 public:
  struct Words;
  static const Words kMail;
  static const Words kNews;

  RulesForm(ProgramWindows& windows, const Words& words);

  // In tab order.
  Label lblUserIDtxt;
  ComboBox cmboUserIDs97;
  Label lblusrNym;
  Label lblcurUsrName17;
  Label lblNumRulesText;
  Label lblNumRules;
  Button cmdSave;
  Button cmdHTML;
  Button cmdClose4;

  /// Shows the window, loaded afresh, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void ShowIdentity();
  void EnumRules();
  RuleReader Reader();
  void Save(const char* name, const char* filter, ReportFormat format);
  void cmboUserIDs97_Click();
  void cmdClose4_Click();

  Session& session_;
  ProgramWindows& windows_;
  const Words& words_;
};

}  // namespace quillbox
