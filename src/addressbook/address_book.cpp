// SPDX-License-Identifier: GPL-3.0-or-later
#include "addressbook/address_book.h"

#include "core/identity_catalogue.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

constexpr const char* kSavedSetting = "WABBackup";

}  // namespace

WinPath AddressBook::Read(const char* value) {
  const RegValue read = store_.RegistryGetKeyValue(CurrentUser(kAddressBookKey), value, ExpandableText::Ignore);
  return WinPath(read.Text() ? *read.Text() : std::string());
}

void AddressBook::Write(const char* value, const std::string& text) {
  store_.SetKeyValue(kAddressBookKey, value, text, ValueType::Sz);
}

std::optional<DiskPath> AddressBook::UseSlot(std::size_t slot) {
  return UseStored(kSlotValues.at(slot));
}

std::optional<DiskPath> AddressBook::UseStored(const char* value) {
  const auto stored = PathOrNone(Read(value).Text());
  if (!stored || stored->Empty()) return std::nullopt;
  DiskPath file = CheckAddressBook(platform_.GetDrives(), *stored, value);
  if (file.IsUsable()) Use(*stored);
  return file;
}

void AddressBook::FillSlots(const SlotFiles& files) {
  for (std::size_t slot = 0; slot < files.size(); ++slot) {
    Write(kSlotValues[slot], TextOrNone(files[slot]));
  }
}

bool AddressBook::SaveSetting() {
  const WinPath file = InUse();
  if (file.Empty()) return false;
  Write(kSavedSetting, file.Text());
  return true;
}

std::optional<DiskPath> AddressBook::RestoreSetting() {
  return UseStored(kSavedSetting);
}

std::optional<PathRefusal> AddressBook::MoveTo(const WinPath& folder) {
  Drives& drives = platform_.GetDrives();
  const DiskPath file = CheckAddressBook(drives, ReadAddressBookFile(store_));
  const DiskPath chosen(drives, folder);
  for (const DiskPath* path : {&file, &chosen}) {
    if (!path->IsUsable()) return path->Refusal();
  }
  const WinPath target = chosen.Path().Join(file.Path().Name());
  Use(target);
  platform_.GetShell().CopyFile({.source = file.Path(), .target = target, .part = CopyPart::OnlyFile});
  return std::nullopt;
}

}  // namespace quillbox
