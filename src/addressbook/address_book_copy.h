// SPDX-License-Identifier: GPL-3.0-or-later
// The address book file itself: its copy in the backup folder, and the way back.
#pragma once

#include <optional>
#include <string>

#include "backup/backup_folder.h"
#include "backup/store_copier.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

class AddressBookCopy {
 public:
  AddressBookCopy(Platform& platform, RegistryStore& store, BackupFolder& folder)
      : platform_(platform), store_(store), folder_(folder) {}

  /// Begins to copy `file` into `folder`, which the backup folder window shows: it may show one that was never set.
  /// False after a message that says why nothing is copied.
  bool BackUp(const WinPath& file, const std::optional<WinPath>& folder, CopyPart part,
              OverwriteSetting overwrite = false);

  /// Asks for a file, in a dialog that opens in `folder`, and begins to copy it to where the registry has the address
  /// book. False when the person cancels, and after a message that says why nothing is copied.
  bool Restore(const WinPath& folder, CopyPart part);
  /// The same for a file that is known.
  bool CopyBack(const WinPath& file, CopyPart part, OverwriteSetting overwrite = false);

 private:
  bool Refuse(const std::string& message);

  Platform& platform_;
  RegistryStore& store_;
  BackupFolder& folder_;
};

}  // namespace quillbox
