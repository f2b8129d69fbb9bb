// The main window's single exports and merges of registry items, and the copies of the address book file.
#include "backup/registry_items.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {
namespace {

constexpr const char* kAddressBookCopied = " Address Book Copy Complete";

}  // namespace

void Form1::ExportItem(RegistryItem item) {
  sb1.panels[1] = "";
  RegistryItems items(program_.platform, program_.store, program_.backupFolder);
  const RegistryItemRow& row = RowOf(item);
  const std::string userId = Label6.caption;
  if (!items.MayExport(row, userId)) return;
  const auto file = items.AskExportFile(row, DialogFolder());
  if (!file) return;
  if (items.Export(row, userId, *file)) sb1.panels[0] = row.exportDone;
}

void Form1::RestoreItem(RegistryItem item) {
  RegistryItems items(program_.platform, program_.store, program_.backupFolder);
  const RegistryItemRow& row = RowOf(item);
  const auto file = items.AskRestoreFile(row, DialogFolder());
  if (!file) return;
  sb1.panels[1] = "";
  if (row.bringsIdentities && file->Empty()) return;
  items.Restore(row, Label6.caption, *file);
  sb1.panels[0] = row.restoreDone;
  if (row.bringsIdentities) GetInputPaths();
}

WinPath Form1::DialogFolder() {
  windows_.form3.EnsureLoaded();
  return WinPath(windows_.form3.txtbkPth.text);
}

void Form1::ExportSilently(RegistryItem item) {
  RegistryItems(program_.platform, program_.store, program_.backupFolder).ExportSilently(item);
}

void Form1::addBookFile_Click() {
  CopyAddressBook(CopyPart::OnlyFile);
}

void Form1::CopyAddressBook(CopyPart part) {
  const std::string stored = txtwabloc.text;
  sb1.panels[1] = "";
  // The folder window may show a folder that was never set.
  const std::string folder = windows_.form3.txtbkPth.text;
  if (folder == kNoneSelected || program_.backupFolder.Get() == kNoneSelected) {
    return program_.backupFolder.Tell(FolderMessage::WithFullStop);
  }
  if (const auto refusal = program_.backupFolder.RefusalOf(folder)) return TellRefusal(program_, *refusal);
  if (stored.empty()) {
    program_.platform.GetDialogs().Show(
        {.text = "The registry names no address book file, so none was copied.", .icon = MessageIcon::Exclamation});
    return;
  }
  const DiskPath file = CheckAddressBook(program_.platform.GetDrives(), stored);
  if (!file.IsUsable()) return program_.store.Failures().Add(file.Refusal().Sentence());
  program_.platform.GetShell().CopyFile(
      {.source = file.Path(), .target = WinPath(folder + "\\" + file.Path().Name()), .part = part});
  sb1.panels[0] = kAddressBookCopied;
  ShowCopies();
}

void Form1::resWAB_Click() {
  RestoreAddressBook(CopyPart::OnlyFile);
}

void Form1::RestoreAddressBook(CopyPart part) {
  sb1.panels[1] = "";
  const std::string current = program_.store.RegistryGetKeyValue(CurrentUser(kAddressBookKey), "").AsText();
  const std::string folder = DirectoryFromFile(current);
  const auto file = program_.platform.GetDialogs().OpenFile({.title = {},
                                                             .folder = WinPath(lblbkuppth.caption),
                                                             .name = "AddressBook.WAB",
                                                             .filter = "Address Book (*.WAB) | *.WAB"});
  if (!file) return;
  if (folder.empty()) {
    program_.platform.GetDialogs().Show(
        {.text = "The registry names no address book file, so there is no folder to copy \"" + file->Text() + "\" to.",
         .icon = MessageIcon::Exclamation});
    return;
  }
  const DiskPath target = CheckAddressBook(program_.platform.GetDrives(), folder);
  if (!target.IsUsable()) return program_.store.Failures().Add(target.Refusal().Sentence());
  program_.platform.GetShell().CopyFile({.source = *file, .target = target.Path(), .part = part});
  sb1.panels[0] = kAddressBookCopied;
  ShowCopies();
}

}  // namespace quillbox
