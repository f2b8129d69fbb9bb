// SPDX-License-Identifier: GPL-3.0-or-later
// The identities that Outlook Express keeps under HKEY_CURRENT_USER\Identities, as the program knows them: loaded
// whole, replaced whole.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/registry_store.h"
#include "platform/system_facts.h"
#include "text/win_path.h"

namespace quillbox {

/// The "Store Root" of an identity that has no message store yet, and what windows show for it; compared exactly.
/// Inside the program such an identity has no store folder.
inline constexpr const char* kEmptyIdentityMarker = "This Identity is empty, there are no values to save.";

/// Key paths that every subsystem uses.
inline constexpr const char* kIdentitiesKey = "Identities";
inline constexpr const char* kAddressBookKey = "Software\\Microsoft\\WAB\\WAB4\\Wab File Name";
/// `Identities\{USER_ID}`.
std::string IdentityKey(const std::string& userId);
/// The identity's Outlook Express settings: `Identities\{USER_ID}\Software\Microsoft\Outlook Express\5.0`.
std::string IdentitySettingsKey(const std::string& userId);
RegistryPath CurrentUser(const std::string& subkey);

/// A store folder as windows show it and the registry keeps it.
inline std::string StoreFolderText(const std::optional<WinPath>& folder) {
  return folder ? folder->Text() : kEmptyIdentityMarker;
}

struct IdentityInfo {
  std::string userId;    ///< the subkey's name as enumerated, braces included
  std::string username;  ///< the value "Username"
  /// The expanded "Store Root", empty where the registry has none; nothing for an identity without a message store.
  std::optional<WinPath> storeFolder;

  std::string FolderText() const { return StoreFolderText(storeFolder); }
};

/// How far a load of the catalogue came.
struct LoadEnd {
  enum class Kind {
    NotLoaded,
    Complete,
    NoIdentitiesKey,  ///< nothing was loaded
    ReadError,        ///< a key could not be opened: `status` and `suffix` make the message
    Failed,           ///< something unexpected: `failure` says what
  };
  Kind kind = Kind::NotLoaded;
  std::size_t usernamesRead = 0;  ///< identities whose username was read
  Status status = Status::Success;
  std::string suffix;
  std::string failure;
};

/// The identities as the last load found them. Of those that a load did not reach, commands still know the username and
/// the folder where these can be read; windows list what was reached.
struct IdentityCatalogue {
  std::vector<IdentityInfo> identities;  ///< in the registry's order
  std::string defaultUserId;
  std::string defaultUsername;
  WinPath addressBookFile;  ///< empty when the registry names none
  LoadEnd end;

  /// The identity of that {USER_ID}; null when there is none.
  const IdentityInfo* Find(const std::string& userId) const;
};

/// Reads all identities. An identity without settings gets its settings key with the marker as "Store Root" (type by
/// the OS code): the only write. Detects the OS code first.
IdentityCatalogue LoadCatalogue(RegistryStore& store, SystemFacts& facts);

/// An identity's message store folder as the registry has it now, expanded; nothing when it has no message store yet.
/// Throws Error when the value is not text.
std::optional<WinPath> ReadStoreFolder(RegistryStore& store, SystemFacts& facts, const std::string& userId);

/// The "Username" of an identity as the registry has it now; empty when it has none, or none that is text.
std::string ReadUsername(RegistryStore& store, const std::string& userId);

/// The address book file in use, as the registry has it now; empty when it names none, or has something that is not
/// text.
WinPath ReadAddressBookFile(RegistryStore& store);

/// `storeRoot` with its first %VARIABLE% expanded: the text before the first "%" is dropped, what follows the second
/// "%" is kept as it is. A text without two "%" stays.
std::string ExpandStoreRoot(SystemFacts& facts, const std::string& storeRoot);

/// True as soon as one identity's "Running" is 1.
bool IsAnyIdentityRunning(RegistryStore& store, const IdentityCatalogue& catalogue);

}  // namespace quillbox
