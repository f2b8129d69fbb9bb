#include "core/address_book_slots.h"

#include "core/identity_catalogue.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

struct SlotRow {
  const char* value;
  const char* errorSuffix;
};
constexpr SlotRow kSlots[] = {
    {"WAB0", "WAB File Name subkey 1"},
    {"WAB1", " WAB File Name subkey 2"},
    {"WAB2", " WAB File Name subkey 3"},
    {"WAB3", " WAB File Name subkey 4"},
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
  for (std::size_t i = 0; i < std::size(kSlots); ++i) {
    const Status opened = store.OpenKey(key).status;
    if (opened != Status::Success) {
      load.readError = {opened, kSlots[i].errorSuffix};
      return load;
    }
    load.slots.captions[i] = LoadSlot(store, kSlots[i].value);
  }
  return load;
}

}  // namespace quillbox
