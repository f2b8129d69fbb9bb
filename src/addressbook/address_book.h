// SPDX-License-Identifier: GPL-3.0-or-later
// The setting that says which address book file Windows' address book opens, and what the user does with it: switching
// to another file, remembering four of them, keeping a copy of the setting, and moving the file.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "core/address_book_slots.h"
#include "core/disk_path.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

/// Full paths of the remembered files, of the slots that have one.
using SlotFiles = std::array<std::optional<WinPath>, kSlotCount>;

class AddressBook {
 public:
  AddressBook(Platform& platform, RegistryStore& store) : platform_(platform), store_(store) {}

  /// The file in use, a full path; empty when the setting is missing or anything but plain text.
  WinPath InUse() { return Read(""); }
  void Use(const WinPath& file) { Write("", file.Text()); }

  /// Makes the file of a slot (0 to 3) the one in use, whether or not it exists. Nothing is changed when the result is
  /// a refusal or, for a slot without a file, nothing.
  std::optional<DiskPath> UseSlot(std::size_t slot);
  /// Remembers `files` in the four slots.
  void FillSlots(const SlotFiles& files);

  /// Keeps a copy of the setting. False, and an older copy stays, when there is no setting.
  bool SaveSetting();
  /// Brings the saved copy back. Nothing is changed when the result is a refusal or, without a copy, nothing.
  std::optional<DiskPath> RestoreSetting();

  /// Sets the file in use to the file of its name in `folder`, then begins to copy it there; the old file stays. The
  /// shell asks before it replaces a file and reports what it cannot copy; the setting is changed all the same. Nothing
  /// is done when the file or the folder is refused, which is the result.
  std::optional<PathRefusal> MoveTo(const WinPath& folder);

 private:
  WinPath Read(const char* value);
  std::optional<DiskPath> UseStored(const char* value);
  void Write(const char* value, const std::string& text);

  Platform& platform_;
  RegistryStore& store_;
};

}  // namespace quillbox
