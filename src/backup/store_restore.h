// SPDX-License-Identifier: GPL-3.0-or-later
// The way back of a complete backup's message stores: the .dbx files of each identity's folder into its store folder.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backup/backup_folder.h"
#include "backup/store_copier.h"
#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

class StoreRestore {
 public:
  StoreRestore(Platform& platform, RegistryStore& store, BackupFolder& folder, StatusSink status)
      : platform_(platform), store_(store), folder_(folder), copier_(platform, std::move(status)) {}

  /// Copies back the stores of all identities that have a folder in `backupFolder`, showing each file in the status; a
  /// store folder that is gone is made. Those that cannot be restored are named in one message at the end. Where
  /// several identities share a folder, the person is asked before any file is replaced. Throws Error when the backup
  /// folder cannot be entered.
  void RestoreAll(const WinPath& backupFolder, const IdentityCatalogue& catalogue, OverwriteSetting overwrite);

  /// What was not even tried since this object was made, in numbers for the status bar.
  std::vector<std::string> Notes() const { return copier_.Notes(); }
  /// The same, each.
  const std::vector<LeftOut>& GetLeftOut() const { return copier_.GetLeftOut(); }

 private:
  std::vector<std::string> TellSharedFolders(const WinPath& backupFolder, const IdentityCatalogue& catalogue);
  /// Why an identity's store was not restored, as a clause.
  struct Skipped {
    std::string reason;
  };
  std::optional<Skipped> Restore(const IdentityInfo& identity, const WinPath& from, OverwriteSetting overwrite);
  void TellSkipped(const std::vector<std::string>& lines);

  Platform& platform_;
  RegistryStore& store_;
  BackupFolder& folder_;
  StoreCopier copier_;
};

}  // namespace quillbox
