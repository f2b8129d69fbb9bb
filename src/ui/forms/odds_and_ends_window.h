// SPDX-License-Identifier: GPL-3.0-or-later
// "Odds and Ends": switches and title bars of Outlook Express and Internet Explorer that their own dialogs do not
// offer.
#pragma once

#include "session/session.h"
#include "ui/form.h"
#include "ui/forms/setting_controls.h"

namespace quillbox {

class ProgramWindows;

class Form12 : public Form {
 public:
  explicit Form12(ProgramWindows& windows);

  // In tab order; those of the settings are reached by their names.
  ComboBox cmbUsr;
  Label lblcurUsrName;
  SettingsEditor editor;
  SettingControls settings;
  Label lblProtected;
  Button cmdResIELogo;
  Button cmdClose;

  /// Shows this window in place of the main window, with everything read afresh.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void cmbUsr_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
};

}  // namespace quillbox
