// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/manage_identities_window.h"

#include "identities/create_identity.h"
#include "identities/manage_identities.h"
#include "identities/user_id.h"
#include "ui/forms/identity_picker.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kMakeChange = "Click to Make Change";

}  // namespace

Form8::Form8(ProgramWindows& windows)
    : Form(windows.guard, "Form8", "Manage Identities"),
      Frame2(*this, "Frame2", "Default Identity"),
      Label2(*this, "Label2", "Use this Identity when a program cannot ask you to choose an Identity"),
      lbllbl3(*this, "lbllbl3",
              "To change the Default Identity, select one from the list below and press the Click to Make Change "
              "button."),
      cmbDefUserID(*this, "cmbDefUserID"),
      lblDefUName(*this, "lblDefUName", "Default Username"),
      lblDefUsername(*this, "lblDefUsername"),
      cmdChgDefault(*this, "cmdChgDefault", kMakeChange),
      Frame1(*this, "Frame1", "Start As...."),
      Label1(*this, "Label1", "Use this Identity when starting a program"),
      lbllbl1(*this, "lbllbl1",
              "To make a change to the Start As Identity, select an Identity below and press the Click to Make Change "
              "button."),
      lbllbl2(*this, "lbllbl2",
              "Use the {0000-....-0000} User ID and Exit and Logoff in Outlook Express to prompt for an Identity at "
              "start up."),
      cmbStartAs(*this, "cmbStartAs"),
      lblUNameStart(*this, "lblUNameStart", "Start As Username"),
      lblUsernameStartAs(*this, "lblUsernameStartAs"),
      lblForceStart(*this, "lblForceStart"),
      cmdStartAs(*this, "cmdStartAs", kMakeChange),
      cmdClose(*this, "cmdClose", "Close"),
      session_(windows.session),
      windows_(windows) {
  for (Label* label : {&Label2, &lbllbl3, &Label1, &lbllbl1, &lbllbl2}) label->wraps = true;
  cmbDefUserID.spokenName = "Default identity";
  cmbStartAs.spokenName = "Identity to start as";
  // Two buttons make changes, so Enter presses neither.
  cmdClose.isDefault = true;
  cmdClose.isCancel = true;
  cmbDefUserID.onClick = [this] { cmbDefUserID_Click(); };
  cmbStartAs.onClick = [this] { cmbStartAs_Click(); };
  cmdChgDefault.onClick = [this] { cmdChgDefault_Click(); };
  cmdStartAs.onClick = [this] { cmdStartAs_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode Form8::Layout() {
  return Column({
      Group(Frame2, Column({
                        Item(Label2),
                        Item(lbllbl3),
                        Row({Item(cmbDefUserID, 1), Item(cmdChgDefault)}),
                        Row({Item(lblDefUName), Item(lblDefUsername, 1)}),
                    })),
      Group(Frame1, Column({
                        Item(Label1),
                        Item(lbllbl1),
                        Item(lbllbl2),
                        Row({Item(cmbStartAs, 1), Item(cmdStartAs)}),
                        Row({Item(lblUNameStart), Item(lblUsernameStartAs, 1)}),
                        Item(lblForceStart),
                    })),
      Space(),
      Row({Space(), Item(cmdClose)}),
  });
}

void Form8::Open() {
  Form_Load();
  windows_.ReplaceMainWindow(*this);
}

void Form8::Form_Load() {
  session_.GetInputPaths();
  std::vector<std::string> startAs = UserIds(session_.Catalogue());
  startAs.insert(startAs.begin(), kNobody);
  cmbStartAs.Clear();
  cmbStartAs.items = std::move(startAs);
  cmbStartAs.text = ReadStartAs(session_.store);
  cmbStartAs_Click();
  ListUserIds(cmbDefUserID, session_.Catalogue());
  cmbDefUserID.text = ReadDefaultIdentity(session_.store);
  cmbDefUserID_Click();
}

void Form8::cmbStartAs_Click() {
  const std::string username = ReadUsername(session_.store, cmbStartAs.text);
  lblUsernameStartAs.caption = username.empty() ? "Prompt For Identity" : username;
  lblForceStart.caption = username.empty() ? "To retain this setting, you must use Exit and Logoff" : "";
}

void Form8::cmbDefUserID_Click() {
  lblDefUsername.caption = ReadUsername(session_.store, cmbDefUserID.text);
}

void Form8::cmdChgDefault_Click() {
  session_.SetDefault(cmbDefUserID.text);
}

void Form8::cmdStartAs_Click() {
  if (!cmbStartAs.text->empty()) SetStartAs(session_.store, cmbStartAs.text);
}

void Form8::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
