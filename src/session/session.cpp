// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/session.h"

#include <utility>

#include "core/file_helpers.h"
#include "core/refusal_message.h"
#include "identities/manage_identities.h"

namespace quillbox {
namespace {

const WinPath kFirstFolder("C:\\");
constexpr const char* kMakeKey =
    "This profile has no Outlook Express identities yet: its registry has no key HKEY_CURRENT_USER\\Identities, in "
    "which "
    "the backup folder is stored. Make the key now?";
constexpr const char* kFolderNotStored =
    "The backup folder was not changed: the registry did not take it. The log says why.";

}  // namespace

void Session::GetInputPaths() {
  IdentityCatalogue loaded = LoadCatalogue(store, platform.GetSystemFacts());
  const bool isComplete = loaded.end.kind == LoadEnd::Kind::Complete;
  // The address book file is read last: a load that stopped before does not know it.
  if (!isComplete) loaded.addressBookFile = catalogue_.addressBookFile;
  catalogue_ = std::move(loaded);
  const auto& identities = catalogue_.identities;
  selected_ = isComplete && !identities.empty() ? std::optional(identities.front()) : std::nullopt;
  if (isComplete) platform.GetClipboard().Clear();
  catalogueLoaded.Send();
  ReportEarlyEnd();
}

void Session::ReportEarlyEnd() {
  const LoadEnd& end = catalogue_.end;
  if (end.kind == LoadEnd::Kind::ReadError) store.ShowRegistryReadError(end.status, end.suffix);
  if (end.kind == LoadEnd::Kind::Failed) {
    platform.GetLog().Write("The identities could not be loaded: " + end.failure);
  }
}

void Session::SelectWhere(const std::string& text, std::string (*textOf)(const IdentityInfo&)) {
  const IdentityInfo* last = nullptr;
  for (const IdentityInfo& identity : catalogue_.identities) {
    if (textOf(identity) == text) last = &identity;
  }
  if (!last) return;
  selected_ = *last;
  selectionChanged.Send();
}

void Session::SelectByUsername(const std::string& username) {
  SelectWhere(username, [](const IdentityInfo& identity) { return identity.username; });
}

void Session::SelectByUserId(const std::string& userId) {
  SelectWhere(userId, [](const IdentityInfo& identity) { return identity.userId; });
}

// A stored folder may end with a second NUL, which no picker shows.
void Session::SelectByFolder(const std::string& folder) {
  for (IdentityInfo& identity : catalogue_.identities) {
    std::string text = identity.FolderText();
    if (!text.ends_with('\0')) continue;
    text.pop_back();
    identity.storeFolder = WinPath(text);
  }
  SelectWhere(folder, [](const IdentityInfo& identity) { return identity.FolderText(); });
}

bool Session::Rename(const std::string& username) {
  if (!selected_ || !RenameIdentity(store, catalogue_, *selected_, username)) return false;
  selected_->username = username;
  if (catalogue_.defaultUserId == selected_->userId) catalogue_.defaultUsername = username;
  usernamesChanged.Send();
  return true;
}

void Session::SetDefault(const std::string& userId) {
  if (userId.empty()) return;
  SetDefaultIdentity(store, userId);
  GetInputPaths();
}

void Session::IsOERuuning() {
  if (!catalogue_.identities.empty()) running_ = IsAnyIdentityRunning(store, catalogue_);
  runningTested.Send();
}

BackupFolderCheck Session::CheckBackupFolder(bool withMessage) {
  BackupFolderCheck check = backupFolder.Check(withMessage);
  if (!check.keyOpened) return check;
  ShowBackupFolder(check.folder);
  if (check.folder) {
    FolderInView();  // its first look resets a folder that is gone
    LookAt(check.folder);
  }
  return check;
}

bool Session::ChooseBackupFolder(const std::optional<WinPath>& folder) {
  Dialogs& dialogs = platform.GetDialogs();
  const auto refusal = folder ? backupFolder.RefusalOf(*folder) : std::nullopt;
  if (refusal) {
    ShowRefusal(dialogs, *refusal);
    return false;
  }
  if (!MakeIdentitiesKey()) return false;
  backupFolder.Choose(folder);
  if (backupFolder.Text() != TextOrNone(folder)) {
    dialogs.Show({.text = kFolderNotStored, .icon = MessageIcon::Exclamation});
    return false;
  }
  ShowBackupFolder(folder);
  return true;
}

/// False when the key is missing and the person does not want it.
bool Session::MakeIdentitiesKey() {
  const RegistryPath key = CurrentUser(kIdentitiesKey);
  if (store.OpenKey(key, Access::Read).status != Status::FileNotFound) return true;
  const Message question{.text = kMakeKey, .buttons = MessageButtons::YesNo, .icon = MessageIcon::Question};
  if (platform.GetDialogs().Show(question) != MessageAnswer::Yes) return false;
  if (store.CreateKey(key).IsOpen()) GetInputPaths();
  return true;
}

void Session::ShowBackupFolder(const std::optional<WinPath>& folder) {
  shownFolder_ = folder;
  backupFolderChanged.Send();
}

const std::optional<WinPath>& Session::FolderInView() {
  if (std::exchange(hasLooked_, true)) return folderInView_;
  folderInView_ = backupFolder.Get().value_or(kFirstFolder);
  if (!DirExists(platform.GetFiles(), *folderInView_)) backupFolder.Reset();
  folderInViewChanged.Send();
  return folderInView_;
}

void Session::LookAt(const std::optional<WinPath>& folder) {
  hasLooked_ = true;
  folderInView_ = folder;
  folderInViewChanged.Send();
}

void Session::LoadOverwrite() {
  const auto overwrite = backupFolder.LoadOverwrite();
  if (!overwrite) return;
  overwrite_ = *overwrite;
  overwriteChanged.Send();
}

void Session::SetOverwrite(bool overwrite) {
  backupFolder.StoreOverwrite(overwrite);
  overwrite_ = overwrite;
  overwriteChanged.Send();
}

bool Session::LoadSlots() {
  const SlotsLoad load = LoadAddressBookSlots(store);
  addressBookFolder_ = load.folder;
  slotsLoaded.Send();
  SetSlots(load.names);
  if (load.readError) store.ShowRegistryReadError(load.readError->status, load.readError->suffix);
  return load.keyOpened && !load.readError;
}

void Session::SetSlots(const SlotNames& slots) {
  slots_ = slots;
  slotsChanged.Send();
}

void Session::SetAddressBookFile(const WinPath& file) {
  catalogue_.addressBookFile = file;
  addressBookChanged.Send();
}

}  // namespace quillbox
