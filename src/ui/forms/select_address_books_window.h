// SPDX-License-Identifier: GPL-3.0-or-later
// "Select Address Books (.WAB)": which files the four slots of the address book window remember.
#pragma once

#include <vector>

#include "addressbook/address_book.h"
#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form9 : public Form {
 public:
  explicit Form9(ProgramWindows& windows);

  // In tab order.
  Label lblSelect9;
  TextBox txtOutPath3;
  Button cmdBrowse1;
  MultiListBox lstFiles9;
  Button cmdSelWABs;
  Button cndClose9;

  /// Shows the window with the folder of the address book that is in use.
  void Open();

  LayoutNode Layout() override;

 private:
  void Form_Activate();
  /// Lists the address book files of a folder.
  void getem(const DiskPath& folder);
  void deselect() { lstFiles9.selected = std::vector<std::size_t>{}; }
  bool MayEmptySlots();
  void cmdBrowse1_Click();
  void cmdSelWABs_Click();
  void cndClose9_Click();

  Session& session_;
  ProgramWindows& windows_;
  AddressBook book_;
};

}  // namespace quillbox
