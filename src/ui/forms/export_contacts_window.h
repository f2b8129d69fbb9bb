// SPDX-License-Identifier: GPL-3.0-or-later
// "Export Contacts": the people of an address book in a list, and those that are checked in a file that other programs
// read. What of the address book cannot be read is listed beside them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "export/contact_export.h"
#include "session/session.h"
#include "ui/form.h"
#include "ui/list_view.h"

namespace quillbox {

class ProgramWindows;

class ExportContactsForm : public Form {
 public:
  explicit ExportContactsForm(ProgramWindows& windows);

  // In tab order.
  Label lblBook;
  Label lblFile;
  Button cmdFromFile;
  ListView lvContacts;
  Button cmdSelectAll;
  Button cmdDeselectAll;
  Label lblCount;
  Label lblNotExported;
  Label lblFaults;
  ListBox lstFaults;
  Label lblFormat;
  ComboBox cmbFormat;
  Button cmdExport;
  Button cmdClose;
  StatusBar sb1;

  /// Shows the window, with the address book in use, in place of the main window.
  void Open();

  LayoutNode Layout() override;

 private:
  /// Shows the people of `file`; nothing where there is no address book.
  void ShowBook(std::optional<ContactBookFile> file);
  std::string CellOf(std::size_t row, std::size_t column) const;
  const ContactFormatRow& Format() const;
  BookResult Read(const WinPath& file);
  ContactExport Export(ContactChoice chosen, ContactFormat format, const WinPath& target);
  void cmdFromFile_Click();
  void cmdExport_Click();
  void cmdClose_Click();

  Session& session_;
  ProgramWindows& windows_;
  std::optional<ContactBookFile> file_;
  std::vector<std::string> groups_;  ///< of each contact, for the list
};

}  // namespace quillbox
