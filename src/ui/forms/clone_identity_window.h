// SPDX-License-Identifier: GPL-3.0-or-later
// "Clone An Identity": copies an identity's settings, and its messages if wanted, onto another identity, which can be
// made right here.
#pragma once

#include <optional>
#include <string>

#include "identities/clone_identity.h"
#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form4 : public Form {
 public:
  explicit Form4(ProgramWindows& windows);

  // In tab order.
  Frame Frame3;
  ComboBox cmbSource;
  Label lblSourceUsername;
  Label lblSourceUser;
  Label Label2;
  Label Label1;
  Frame Frame1;
  CheckBox Check1;
  ComboBox cmbDestination;
  Label lblDestUName;
  Button cmdCreateIdentity;
  CheckBox Check2;
  Label usrlbl;
  TextBox txtuserid;
  Label lblDestinationUsername;
  Label lblDestinationUser;
  CheckBox chkCopyDBX;
  CheckBox chkKeepReg;
  Button cmdClone;
  Button cmdClose;
  StatusBar StatusBar1;

  /// Shows the window with the identities that there are now, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void ShowUsername(Label& label, const std::string& userId);
  /// The destination's {USER_ID}; nothing after a message that says what is wrong with the choice.
  std::optional<std::string> ChooseDestination();
  /// False after a message that says what failed and what was done before.
  bool CloneSettings(IdentityClone& clone);
  void CopyMessages(IdentityClone& clone);
  void OfferTheCopiesFolder(IdentityClone& clone);
  void Tell(const std::string& text, MessageIcon icon = MessageIcon::Exclamation);
  void cmdCreateIdentity_Click();
  void cmdClone_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
};

}  // namespace quillbox
