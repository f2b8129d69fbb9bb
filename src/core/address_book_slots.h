// The address book settings that are loaded at start: the folder of the address book in use and the four slots in
// which a person keeps address book files to switch to.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "core/registry_store.h"

namespace quillbox {

/// The text of a backup folder or address book slot that is not set.
inline constexpr const char* kNoneSelected = "None Selected";

inline constexpr std::size_t kSlotCount = 4;
/// The values, beside the address book in use, that remember a file each.
inline constexpr std::array<const char*, kSlotCount> kSlotValues = {"WAB0", "WAB1", "WAB2", "WAB3"};

struct AddressBookSlots {
  std::string folder;  ///< of the address book in use, final backslash included
  /// File name of each slot, or kNoneSelected.
  std::array<std::string, kSlotCount> captions = {kNoneSelected, kNoneSelected, kNoneSelected, kNoneSelected};
};

struct SlotsLoad {
  AddressBookSlots slots;
  bool keyOpened = false;  ///< without the key nothing but the folder is loaded
  /// Set when a slot could not be read: the load stopped there.
  std::optional<std::pair<Status, std::string>> readError;
};

/// Loads the slots "WAB0" to "WAB3"; a missing or empty one is written as kNoneSelected.
SlotsLoad LoadAddressBookSlots(RegistryStore& store);

}  // namespace quillbox
