// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/address_book_slots.h"

#include "core/identity_catalogue.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

/// What follows the code in the message about a slot that cannot be read.
constexpr std::array<const char*, kSlotCount> kErrorSuffixes = {
    "WAB File Name subkey 1",
    " WAB File Name subkey 2",
    " WAB File Name subkey 3",
    " WAB File Name subkey 4",
};

std::optional<std::string> LoadSlot(RegistryStore& store, const char* value) {
  const RegistryPath key = CurrentUser(kAddressBookKey);
  if (store.ProbeValue(key, value) != probe::kHasData) {
    store.SetKeyValue(kAddressBookKey, value, kNoneSelected, ValueType::Sz);
    return std::nullopt;
  }
  const RegValue stored = store.RegistryGetKeyValue(key, value);
  const auto file = stored.Text() ? PathOrNone(*stored.Text()) : std::nullopt;
  return file ? std::optional(NameFromFullPath(file->Text())) : std::nullopt;
}

}  // namespace

SlotsLoad LoadAddressBookSlots(RegistryStore& store) {
  SlotsLoad load;
  const RegistryPath key = CurrentUser(kAddressBookKey);
  load.folder = WinPath(DirectoryFromFile(ReadAddressBookFile(store).Text()));
  store.DetectOsCode();
  load.keyOpened = store.OpenKey(key).status == Status::Success;
  if (!load.keyOpened) return load;
  for (std::size_t i = 0; i < kSlotCount; ++i) {
    const Status opened = store.OpenKey(key).status;
    if (opened != Status::Success) {
      load.readError = SlotsLoad::ReadError{opened, kErrorSuffixes[i]};
      return load;
    }
    load.names[i] = LoadSlot(store, kSlotValues[i]);
  }
  return load;
}

}  // namespace quillbox
