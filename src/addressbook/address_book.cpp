#include "addressbook/address_book.h"

#include "core/identity_catalogue.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

constexpr const char* kSavedSetting = "WABBackup";

}  // namespace

std::string AddressBook::Read(const char* value) {
  const RegValue read = store_.RegistryGetKeyValue(CurrentUser(kAddressBookKey), value, ExpandableText::Ignore);
  return read.Text() ? *read.Text() : std::string();
}

void AddressBook::Write(const char* value, const std::string& text) {
  store_.SetKeyValue(kAddressBookKey, value, text, ValueType::Sz);
}

bool AddressBook::UseSlot(std::size_t slot) {
  const std::string file = Read(kSlotValues.at(slot));
  if (file.empty() || file == kNoneSelected) return false;
  Use(file);
  return true;
}

void AddressBook::FillSlots(const SlotFiles& files) {
  for (std::size_t slot = 0; slot < files.size(); ++slot) {
    Write(kSlotValues[slot], files[slot].empty() ? kNoneSelected : files[slot]);
  }
}

bool AddressBook::SaveSetting() {
  const std::string file = InUse();
  if (file.empty()) return false;
  Write(kSavedSetting, file);
  return true;
}

std::string AddressBook::RestoreSetting() {
  std::string file = Read(kSavedSetting);
  if (!file.empty()) Use(file);
  return file;
}

void AddressBook::MoveTo(const std::string& folder) {
  const std::string file = store_.RegistryGetKeyValue(CurrentUser(kAddressBookKey), "").AsText();
  const std::string target = WithBackslash(folder) + NameFromFullPath(file);
  Use(target);
  platform_.GetShell().CopyFile({.source = WinPath(file), .target = WinPath(target), .part = CopyPart::OnlyFile});
}

}  // namespace quillbox
