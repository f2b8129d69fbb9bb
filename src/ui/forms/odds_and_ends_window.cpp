#include "ui/forms/odds_and_ends_window.h"

#include "settings/settings_tabs.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

Form12::Form12(Program& program, ProgramWindows& windows)
    : Form(program.guard, "Form12", "Odds and Ends"),
      cmbUsr(*this, "cmbUsr"),
      lblcurUsrName(*this, "lblcurUsrName"),
      editor(program.platform, program.store),
      settings(*this, kOddsAndEnds, editor, program.platform.GetDialogs(), [this] { return cmbUsr.text.Get(); }),
      cmdResIELogo(*this, "cmdResIELogo", "Restore IE Logo"),
      cmdClose(*this, "cmdClose", "Close"),
      program_(program),
      windows_(windows) {
  cmdClose.isCancel = true;
  cmbUsr.onClick = [this] { cmbUsr_Click(); };
  cmdResIELogo.onClick = [this] { editor.RestoreBrowserLogo(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form12::Layout() {
  return Column({
      Row({Item(cmbUsr, 1), Item(lblcurUsrName, 1)}),
      settings.Layout(),
      Row({Space(), Item(cmdResIELogo), Item(cmdClose)}),
  });
}

void Form12::Open() {
  Form_Load();
  windows_.form1.Hide();
  Show();
}

void Form12::Form_Load() {
  windows_.form1.GetInputPaths();
  const auto& identities = program_.catalogue.identities;
  cmbUsr.Clear();
  for (const IdentityInfo& identity : identities) cmbUsr.Add(identity.userId);
  if (!identities.empty()) cmbUsr.text = identities.front().userId;
  lblcurUsrName.caption = editor.Username(cmbUsr.text);
  settings.Load(SettingsEditor::Occasion::Opening);
}

void Form12::cmbUsr_Click() {
  lblcurUsrName.caption = editor.Username(cmbUsr.text);
  settings.Load(SettingsEditor::Occasion::Shown, SettingControls::Which::OfIdentity);
}

void Form12::cmdClose_Click() {
  windows_.form1.Show();
  Hide();
}

}  // namespace quillbox
