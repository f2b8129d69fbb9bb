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
      cmdResIELogo(*this, "cmdResIELogo", "Restore IE Logo"),
      cmdClose(*this, "cmdClose", "Close"),
      session_(windows.session),
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
  windows_.ReplaceMainWindow(*this);
}

void Form12::Form_Load() {
  session_.GetInputPaths();
  ListAndShowUserIds(cmbUsr, session_.Catalogue());
  lblcurUsrName.caption = editor.Username(cmbUsr.text);
  settings.Load(SettingsEditor::Occasion::Opening);
}

void Form12::cmbUsr_Click() {
  lblcurUsrName.caption = editor.Username(cmbUsr.text);
  settings.Load(SettingsEditor::Occasion::Shown, SettingControls::Which::OfIdentity);
}

void Form12::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
