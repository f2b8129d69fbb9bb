// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's single exports and merges of registry items, and the copies of the address book file.
#include "addressbook/address_book_copy.h"
#include "backup/registry_items.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

RegistryItems Form1::Items() {
  return {session_.platform, session_.store, session_.backupFolder};
}

void Form1::ExportItem(RegistryItem item) {
  sb1.panels[1] = "";
  RegistryItems items = Items();
  const RegistryItemRow& row = RowOf(item);
  if (row.IsOfIdentity() && !HasSelection()) return;
  const std::string userId = Selected().userId;
  if (!items.MayExport(row, userId)) return;
  const auto file = items.AskExportFile(row, session_.FolderInView().value_or(WinPath()));
  if (!file) return;
  if (items.Export(row, userId, *file)) sb1.panels[0] = row.exportDone;
  if (session_.store.WhyNoExports()) sb1.panels[1] = "no registry keys exported";
}

void Form1::RestoreItem(RegistryItem item) {
  RegistryItems items = Items();
  const RegistryItemRow& row = RowOf(item);
  if (items.IsHive(row) && !HasSelection()) return;
  const auto file = items.AskRestoreFile(row, session_.FolderInView().value_or(WinPath()));
  if (!file) return;
  sb1.panels[1] = "";
  if (row.bringsIdentities && file->Empty()) return;
  items.Restore(row, Selected().userId, *file);
  sb1.panels[0] = row.restoreDone;
  if (row.bringsIdentities) session_.GetInputPaths();
}

void Form1::ExportSilently(RegistryItem item) {
  Items().ExportSilently(item);
}

void Form1::addBookFile_Click() {
  CopyAddressBook(CopyPart::OnlyFile);
}

void Form1::CopyAddressBook(CopyPart part) {
  sb1.panels[1] = "";
  AddressBookCopy copy(session_.platform, session_.store, session_.backupFolder);
  if (copy.BackUp(session_.Catalogue().addressBookFile, session_.FolderInView(), part)) ShowAddressBookCopied();
}

void Form1::resWAB_Click() {
  RestoreAddressBook(CopyPart::OnlyFile);
}

void Form1::RestoreAddressBook(CopyPart part) {
  sb1.panels[1] = "";
  AddressBookCopy copy(session_.platform, session_.store, session_.backupFolder);
  if (copy.Restore(session_.ShownBackupFolder().value_or(WinPath()), part)) ShowAddressBookCopied();
}

void Form1::ShowAddressBookCopied() {
  sb1.panels[0] = " Address Book Copy Complete";
  ShowCopies();
}

}  // namespace quillbox
