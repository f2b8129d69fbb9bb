// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/forms/export_contacts_window.h"

#include <utility>
#include <variant>

#include "contacts/exported_contact.h"
#include "core/copy_tally.h"
#include "core/refusal_message.h"
#include "text/message_text.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kBookFilter = "Address Book (*.wab, *.wa~) | *.wab;*.wa~";
constexpr int kFaultLines = 4;

std::vector<std::string> FormatCaptions() {
  std::vector<std::string> captions;
  for (const ContactFormatRow& row : ContactFormats()) captions.emplace_back(row.caption);
  return captions;
}

std::string MailsOf(const Contact& contact) {
  std::string mails;
  for (const MailAddress& mail : contact.mails) mails += (mails.empty() ? "" : ", ") + mail.address;
  return mails;
}

}  // namespace

ExportContactsForm::ExportContactsForm(ProgramWindows& windows)
    : Form(windows.guard, "ExportContacts", "Export Contacts"),
      lblBook(*this, "lblBook", "Address book:"),
      lblFile(*this, "lblFile"),
      cmdFromFile(*this, "cmdFromFile", "From a &File...", "Shows the contacts of another address book file (.wab)."),
      lvContacts(*this, "lvContacts", {"Name", "E-mail Addresses", "Groups"},
                 [this](std::size_t row, std::size_t column) { return CellOf(row, column); }),
      cmdSelectAll(*this, "cmdSelectAll", "Select All", "Checks all contacts."),
      cmdDeselectAll(*this, "cmdDeselectAll", "Deselect All", "Unchecks all contacts."),
      lblCount(*this, "lblCount"),
      lblNotExported(*this, "lblNotExported"),
      lblFaults(*this, "lblFaults", "Could not be read, and will not be in the file:"),
      lstFaults(*this, "lstFaults"),
      lblFormat(*this, "lblFormat", "Format:"),
      cmbFormat(*this, "cmbFormat", ContactFormats().front().caption,
                "Nearly every program reads vCard. The other formats are for those that do not."),
      cmdExport(*this, "cmdExport", "&Export...", "Asks for a file and writes the checked contacts to it."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      sb1(*this, "sb1", 1),
      session_(windows.session),
      windows_(windows) {
  lvContacts.spokenName = "Contacts";
  lblNotExported.wraps = true;
  lstFaults.linesShown = kFaultLines;
  cmbFormat.items = FormatCaptions();
  cmdExport.isDefault = true;
  cmdClose.isCancel = true;
  cmdFromFile.onClick = [this] { cmdFromFile_Click(); };
  cmdSelectAll.onClick = [this] { lvContacts.SetAllChecked(true); };
  cmdDeselectAll.onClick = [this] { lvContacts.SetAllChecked(false); };
  cmdExport.onClick = [this] { cmdExport_Click(); };
  cmdClose.onClick = [this] { cmdClose_Click(); };
}

LayoutNode ExportContactsForm::Layout() {
  return Column({
      Row({Item(lblBook), Item(lblFile, 1), Item(cmdFromFile)}),
      Item(lvContacts, 1),
      Row({Item(cmdSelectAll), Item(cmdDeselectAll), Item(lblCount, 1)}),
      Item(lblNotExported),
      Item(lblFaults),
      Item(lstFaults),
      Row({Item(lblFormat), Item(cmbFormat, 1), Item(cmdExport), Item(cmdClose)}),
      Item(sb1),
  });
}

void ExportContactsForm::Open() {
  ShowBook(std::nullopt);
  BookResult book = ReadBookInUse(session_.platform, session_.store);
  if (auto* refusal = std::get_if<BookRefusal>(&book)) {
    lblNotExported.caption = refusal->Sentence();
  } else {
    ShowBook(std::get<ContactBookFile>(std::move(book)));
  }
  windows_.ReplaceMainWindow(*this);
}

void ExportContactsForm::ShowBook(std::optional<ContactBookFile> file) {
  file_ = std::move(file);
  groups_.clear();
  sb1.panels[0] = "";
  lblFile.caption = file_ ? file_->path.Text() : "None";
  const std::size_t contacts = file_ ? file_->book.contacts.size() : 0;
  const std::size_t groups = file_ ? file_->book.groups.size() : 0;
  lblCount.caption = CountOf(contacts, " contact", " contacts") + ", " + CountOf(groups, " group", " groups");
  const std::string leftOut = file_ ? file_->LeftOut() : std::string();
  lblNotExported.caption = leftOut.empty() ? leftOut : "Not exported: " + leftOut;
  lstFaults.items = file_ ? file_->Faults() : std::vector<std::string>();
  lblFaults.visible = !lstFaults.items->empty();
  lstFaults.visible = lblFaults.visible.Get();
  if (file_) {
    for (const auto& around : GroupsOfContacts(file_->book)) groups_.push_back(JoinedNames(around, ", "));
  }
  lvContacts.SetRowCount(contacts);
  lvContacts.SetAllChecked(true);
  for (Button* button : {&cmdSelectAll, &cmdDeselectAll, &cmdExport}) button->enabled = contacts > 0;
}

std::string ExportContactsForm::CellOf(std::size_t row, std::size_t column) const {
  const Contact& contact = file_->book.contacts[row];
  if (column == 0) return ShownName(contact);
  return column == 1 ? MailsOf(contact) : groups_[row];
}

const ContactFormatRow& ExportContactsForm::Format() const {
  return ContactFormats()[cmbFormat.Index().value_or(0)];
}

void ExportContactsForm::cmdFromFile_Click() {
  Dialogs& dialogs = session_.platform.GetDialogs();
  const auto chosen = dialogs.OpenFile({.title = "Address Book to Export",
                                        .folder = file_ ? file_->path.Parent() : WinPath(),
                                        .name = {},
                                        .filter = kBookFilter});
  if (!chosen) return;
  BookResult book = Read(*chosen);
  if (const auto* refusal = std::get_if<BookRefusal>(&book)) return ShowRefusal(dialogs, *refusal);
  ShowBook(std::get<ContactBookFile>(std::move(book)));
}

void ExportContactsForm::cmdExport_Click() {
  sb1.panels[0] = "";
  const std::vector<std::size_t> chosen = lvContacts.CheckedRows();
  if (chosen.empty()) {
    sb1.panels[0] = "No contacts are checked";
    return;
  }
  Dialogs& dialogs = session_.platform.GetDialogs();
  const ContactFormatRow& format = Format();
  const auto target = dialogs.SaveFile({.title = "Export Contacts",
                                        .folder = {},
                                        .name = GetFileName(file_->path.Text()) + format.ending,
                                        .filter = format.filter,
                                        .askOverwrite = true});
  if (!target) return;
  const ContactExport result = Export(chosen, format.format, *target);
  sb1.panels[0] = result.Summary();
  if (result.Ended() == ContactExport::End::Done) return;
  dialogs.Show({.text = result.Sentences(), .icon = MessageIcon::Exclamation});
}

BookResult ExportContactsForm::Read(const WinPath& file) {
  const BusyScope busy(*this, cmdFromFile);
  return ReadBookFile(session_.platform.GetFiles(), session_.platform.GetSystemFacts(), file);
}

ContactExport ExportContactsForm::Export(ContactChoice chosen, ContactFormat format, const WinPath& target) {
  const BusyScope busy(*this, cmdExport);
  return ExportContacts(session_.platform.GetFiles(), *file_, chosen, format, target);
}

void ExportContactsForm::cmdClose_Click() {
  windows_.ReturnToMainWindow(*this);
}

}  // namespace quillbox
