// The one folder into which every backup goes: where the choice is stored, how it is checked, and the guard that every
// backup command runs first.
#pragma once

#include <optional>
#include <string>

#include "core/address_book_slots.h"
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
  bool keyOpened = false;  ///< false: nothing was checked, nothing is shown
  bool isSet = false;      ///< a folder is chosen
  std::string shown;       ///< what the main window shows: the folder, or kNoneSelected
};

class BackupFolder {
 public:
  BackupFolder(Platform& platform, RegistryStore& store) : platform_(platform), store_(store) {}

  /// The setting as stored: a folder, kNoneSelected, or empty when it is missing.
  std::string Get();
  void Set(const std::string& folder);
  void Reset() { Set(kNoneSelected); }
  /// Whether the setting is missing, empty or holds data.
  Status Probe();

  /// The check at start: writes the default when nothing is stored, resets a folder that is gone. With `withMessage` a
  /// missing choice is told to the person.
  BackupFolderCheck Check(bool withMessage);
  /// The guard of a backup command: the folder as stored, or nothing after the message has been shown.
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
  Platform& platform_;
  RegistryStore& store_;
};

/// Asks for a folder with the shell's picker, "Select a directory"; empty when the person cancels.
std::string BrowseForFolder(Dialogs& dialogs);

/// Makes every missing folder along `path`; true when it is there afterwards.
bool CreatePath(FileSystem& files, const std::string& path);
bool MakeFolder(FileSystem& files, const std::string& path);

}  // namespace quillbox
