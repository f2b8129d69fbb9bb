// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/odds_and_ends_window.h"

#include "settings/settings_tabs.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

Form12::Form12(ProgramWindows& windows)
    : Form(windows.guard, "Form12", "Odds and Ends"),
      cmbUsr(*this, "cmbUsr"),
      lblcurUsrName(*this, "lblcurUsrName"),
      editor(windows.session.platform, windows.session.store),
      settings(*this, kOddsAndEnds, editor, windows.session.platform.GetDialogs(),
               [this] { return cmbUsr.text.Get(); }),
      lblProtected(*this, "lblProtected"),
      cmdResIELogo(*this, "cmdResIELogo", "Restore IE Logo"),
      cmdClose(*this, "cmdClose", "Close"),
      session_(windows.session),
      windows_(windows) {
  cmbUsr.spokenName = "Identity";
  lblProtected.wraps = true;
  cmdClose.isCancel = true;
  cmbUsr.onClick = [this] { cmbUsr_Click(); };
  cmdResIELogo.onClick = [this] { editor.RestoreBrowserLogo(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form12::Layout() {
  return Column({
      Row({Item(cmbUsr, 1), Item(lblcurUsrName, 1)}),
      settings.Layout(),
      Row({Item(lblProtected, 1), Item(cmdResIELogo), Item(cmdClose)}),
  });
}

void Form12::Open() {
  Form_Load();
  windows_.ReplaceMainWindow(*this);
}

void Form12::Form_Load() {
  session_.GetInputPaths();
  ListAndShowUserIds(cmbUsr, session_.Catalogue());
  lblcurUsrName.caption = editor.Username(cmbUsr.text);
  settings.Load(SettingsEditor::Occasion::Opening);
  lblProtected.caption = session_.platform.WriteProtection({RegistryRoot::CurrentUser, RegistryRoot::LocalMachine});
}

void Form12::cmbUsr_Click() {
  if (!settings.SettleTyped(SettingControls::Which::OfIdentity)) {
    cmbUsr.text = settings.ShownFor();
    return;
  }
  lblcurUsrName.caption = editor.Username(cmbUsr.text);
  settings.Load(SettingsEditor::Occasion::Shown, SettingControls::Which::OfIdentity);
}

void Form12::cmdClose_Click() {
  if (settings.SettleTyped()) windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
