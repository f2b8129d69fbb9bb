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

std::string LoadSlot(RegistryStore& store, const char* value) {
  const RegistryPath key = CurrentUser(kAddressBookKey);
  if (store.ProbeValue(key, value) != probe::kHasData) {
    store.SetKeyValue(kAddressBookKey, value, kNoneSelected, ValueType::Sz);
    return kNoneSelected;
  }
  const std::string stored = store.RegistryGetKeyValue(key, value).AsText();
  return stored == kNoneSelected ? stored : NameFromFullPath(stored);
}

}  // namespace

SlotsLoad LoadAddressBookSlots(RegistryStore& store) {
  SlotsLoad load;
  const RegistryPath key = CurrentUser(kAddressBookKey);
  load.slots.folder = DirectoryFromFile(store.RegistryGetKeyValue(key, "").AsText());
  store.DetectOsCode();
  load.keyOpened = store.OpenKey(key).status == Status::Success;
  if (!load.keyOpened) return load;
  for (std::size_t i = 0; i < kSlotCount; ++i) {
    const Status opened = store.OpenKey(key).status;
    if (opened != Status::Success) {
      load.readError = {opened, kErrorSuffixes[i]};
      return load;
    }
    load.slots.captions[i] = LoadSlot(store, kSlotValues[i]);
  }
  return load;
}

}  // namespace quillbox
