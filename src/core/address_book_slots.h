// SPDX-License-Identifier: GPL-3.0-or-later
// The four slots in which the user keeps address book files to switch to, as they are loaded at the start.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "core/none_selected.h"
#include "core/registry_store.h"

namespace quillbox {

inline constexpr std::size_t kSlotCount = 4;
/// The values, beside the address book in use, that remember a file each.
inline constexpr std::array<const char*, kSlotCount> kSlotValues = {"WAB0", "WAB1", "WAB2", "WAB3"};

/// The file name of each slot that has one; a slot that holds no text has none.
using SlotNames = std::array<std::optional<std::string>, kSlotCount>;

struct SlotsLoad {
  SlotNames names;
  WinPath folder;          ///< of the address book in use, final backslash included
  bool keyOpened = false;  ///< without the key nothing but the folder is loaded
  /// Set when a slot could not be read: the load stopped there.
  struct ReadError {
    Status status;
    std::string suffix;
  };
  std::optional<ReadError> readError;
};

/// Loads the slots "WAB0" to "WAB3"; a missing or empty one is written as "None Selected".
SlotsLoad LoadAddressBookSlots(RegistryStore& store);

}  // namespace quillbox
