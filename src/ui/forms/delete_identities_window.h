// SPDX-License-Identifier: GPL-3.0-or-later
// "Delete Identities": removes an identity's key from the registry. Its message store stays.
#pragma once

#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form5 : public Form {
 public:
  explicit Form5(ProgramWindows& windows);

  // In tab order.
  Frame Frame1;
  Label Label1;
  Label Label2;
  Label Label3;
  Label Label4;
  Label lblUserIDDelIdent;
  ComboBox cmbDelIdent;
  Label lblUsrNameDelIdent;
  Label lblusrnameIdent;
  Button cmdRemoveIdent;
  Button cmdClose;

  /// Shows the window with the identities that there are now, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void FillList();
  void cmbDelIdent_Click();
  void cmdRemoveIdent_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
};

}  // namespace quillbox
