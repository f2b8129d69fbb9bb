// SPDX-License-Identifier: GPL-3.0-or-later
// The backup of identities: each one's folder, the copies of its message store and of the address book, and the
// exports of registry keys. The quick backup, the backup of all identities and the complete backup differ in a row.
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

/// What a kind of backup saves of an identity beside its store, the address book file and its own key.
struct BackupScope {
  Pop3Uidl pop3Uidl;
  bool sharedKeys;  ///< the address book, Outlook Express machine and accounts keys
  bool signatures;
};
inline constexpr BackupScope kQuickBackup{Pop3Uidl::Skip, true, false};
inline constexpr BackupScope kBackupOfAll{Pop3Uidl::Skip, true, true};
inline constexpr BackupScope kCompleteBackup{Pop3Uidl::Copy, false, true};

/// The usernames that several of the identities with a message store have, each once, as folders compare them: without
/// regard to case. Those that no folder can have are left out.
std::vector<std::string> SharedUsernames(const std::vector<IdentityInfo>& identities);

/// Why identities are left out when CheckIdentitiesKey() is false.
inline constexpr const char* kNoIdentitiesKey = "the identities' key cannot be opened";

class IdentityBackup {
 public:
  IdentityBackup(Platform& platform, RegistryStore& store, BackupFolder& folder, StatusSink status)
      : platform_(platform), store_(store), folder_(folder), copier_(platform, std::move(status)) {}

  /// Makes the folder `username` in the backup folder when it is missing, makes it the current directory and returns
  /// its full path. When that fails a message says which folder and why, the identity is left out, and the result is
  /// nothing.
  std::optional<WinPath> EnterIdentityFolder(const WinPath& backupFolder, const std::string& username);
  /// False after a message that the identities' key cannot be opened.
  bool CheckIdentitiesKey();
  /// Puts on record that nothing of an identity is backed up. `why` is a clause.
  void LeaveOut(const std::string& username, std::string why);

  /// Saves one identity into `target`, which is the current directory, and shows each step in the status.
  void Save(const IdentityInfo& identity, const WinPath& target, const BackupScope& scope, OverwriteSetting overwrite);
  /// Saves every identity that is not empty into a folder of its own. One whose folder cannot be used is
  /// reported, left out and passed over. The number of identities saved, or nothing when the identities' key could not
  /// be opened: the rest is left out then.
  /// Throws Error when the backup folder cannot be entered.
  std::optional<std::size_t> SaveAll(const WinPath& backupFolder, const IdentityCatalogue& catalogue,
                                     const BackupScope& scope, OverwriteSetting overwrite);

  /// What was not even tried since this object was made, in numbers for the status bar, and each.
  std::vector<std::string> Notes();
  const std::vector<LeftOut>& GetLeftOut() const { return copier_.GetLeftOut(); }

 private:
  void CopyStore(const IdentityInfo& identity, const WinPath& target, Pop3Uidl pop3Uidl, OverwriteSetting overwrite);
  void CopyAddressBook(const WinPath& target, OverwriteSetting overwrite);
  /// Exports the identity's own key to U.reg in `target`.
  void ExportIdentity(const IdentityInfo& identity, const WinPath& target);
  void ExportSharedKeys(const WinPath& target);
  void ShowExported(const char* status);
  void SaveSignatures(const std::string& userId);
  bool IsEmpty(const IdentityInfo& identity);
  void TellSharedFolders(const IdentityCatalogue& catalogue);

  Platform& platform_;
  RegistryStore& store_;
  BackupFolder& folder_;
  StoreCopier copier_;
};

}  // namespace quillbox
