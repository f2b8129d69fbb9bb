// SPDX-License-Identifier: GPL-3.0-or-later
#include "identities/create_identity.h"

#include "core/disk_path.h"
#include "core/file_helpers.h"
#include "identities/user_id.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kShellFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr const char* kLocalAppData = "Local AppData";
constexpr const char* kOrdinal = "Identity Ordinal";
constexpr const char* kConfirm =
    "This creates a new Identity in the registry.\nIf you do not wish to do this, press the NO button";

std::string FolderBelow(const std::string& localAppData, const std::string& userId) {
  return localAppData + "\\Identities\\" + userId + "\\Microsoft\\Outlook Express\\";
}

/// A number as REG_DWORD keeps it.
RegValue DwordValue(std::uint32_t number) {
  return static_cast<std::int32_t>(number);
}

}  // namespace

WinPath GetPathOnly(const WinPath& path) {
  const std::size_t last = path.Text().rfind('\\');
  return WinPath(last == std::string::npos ? std::string() : path.Text().substr(0, last));
}

WinPath CreateFolder(FileSystem& files, const WinPath& path) {
  files.MakePath(GetPathOnly(path));
  return path;
}

WinPath DefaultStoreFolder(RegistryStore& store, Platform& platform, const std::string& userId) {
  const RegistryPath key = CurrentUser(kShellFolders);
  const std::string folder =
      ExpandStoreRoot(platform.GetSystemFacts(), store.RegistryGetKeyValue(key, kLocalAppData).AsText());
  const DiskPath checked(platform.GetDrives(), WinPath(folder), RegistryValueName{key, kLocalAppData});
  if (!checked.IsUsable()) throw Error("finding the folder for message stores", {}, checked.Refusal().Clause());
  return WinPath(FolderBelow(folder, userId));
}

std::string UnexpandedStoreFolder(const std::string& userId) {
  return FolderBelow("%UserProfile%\\Local Settings\\Application Data", userId);
}

bool IdentityMaker::CreateNewGUID() {
  newUserId_ = platform_.GetGuids().Create();
  if (IsUserId(newUserId_)) return true;
  newUserId_.clear();
  platform_.GetDialogs().Show({.text = "No new Identity was created: the system could not make a new {USER_ID}.",
                               .icon = MessageIcon::Exclamation});
  return false;
}

std::uint32_t IdentityMaker::NextOrdinal() {
  const RegValue counter = store_.RegistryGetKeyValue(CurrentUser(kIdentitiesKey), kOrdinal);
  return static_cast<std::uint32_t>(counter.AsNumber().value_or(0));
}

std::optional<NewIdentity> IdentityMaker::Run(const CreationSteps& steps) {
  Dialogs& dialogs = platform_.GetDialogs();
  if (dialogs.Show({.text = kConfirm, .buttons = MessageButtons::YesNo}) != MessageAnswer::Yes) return std::nullopt;
  const std::uint32_t ordinal = NextOrdinal();
  if (!CreateNewGUID()) return std::nullopt;
  // A copy: another window may make a {USER_ID} while a dialog of this command is open.
  NewIdentity identity{newUserId_, {}};
  dialogs.Show({.text = "The new Identity: \n" + identity.userId + "\nwill be created."});
  if (steps.onUserId) steps.onUserId(identity.userId);
  identity.username = dialogs.Input("Enter new Username.\n\nPress CANCEL to exit", "USER_ID : " + identity.userId, "")
                          .value_or(std::string());
  if (identity.username.empty()) return std::nullopt;
  if (steps.onUsername) steps.onUsername(identity.username);
  Create(identity, ordinal);
  return identity;
}

void IdentityMaker::Create(const NewIdentity& identity, std::uint32_t ordinal) {
  const bool hasIdentities = store_.OpenKey(CurrentUser(kIdentitiesKey)).status == Status::Success;
  if (hasIdentities) {
    const Key settings = store_.CreateKey(CurrentUser(IdentitySettingsKey(identity.userId)));
    if (settings.IsOpen()) store_.SetValueEx(settings, "Store Root", ValueType::ExpandSz, kEmptyIdentityMarker);
  }
  MakeStoreFolder(identity.userId);
  if (const OpenResult key = store_.OpenKey(CurrentUser(IdentityKey(identity.userId))); key.key.IsOpen()) {
    store_.SetValueEx(key.key, "Username", ValueType::Sz, identity.username);
    store_.SetValueEx(key.key, "User ID", ValueType::Sz, identity.userId);
    store_.SetValueEx(key.key, kOrdinal, ValueType::Dword, DwordValue(ordinal));
    store_.SetValueEx(key.key, "Directory Name", ValueType::Dword, DwordValue(DirectoryNumber(identity.userId)));
  }
  if (hasIdentities) store_.SetKeyValue(kIdentitiesKey, kOrdinal, DwordValue(ordinal + 1), ValueType::Dword);
}

void IdentityMaker::MakeStoreFolder(const std::string& userId) {
  FileSystem& files = platform_.GetFiles();
  try {
    const WinPath folder = DefaultStoreFolder(store_, platform_, userId);
    if (!DirExists(files, folder)) CreateFolder(files, folder);
    if (!DirExists(files, folder)) platform_.GetLog().Write(folder.Text() + ": the message store folder was not made");
  } catch (const Error& error) {
    platform_.GetLog().Write(Describe(error));
    platform_.GetDialogs().Show(
        {.text = "No folder was made for the messages of the new Identity.\n\n" + Describe(error),
         .icon = MessageIcon::Exclamation});
  }
}

}  // namespace quillbox
