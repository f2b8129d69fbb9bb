// SPDX-License-Identifier: GPL-3.0-or-later
#include "addressbook/address_book_copy.h"

#include "core/disk_path.h"
#include "core/identity_catalogue.h"

namespace quillbox {

bool AddressBookCopy::Refuse(const std::string& message) {
  platform_.GetDialogs().Show({.text = message, .icon = MessageIcon::Exclamation});
  return false;
}

bool AddressBookCopy::BackUp(const WinPath& file, const std::optional<WinPath>& folder, CopyPart part,
                             OverwriteSetting overwrite) {
  if (!folder || !folder_.Get()) {
    folder_.Tell(FolderMessage::WithFullStop);
    return false;
  }
  if (const auto refusal = folder_.RefusalOf(*folder)) return Refuse(refusal->Sentence());
  if (file.Empty()) return Refuse("The registry names no address book file, so none was copied.");
  const DiskPath source = CheckAddressBook(platform_.GetDrives(), file);
  if (!source.IsUsable()) {
    store_.Failures().Add(source.Refusal().Sentence());
    return false;
  }
  const WinPath target(folder->Text() + "\\" + source.Path().Name());
  platform_.GetShell().CopyFile({.source = source.Path(), .target = target, .noConfirm = overwrite, .part = part});
  return true;
}

bool AddressBookCopy::Restore(const WinPath& folder, CopyPart part) {
  const auto file = platform_.GetDialogs().OpenFile(
      {.title = {}, .folder = folder, .name = "AddressBook.WAB", .filter = "Address Book (*.WAB) | *.WAB"});
  return file && CopyBack(*file, part);
}

bool AddressBookCopy::CopyBack(const WinPath& file, CopyPart part, OverwriteSetting overwrite) {
  const WinPath home(DirectoryFromFile(ReadAddressBookFile(store_).Text()));
  if (home.Empty()) {
    return Refuse("The registry names no address book file, so there is no folder to copy \"" + file.Text() + "\" to.");
  }
  const DiskPath target = CheckAddressBook(platform_.GetDrives(), home);
  if (!target.IsUsable()) {
    store_.Failures().Add(target.Refusal().Sentence());
    return false;
  }
  platform_.GetShell().CopyFile({.source = file, .target = target.Path(), .noConfirm = overwrite, .part = part});
  return true;
}

}  // namespace quillbox
