// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/create_identity_window.h"

#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kBegin = "Press Create New Identity button above to begin.";

}  // namespace

Form7::Form7(ProgramWindows& windows)
    : Form(windows.guard, "Form7", "Create New identity"),
      cmdCreateNewIdentity(*this, "cmdCreateNewIdentity", "Create New Identity"),
      cmdclose(*this, "cmdclose", "Close"),
      lblNewUsername(*this, "lblNewUsername", "New Username For This Identiity is: "),
      txtNewUsername(*this, "txtNewUsername", "", kBegin),
      lblNewGUID(*this, "lblNewGUID", "New {USER_ID}  is:"),
      txtNewGUID(*this, "txtNewGUID", "", kBegin),
      sb1(*this, "sb1", 1),
      session_(windows.session),
      windows_(windows) {
  txtNewUsername.readOnly = true;
  txtNewGUID.readOnly = true;
  cmdclose.isCancel = true;
  cmdCreateNewIdentity.onClick = [this] { cmdCreateNewIdentity_Click(); };
  cmdclose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form7::Layout() {
  return Column({
      Row({Item(cmdCreateNewIdentity, 1), Item(cmdclose, 1)}),
      Grid(2, {1}, {Item(lblNewUsername), Item(txtNewUsername), Item(lblNewGUID), Item(txtNewGUID)}),
      Space(),
      Item(sb1),
  });
}

void Form7::Open() {
  txtNewUsername.text = "";
  txtNewGUID.text = "";
  sb1.panels[0] = "";
  windows_.ReplaceMainWindow(*this);
}

void Form7::cmdCreateNewIdentity_Click() {
  sb1.panels[0] = "";
  const auto made = session_.identityMaker.Run({});
  if (!made) {
    sb1.panels[0] = "No New Identity Was Created.";
    return;
  }
  session_.GetInputPaths();
  txtNewUsername.text = made->username;
  txtNewGUID.text = made->userId;
  sb1.panels[0] = "New {USER_ID} Created";
}

void Form7::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
