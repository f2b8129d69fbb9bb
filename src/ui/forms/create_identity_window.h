// SPDX-License-Identifier: GPL-3.0-or-later
// "Create New identity": makes a new, empty identity and shows its username and {USER_ID}.
#pragma once

#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form7 : public Form {
 public:
  explicit Form7(ProgramWindows& windows);

  // In tab order.
  Button cmdCreateNewIdentity;
  Button cmdclose;
  Label lblNewUsername;
  TextBox txtNewUsername;
  Label lblNewGUID;
  TextBox txtNewGUID;
  StatusBar sb1;

  /// Shows the window, emptied, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  void cmdCreateNewIdentity_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
};

}  // namespace quillbox
