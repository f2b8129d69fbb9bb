// SPDX-License-Identifier: GPL-3.0-or-later
// What one run of the program works on, whatever shows it: the catalogue of identities, the selected one, the backup
// folder, the overwrite flag, the address book and its slots, and what the last search found. Windows show the session
// and change it; none of them reads it off another window.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "backup/backup_folder.h"
#include "backup/backup_record.h"
#include "backup/file_search.h"
#include "core/address_book_slots.h"
#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "core/signal.h"
#include "identities/create_identity.h"
#include "platform/platform.h"

namespace quillbox {

/// The search for Outlook Express files.
struct FileSearch {
  bool performed = false;         ///< since the start
  std::string pattern = "*.dbx";  ///< the file type that is chosen now
  FoundFiles found;
};

class Session {
 public:
  explicit Session(Platform& onPlatform) : platform(onPlatform), store(onPlatform) {}

  Platform& platform;
  RegistryStore store;
  BackupFolder backupFolder{platform, store};
  IdentityMaker identityMaker{platform, store};
  FileSearch search;

  // The identities.

  /// (Re)loads the catalogue; a complete load selects the first identity and clears the clipboard. One that stops early
  /// is reported (a registry read error in a message, anything else in the log) and selects none.
  void GetInputPaths();
  const IdentityCatalogue& Catalogue() const { return catalogue_; }
  /// Nothing until a first identity was loaded, and after a load that stopped early.
  const std::optional<IdentityInfo>& Selected() const { return selected_; }
  /// Select the identity whose text that is, the last one of several; without one the selection stays.
  void SelectByUsername(const std::string& username);
  void SelectByUserId(const std::string& userId);
  /// `folder` as windows show it.
  void SelectByFolder(const std::string& folder);
  /// Renames the selected identity. False, with nothing changed, when an identity has that very name.
  bool Rename(const std::string& username);
  /// Makes `userId` the default identity and loads the catalogue again; an empty one changes nothing.
  void SetDefault(const std::string& userId);
  /// Tests whether Outlook Express is running under any identity; without identities the answer stays.
  void IsOERuuning();
  /// The last answer; nothing before the first.
  std::optional<bool> IsRunning() const { return running_; }

  // The backup folder.

  /// The check at the start. What is shown stays a folder that is gone, although the setting is reset.
  BackupFolderCheck CheckBackupFolder(bool withMessage);
  /// The person chooses a folder, or none. Asks whether to make the identities' key when the profile has none yet,
  /// since the setting is stored there. False, with nothing changed, when that is declined and after a message that
  /// says why the folder cannot be used or stored.
  bool ChooseBackupFolder(const std::optional<WinPath>& folder);
  /// What windows show as the backup folder.
  const std::optional<WinPath>& ShownBackupFolder() const { return shownFolder_; }
  /// The folder that the backup folder window has in view, where the dialogs for registry files open. When it is first
  /// asked for, it is the backup folder, or C:\ without one; a backup folder that is gone is then reset.
  const std::optional<WinPath>& FolderInView();
  void LookAt(const std::optional<WinPath>& folder);

  /// The overwrite flag as the registry has it; a number other than 0 and 1 leaves the flag as it is.
  void LoadOverwrite();
  void SetOverwrite(bool overwrite);
  bool Overwrite() const { return overwrite_; }

  /// What the last backup of this run did; nothing before the first.
  const std::optional<BackupRecord>& LastBackup() const { return lastBackup_; }
  void KeepBackup(BackupRecord record) { lastBackup_ = std::move(record); }

  // The address book.

  /// The address book's part of the start: loads the slots. False when the address book's key cannot be opened, and
  /// after a message that a slot cannot be read.
  bool LoadSlots();
  const SlotNames& Slots() const { return slots_; }
  void SetSlots(const SlotNames& slots);
  /// The folder of the address book that was in use at the start.
  const WinPath& AddressBookFolder() const { return addressBookFolder_; }
  /// The address book file has become another one.
  void SetAddressBookFile(const WinPath& file);

  // Sent after each change.
  Signal catalogueLoaded;  ///< everything about the identities, the selection and the address book file included
  Signal selectionChanged;
  Signal usernamesChanged;
  Signal runningTested;
  Signal backupFolderChanged;
  Signal folderInViewChanged;
  Signal overwriteChanged;
  Signal slotsLoaded;
  Signal slotsChanged;
  Signal addressBookChanged;

 private:
  void SelectWhere(const std::string& text, std::string (*textOf)(const IdentityInfo&));
  bool MakeIdentitiesKey();
  void ShowBackupFolder(const std::optional<WinPath>& folder);
  void ReportEarlyEnd();

  IdentityCatalogue catalogue_;
  std::optional<IdentityInfo> selected_;
  std::optional<bool> running_;
  std::optional<WinPath> shownFolder_;
  std::optional<WinPath> folderInView_;
  bool hasLooked_ = false;  ///< folderInView_ has its first value
  bool overwrite_ = false;
  std::optional<BackupRecord> lastBackup_;
  SlotNames slots_;
  WinPath addressBookFolder_;
};

}  // namespace quillbox
