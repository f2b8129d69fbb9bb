// SPDX-License-Identifier: GPL-3.0-or-later
// The one folder into which every backup goes: where the choice is stored, how it is checked, and the guard that every
// backup command runs first.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/none_selected.h"
#include "core/registry_store.h"
#include "platform/platform.h"

namespace quillbox {

/// The three wordings of the guard's message.
enum class FolderMessage {
  WithFullStop,   ///< "… from the Tools menu."
  WithBlank,      ///< "… from the Tools menu "
  WithoutEnding,  ///< "… from the Tools menu"
};

/// What the check at the program's start found.
struct BackupFolderCheck {
  bool keyOpened = false;         ///< false: nothing was checked
  std::optional<WinPath> folder;  ///< the chosen folder, which may be gone: then the setting is reset
};

/// A folder that cannot be the backup folder, and why.
struct FolderRefusal {
  WinPath folder;
  FolderFault fault;

  const char* Reason() const;
  /// All of it in a sentence for the person.
  std::string Sentence() const;
};

/// The setting is in the disk's registry, which may come from anybody: a folder of this computer that is stored there
/// counts only when the user chose it here, or agrees when asked at the start. Until then there is no backup
/// folder, and what is stored stays.
class BackupFolder {
 public:
  BackupFolder(Platform& platform, RegistryStore& store) : platform_(platform), store_(store) {}

  /// The folder that counts; nothing when none is chosen or the setting is missing.
  std::optional<WinPath> Get();
  /// The setting that counts, as it is stored; "None Selected" in place of a folder that does not count.
  std::string Text();
  /// The person chooses `folder`, or none. Nothing is changed when the result is a refusal.
  std::optional<FolderRefusal> Choose(const std::optional<WinPath>& folder);
  /// Why nothing can be backed up to `folder`; nothing when it can. Only a folder of this computer can be refused.
  std::optional<FolderRefusal> RefusalOf(const WinPath& folder);
  /// From now on `folder` counts whatever is stored, and what is stored stays: for a command that is given its folder.
  /// Nothing is changed when the result is a refusal.
  std::optional<FolderRefusal> UseOnce(const WinPath& folder);
  /// Stores that there is none in place of a folder that counted.
  void Reset();
  /// Runs `change` of the registry, and puts the stored setting back if that has replaced it.
  void KeepOver(const std::function<void()>& change);
  /// Whether the setting is missing, empty or holds data.
  Status Probe();

  /// The check at start: writes the default when nothing is stored, resets a folder that is gone. With `withMessage`
  /// the person is asked about a folder of this computer that is stored but was never chosen, once in a run, and for
  /// the drive of a folder when it is not attached, and a missing choice is reported.
  BackupFolderCheck Check(bool withMessage);
  /// The guard of a backup command: the folder, or nothing after the message has been shown.
  std::optional<WinPath> Guard(FolderMessage wording);
  /// Shows the guard's message.
  void Tell(FolderMessage wording);
  /// Makes the folder's drive the current drive and the folder the current directory. Throws Error when that fails.
  void Enter(const WinPath& folder);

  /// The check box "overwrite": checked, clear, or nothing when the stored number is neither 1 nor 0. A missing value
  /// is written as 0.
  std::optional<bool> LoadOverwrite();
  void StoreOverwrite(bool overwrite);

 private:
  std::string Stored();
  void Store(const std::string& text);
  /// The full path of a folder that is on a drive of this computer; nothing for any other.
  std::optional<WinPath> OnThisComputer(const std::optional<WinPath>& folder);
  bool Counts(const std::optional<WinPath>& folder);
  void AskForConsent(const std::optional<WinPath>& stored);
  void Remember(const WinPath& folder);

  Platform& platform_;
  RegistryStore& store_;
  bool asked_ = false;
  std::optional<WinPath> once_;
};

/// Asks for a folder with the shell's picker, "Select a directory"; nothing when the person cancels. It opens on the
/// user's home, where backups go, unless another folder is named.
std::optional<WinPath> BrowseForFolder(Dialogs& dialogs, const WinPath& opensOn = {});

/// Makes every missing folder along `path`; true when it is there afterwards.
bool CreatePath(FileSystem& files, const WinPath& path);
bool MakeFolder(FileSystem& files, const WinPath& path);

}  // namespace quillbox
