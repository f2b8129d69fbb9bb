// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/delete_identities_window.h"

#include "identities/manage_identities.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kConfirm =
    "Are you sure you want to delete this Identity from the registry? If not, press Cancel now. If you are certain and "
    "fully understand what this will do, press OK to continue. There is absolutely no turning back unless you backed "
    "up this Identity";

}  // namespace

Form5::Form5(ProgramWindows& windows)
    : Form(windows.guard, "Form5", "Delete Identities"),
      Frame1(*this, "Frame1", "NOTICE NOTICE NOTICE"),
      Label1(*this, "Label1", "NOTE:"),
      Label2(*this, "Label2",
             "If you are unsure as to what this function will do, press the CLOSE button now as removing an Identity "
             "can cause Outlook Express to not run or not run properly!!!"),
      Label3(*this, "Label3", "Use this function only if you understand fully it's affect on Outlook Express."),
      Label4(*this, "Label4", "This does not delete the message stores folder where the DBX files are located."),
      lblUserIDDelIdent(*this, "lblUserIDDelIdent", "Identity {USER_ID}"),
      cmbDelIdent(*this, "cmbDelIdent"),
      lblUsrNameDelIdent(*this, "lblUsrNameDelIdent", "Username:"),
      lblusrnameIdent(*this, "lblusrnameIdent"),
      cmdRemoveIdent(*this, "cmdRemoveIdent", "Remove Selected Identity"),
      cmdClose(*this, "cmdClose", "Close"),
      session_(windows.session),
      windows_(windows) {
  for (Label* label : {&Label2, &Label3, &Label4}) label->wraps = true;
  // Enter must not remove anything.
  cmdClose.isDefault = true;
  cmdClose.isCancel = true;
  cmbDelIdent.onClick = [this] { cmbDelIdent_Click(); };
  cmdRemoveIdent.onClick = [this] { cmdRemoveIdent_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form5::Layout() {
  return Column({
      Group(Frame1, Column({Item(Label2), Item(Label3), Row({Item(Label1), Item(Label4, 1)})})),
      Grid(2, {1}, {Item(lblUserIDDelIdent), Item(cmbDelIdent), Item(lblUsrNameDelIdent), Item(lblusrnameIdent)}),
      Space(),
      Row({Item(cmdRemoveIdent, 1), Item(cmdClose, 1)}),
  });
}

void Form5::Open() {
  FillList();
  windows_.ReplaceMainWindow(*this);
}

void Form5::FillList() {
  session_.GetInputPaths();
  ListAndShowUserIds(cmbDelIdent, session_.Catalogue());
  cmbDelIdent_Click();
}

void Form5::cmbDelIdent_Click() {
  lblusrnameIdent.caption = ReadUsername(session_.store, cmbDelIdent.text);
}

void Form5::cmdRemoveIdent_Click() {
  const std::string userId = cmbDelIdent.text;
  if (userId.empty()) return;
  Dialogs& dialogs = session_.platform.GetDialogs();
  if (dialogs.Show({.text = kConfirm, .buttons = MessageButtons::YesNo}) == MessageAnswer::Yes) {
    RemoveIdentity(session_.store, userId);
    dialogs.Show({.text = "Identity has been removed."});
    FillList();
  } else {
    FillList();
    dialogs.Show({.text = "No Changes occurred."});
  }
}

void Form5::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
