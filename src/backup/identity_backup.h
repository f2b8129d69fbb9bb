// What the backups of one identity share: making its folder, copying its message store and the address book, and
// exporting registry keys.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "backup/backup_folder.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

/// Copies a file with the shell. True when the copy was made; the shell reports a failure itself.
bool ShellFileCopy(Shell& shell, const WinPath& source, const WinPath& target, bool noConfirm);

/// The program-wide overwrite setting: whether copies replace existing files without asking. Each command that copies
/// reads it from the main window's check box when it starts.
using OverwriteSetting = bool;

enum class Pop3Uidl { Skip, Copy };

/// True when a message store file belongs into a backup: its name, less the last four characters, holds no full stop,
/// and it is not "Pop3uidl.dbx" unless that is wanted.
bool IsStoreFileToCopy(const std::string& name, Pop3Uidl pop3Uidl);

/// Receives the texts that a running backup shows in the status bar's first panel.
using StatusSink = std::function<void(const std::string&)>;

class IdentityBackup {
 public:
  IdentityBackup(Platform& platform, RegistryStore& store, BackupFolder& folder, StatusSink status)
      : platform_(platform), store_(store), folder_(folder), status_(std::move(status)) {}

  /// Makes the folder `username` in the backup folder when it is missing, makes it the current directory and returns
  /// its full path. When that fails the person reads which folder and why, and the result is nothing.
  std::optional<WinPath> EnterIdentityFolder(const WinPath& backupFolder, const std::string& username);
  /// False after telling the person that the identities' key cannot be opened.
  bool CheckIdentitiesKey();

  /// Copies the store files of the identity into `target`, telling each to the status. A store folder that is gone is
  /// told to the person.
  void CopyStore(const std::string& userId, const WinPath& target, Pop3Uidl pop3Uidl, OverwriteSetting overwrite);
  void CopyAddressBook(const WinPath& target, OverwriteSetting overwrite);
  /// Exports the identity's own key to U.reg in `target`.
  void ExportIdentity(const std::string& userId, const std::string& username, const WinPath& target);
  /// Exports the address book, Outlook Express machine and accounts keys into `target`.
  void ExportSharedKeys(const WinPath& target);

  /// Files that were to be copied and were not, since this object was made.
  std::size_t FilesNotCopied() const { return filesNotCopied_; }

 private:
  void Copy(const WinPath& source, const WinPath& target, OverwriteSetting overwrite);

  Platform& platform_;
  RegistryStore& store_;
  BackupFolder& folder_;
  StatusSink status_;
  std::size_t filesNotCopied_ = 0;
};

/// The registry keys that a backup saves beside the identity's own.
namespace backup_keys {
inline constexpr const char* kAddressBook = "HKEY_CURRENT_USER\\Software\\Microsoft\\WAB";
inline constexpr const char* kMachine = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Outlook Express";
inline constexpr const char* kAccounts = "HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts";
}  // namespace backup_keys

}  // namespace quillbox
