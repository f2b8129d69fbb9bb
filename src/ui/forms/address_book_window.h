// SPDX-License-Identifier: GPL-3.0-or-later
// "Change Address Book": another address book file to use, by browsing to it or by one click on one of four that are
// remembered, and a saved copy of the setting.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "addressbook/address_book.h"
#include "session/session.h"
#include "ui/form.h"

namespace quillbox {

class ProgramWindows;

class Form6 : public Form {
 public:
  explicit Form6(ProgramWindows& windows);

  OptionGroup slots;
  // In tab order.
  Frame Frame1;
  Label lblcurwablbl;
  Label lblcurwabfile;
  Label lblPathWabLoc;
  TextBox txtwabloc;
  Label lblNewAddBk;
  TextBox txtNewAddBk;
  Button cmdBrowse1;
  Label lblNewAddressBook;
  Label lblPathNewWabLoc;
  Button cmdChangeWab;
  Frame Frame3;
  OptionButton Option1;
  OptionButton Option2;
  OptionButton Option3;
  OptionButton Option4;
  Button Command1;
  Frame Frame2;
  Button cmdmkbackup6;
  Button cmdRestore;
  TextBox txtRestore;
  Button cmdClose;
  StatusBar sb1;

  /// Shows the window with the address book that is in use now.
  void Open();

  LayoutNode Layout() override;

 private:
  std::array<OptionButton*, kSlotCount> Options() { return {&Option1, &Option2, &Option3, &Option4}; }
  /// Shows what each slot holds; none is chosen then.
  void ShowSlots();
  void ShowCurrent(const WinPath& file);
  void ShowNew(const WinPath& file);
  void ShowChanged(const std::string& outcome);
  void Tell(const char* text);
  void Form_Activate();
  void Option_Click(std::size_t slot);
  void cmdBrowse1_Click();
  void cmdChangeWab_Click();
  void Command1_Click();
  void cmdmkbackup6_Click();
  void cmdRestore_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
  AddressBook book_;
  std::optional<WinPath> pending_;  ///< the file chosen by browsing
};

}  // namespace quillbox
