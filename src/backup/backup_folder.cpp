// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/backup_folder.h"

#include <utility>

#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kFolderValue = "Quillbox";
constexpr const char* kOverwriteValue = "BackupOverWrite";
constexpr const char* kSelectAtStart = "Please Select A Backup Folder Before Proceeding Further";

const char* Wording(FolderMessage wording) {
  switch (wording) {
    case FolderMessage::WithFullStop:
      return "Please select a backup folder or create one from the Tools menu.";
    case FolderMessage::WithBlank:
      return "Please select a backup folder or create one from the Tools menu ";
    case FolderMessage::WithoutEnding:
      break;
  }
  return "Please select a backup folder or create one from the Tools menu";
}

}  // namespace

const char* FolderRefusal::Reason() const {
  switch (fault) {
    case FolderFault::NoSuchPlace:
      return "this computer has no such place";
    case FolderFault::SystemFolder:
      return "it is in a folder of this computer's running system (/proc, /sys or /dev)";
    case FolderFault::OfTheSystem:
      break;
  }
  return "it is a folder of the disk that is open; choose it on the disk's own drive";
}

std::string FolderRefusal::Sentence() const {
  return "\"" + OneLine(folder.Text()) + "\" cannot be the backup folder: " + Reason() + ".";
}

std::string BackupFolder::Stored() {
  return store_.RegistryGetKeyValue(CurrentUser(kIdentitiesKey), kFolderValue).AsText();
}

void BackupFolder::Store(const std::string& text) {
  store_.SetKeyValue(kIdentitiesKey, kFolderValue, text, ValueType::Sz);
}

std::optional<WinPath> BackupFolder::OnThisComputer(const std::optional<WinPath>& folder) {
  if (!folder || folder->Empty()) return std::nullopt;
  Drives& drives = platform_.GetDrives();
  WinPath path = Resolve(*folder, drives.CurrentDirectory());
  const bool isForeign = path.Drive() != 0 && !drives.IsOwnDrive(path.Drive()) &&
                         drives.TypeOfDrive(WinPath(std::string{path.Drive(), ':', '\\'})) > DriveType::NoRoot;
  return isForeign ? std::optional(std::move(path)) : std::nullopt;
}

bool BackupFolder::Counts(const std::optional<WinPath>& folder) {
  const auto path = OnThisComputer(folder);
  ChosenFolders& chosen = platform_.GetChosenFolders();
  return !path || (!chosen.FaultOf(*path) && chosen.IsChosen(*path));
}

std::string BackupFolder::Text() {
  std::string stored = Stored();
  return Counts(PathOrNone(stored)) ? stored : kNoneSelected;
}

std::optional<WinPath> BackupFolder::Get() {
  if (once_) return once_;
  auto folder = PathOrNone(Text());
  return folder && !folder->Empty() ? folder : std::nullopt;
}

std::optional<FolderRefusal> BackupFolder::RefusalOf(const WinPath& folder) {
  const auto path = OnThisComputer(folder);
  const auto fault = path ? platform_.GetChosenFolders().FaultOf(*path) : std::nullopt;
  return fault ? std::optional(FolderRefusal{folder, *fault}) : std::nullopt;
}

std::optional<FolderRefusal> BackupFolder::Choose(const std::optional<WinPath>& folder) {
  if (folder) {
    if (auto refusal = RefusalOf(*folder)) return refusal;
  }
  const auto path = OnThisComputer(folder);
  if (path && !platform_.GetChosenFolders().IsChosen(*path)) Remember(*path);
  if (Stored() != TextOrNone(folder)) Store(TextOrNone(folder));
  return std::nullopt;
}

std::optional<FolderRefusal> BackupFolder::UseOnce(const WinPath& folder) {
  auto refusal = RefusalOf(folder);
  if (!refusal) once_ = folder;
  return refusal;
}

/// A choice that cannot be remembered holds for this run; the next one asks.
void BackupFolder::Remember(const WinPath& folder) try {
  platform_.GetChosenFolders().Choose(folder);
} catch (const Error& error) {
  platform_.GetLog().Write(Describe(error));
}

void BackupFolder::Reset() {
  if (Counts(PathOrNone(Stored()))) Store(kNoneSelected);
}

void BackupFolder::KeepOver(const std::function<void()>& change) {
  const std::string stored = Stored();
  change();
  if (!stored.empty() && Stored() != stored) Store(stored);
}

void BackupFolder::AskForConsent(const std::optional<WinPath>& stored) {
  const auto path = OnThisComputer(stored);
  if (!path || Counts(stored) || asked_) return;
  asked_ = true;
  if (const auto refusal = RefusalOf(*stored)) {
    platform_.GetLog().Write("The registry's backup folder is not used. " + refusal->Sentence());
    return;
  }
  if (!DirExists(platform_.GetFiles(), *stored)) return;
  const Message question{
      .text = "The registry of this disk names " + OneLine(stored->Text()) + " as the backup folder. Use it?",
      .buttons = MessageButtons::YesNo,
      .icon = MessageIcon::Question,
      .noIsDefault = true};
  if (platform_.GetDialogs().Show(question) == MessageAnswer::Yes) Remember(*path);
}

Status BackupFolder::Probe() {
  return store_.ProbeValue(CurrentUser(kIdentitiesKey), kFolderValue);
}

BackupFolderCheck BackupFolder::Check(bool withMessage) {
  BackupFolderCheck check;
  check.keyOpened = store_.OpenKey(CurrentUser(kIdentitiesKey)).status == Status::Success;
  if (!check.keyOpened) return check;
  const bool hasData = Probe() == probe::kHasData;
  if (!hasData) Reset();
  if (withMessage) AskForConsent(PathOrNone(Stored()));
  if (hasData) check.folder = Get();
  // A folder on a drive that is not attached is not gone.
  if (check.folder && withMessage) platform_.GetDrives().OfferToAttach(*check.folder);
  if (!check.folder && withMessage) platform_.GetDialogs().Show({.text = kSelectAtStart});
  if (!check.folder || !DirExists(platform_.GetFiles(), *check.folder)) Reset();
  return check;
}

std::optional<WinPath> BackupFolder::Guard(FolderMessage wording) {
  auto folder = Get();
  if (!folder) Tell(wording);
  return folder;
}

void BackupFolder::Tell(FolderMessage wording) {
  platform_.GetDialogs().Show({.text = Wording(wording)});
}

void BackupFolder::Enter(const WinPath& folder) {
  Drives& drives = platform_.GetDrives();
  const bool entered = folder.Drive() != 0 && drives.SetCurrentDrive(folder.Drive()) == Status::Success &&
                       drives.SetCurrentDirectory(folder) == Status::Success;
  if (entered) return;
  throw Error("entering the backup folder", {folder.Text(), {}, {}},
              platform_.GetFiles().RefusalOf(folder).value_or("the folder does not exist"));
}

std::optional<bool> BackupFolder::LoadOverwrite() {
  const RegistryPath key = CurrentUser(kIdentitiesKey);
  if (store_.ProbeValue(key, kOverwriteValue) == probe::kMissing) {
    StoreOverwrite(false);
    return false;
  }
  const RegValue stored = store_.RegistryGetKeyValue(key, kOverwriteValue);
  if (stored == RegValue(0)) return false;
  if (stored == RegValue(1)) return true;
  return std::nullopt;
}

void BackupFolder::StoreOverwrite(bool overwrite) {
  store_.SetKeyValue(kIdentitiesKey, kOverwriteValue, RegValue(overwrite ? 1 : 0), ValueType::Dword);
}

std::optional<WinPath> BrowseForFolder(Dialogs& dialogs, const WinPath& opensOn) {
  auto folder = dialogs.BrowseForFolder({.title = "Select a directory", .folder = opensOn});
  return folder && !folder->Empty() ? folder : std::nullopt;
}

bool CreatePath(FileSystem& files, const WinPath& path) {
  return files.MakePath(WinPath(WithBackslash(path.Text())));
}

bool MakeFolder(FileSystem& files, const WinPath& path) {
  return CreatePath(files, path);
}

}  // namespace quillbox
