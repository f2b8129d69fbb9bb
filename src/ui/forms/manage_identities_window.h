// SPDX-License-Identifier: GPL-3.0-or-later
// "Manage Identities": which identity is the default one, and which one Outlook Express starts as.
#pragma once

#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form8 : public Form {
 public:
  explicit Form8(ProgramWindows& windows);

  // In tab order.
  Frame Frame2;
  Label Label2;
  Label lbllbl3;
  ComboBox cmbDefUserID;
  Label lblDefUName;
  Label lblDefUsername;
  Button cmdChgDefault;
  Frame Frame1;
  Label Label1;
  Label lbllbl1;
  Label lbllbl2;
  ComboBox cmbStartAs;
  Label lblUNameStart;
  Label lblUsernameStartAs;
  Label lblForceStart;
  Button cmdStartAs;
  Button cmdClose;

  /// Shows the window with what is set now, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Load();
  void cmbDefUserID_Click();
  void cmbStartAs_Click();
  void cmdChgDefault_Click();
  void cmdStartAs_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
};

}  // namespace quillbox
