// The one folder into which every backup goes: where the choice is stored, how it is checked, and the guard that every
// backup command runs first.
#pragma once

#include <functional>
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

/// A folder that cannot be the backup folder, and why.
struct FolderRefusal {
  std::string folder;
  FolderFault fault;

  const char* Reason() const;
  /// All of it in a sentence for the person.
  std::string Sentence() const;
};

/// The setting is in the disk's registry, whose words are not the person's: a folder of this computer that is stored
/// there counts only when the person chose it here, or says so when asked at the start. Until then the setting reads
/// kNoneSelected everywhere, and what is stored stays.
class BackupFolder {
 public:
  BackupFolder(Platform& platform, RegistryStore& store) : platform_(platform), store_(store) {}

  /// The setting that counts: a folder, kNoneSelected, or empty when it is missing.
  std::string Get();
  /// The person chooses `folder` (which may be kNoneSelected). Nothing is changed when the result is a refusal.
  std::optional<FolderRefusal> Choose(const std::string& folder);
  /// Why nothing can be backed up to `folder`; nothing when it can. Only a folder of this computer can be refused.
  std::optional<FolderRefusal> RefusalOf(const std::string& folder);
  /// Stores kNoneSelected in place of a folder that counted.
  void Reset();
  /// Runs `change` of the registry, and puts the stored setting back if that has replaced it.
  void KeepOver(const std::function<void()>& change);
  /// Whether the setting is missing, empty or holds data.
  Status Probe();

  /// The check at start: writes the default when nothing is stored, resets a folder that is gone. With `withMessage`
  /// the person is asked about a folder of this computer that is stored but was never chosen, once in a run, and a
  /// missing choice is told.
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
  std::string Stored();
  void Store(const std::string& folder);
  /// The full path of a stored folder that is on a drive of this computer; nothing for any other.
  std::optional<WinPath> OnThisComputer(const std::string& folder);
  bool Counts(const std::string& folder);
  void AskForConsent(const std::string& stored);
  void Remember(const WinPath& folder);

  Platform& platform_;
  RegistryStore& store_;
  bool asked_ = false;
};

/// Asks for a folder with the shell's picker, "Select a directory"; empty when the person cancels.
std::string BrowseForFolder(Dialogs& dialogs);

/// Makes every missing folder along `path`; true when it is there afterwards.
bool CreatePath(FileSystem& files, const std::string& path);
bool MakeFolder(FileSystem& files, const std::string& path);

}  // namespace quillbox
