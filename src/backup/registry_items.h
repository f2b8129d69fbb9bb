// SPDX-License-Identifier: GPL-3.0-or-later
// The single registry items that can be saved to a file and brought back, each in one row: what the menus, the
// messages, the registry editor's command lines and the complete backup need of it.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "backup/backup_folder.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

enum class RegistryItem {
  Identity,
  AllIdentities,
  AddressBook,
  BlockedSenders,
  DialogSuppressions,
  Machine,
  MessageRules,
  Accounts,
  Signatures,
};

/// A file name that may depend on the kind of Windows.
struct FileNames {
  const char* usual;
  const char* on2k = nullptr;
  const char* onXp = nullptr;

  const char* On(OsCode code) const;
};

struct RegistryItemRow {
  RegistryItem item;
  const char* key;  ///< full name; "{IDENTITY}" begins the identity's own key, "{SETTINGS}" its settings key
  KeyForm keyForm = KeyForm::Quoted;
  FileNames exportFile;           ///< proposed, and of an export without a dialog
  FileNames restoreFile;          ///< proposed
  const char* missing = nullptr;  ///< the message when the key does not exist; null: that is not tested
  FolderMessage noFolder = FolderMessage::WithFullStop;
  const char* exportDone;
  const char* restoreDone;
  bool isHiveOnNewer = false;          ///< on 2000 and XP the file is a hive file
  bool isDoneOnlyWhenStarted = false;  ///< an export that is not started, for want of an OS code, is not reported
  bool bringsIdentities = false;       ///< a restore may change which identities there are
  bool entersFolder = true;            ///< an export without a dialog goes to the backup folder first

  /// Whether an export needs to know which identity.
  bool IsOfIdentity() const;
};

const RegistryItemRow& RowOf(RegistryItem item);

/// What a complete backup exports beside the identities' folders, and a complete restore merges, in that order.
inline constexpr RegistryItem kCompleteItems[] = {RegistryItem::AllIdentities, RegistryItem::Accounts,
                                                  RegistryItem::AddressBook};

/// The identity's signatures as the backups of all identities name their file, in its folder.
inline constexpr FileNames kSignaturesInBackup{"Signatures.reg", "SignaturesWin2k.reg", "SignaturesWinXP.reg"};

class RegistryItems {
 public:
  RegistryItems(Platform& platform, RegistryStore& store, BackupFolder& folder)
      : platform_(platform), store_(store), folder_(folder) {}

  /// Whether the item's file is a hive file on this Windows; such a file is restored into the identity's own key.
  bool IsHive(const RegistryItemRow& row) const;

  /// False after a message that says why: the identity has no such key, or there is no backup folder.
  bool MayExport(const RegistryItemRow& row, const std::string& userId);
  /// The file that the person chooses; nothing when the dialog is cancelled. `folder` is where it opens.
  std::optional<WinPath> AskExportFile(const RegistryItemRow& row, const WinPath& folder);
  std::optional<WinPath> AskRestoreFile(const RegistryItemRow& row, const WinPath& folder);

  /// Writes the item to `file`. True when the status text is to be shown.
  bool Export(const RegistryItemRow& row, const std::string& userId, const WinPath& file,
              OnFailure onFailure = OnFailure::Tell);
  /// Brings the item back from `file`. An item of an identity that this registry does not have is reported.
  void Restore(const RegistryItemRow& row, const std::string& userId, const WinPath& file);

  /// Exports without a dialog, for a complete backup: a bare file name in the backup folder. Throws Error when the
  /// folder cannot be entered.
  void ExportSilently(RegistryItem item);
  /// Merges the file of that name in the backup folder, for a complete restore. Without a backup folder there is no
  /// such file, which only the log then says. False when not everything was merged.
  bool RestoreSilently(RegistryItem item);

 private:
  bool Merge(const WinPath& file, OnFailure onFailure);
  FileDialog DialogFor(const WinPath& folder, const char* name) const;
  std::set<std::string> UserIds();
  void TellNewIdentities(const std::set<std::string>& before);

  Platform& platform_;
  RegistryStore& store_;
  BackupFolder& folder_;
};

}  // namespace quillbox
