// The identities that Outlook Express keeps under HKEY_CURRENT_USER\Identities, as the program knows them: loaded
// whole, replaced whole.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/registry_store.h"
#include "platform/file_system.h"

namespace quillbox {

/// The "Store Root" of an identity that has no message store yet; compared exactly.
inline constexpr const char* kEmptyIdentityMarker = "This Identity is empty, there are no values to save.";

/// Key paths that every subsystem uses.
inline constexpr const char* kIdentitiesKey = "Identities";
inline constexpr const char* kAddressBookKey = "Software\\Microsoft\\WAB\\WAB4\\Wab File Name";
/// `Identities\{USER_ID}`.
std::string IdentityKey(const std::string& userId);
/// The identity's Outlook Express settings: `Identities\{USER_ID}\Software\Microsoft\Outlook Express\5.0`.
std::string IdentitySettingsKey(const std::string& userId);
RegistryPath CurrentUser(const std::string& subkey);

struct IdentityInfo {
  std::string userId;       ///< the subkey's name as enumerated, braces included
  std::string username;     ///< the value "Username"
  std::string storeFolder;  ///< the expanded "Store Root", or kEmptyIdentityMarker
};

struct IdentityCatalogue {
  std::vector<IdentityInfo> identities;  ///< in the registry's order
  std::string defaultUserId;
  std::string defaultUsername;
  std::string addressBookFile;
};

/// How far a load came.
struct CatalogueLoad {
  enum class End {
    Complete,
    NoIdentitiesKey,  ///< nothing was loaded
    ReadError,        ///< a key could not be opened: `status` and `suffix` make the message
    Failed,           ///< something unexpected: `failure` says what
  };
  End end = End::Complete;
  IdentityCatalogue catalogue;    ///< every {USER_ID}; the rest as far as the load came
  std::size_t usernamesRead = 0;  ///< identities whose username was read
  Status status = Status::Success;
  std::string suffix;
  std::string failure;
};

/// Reads all identities. An identity without settings gets its settings key with the marker as "Store Root" (type by
/// the OS code): the only write. Detects the OS code first.
CatalogueLoad LoadCatalogue(RegistryStore& store, SystemFacts& facts);

/// An identity's message store folder as the registry has it now, expanded.
std::string ReadStoreFolder(RegistryStore& store, SystemFacts& facts, const std::string& userId);

/// `storeRoot` with its first %VARIABLE% expanded: the text before the first "%" is dropped, what follows the second
/// "%" is kept as it is. A text without two "%" stays.
std::string ExpandStoreRoot(SystemFacts& facts, const std::string& storeRoot);

/// True as soon as one identity's "Running" is 1.
bool IsAnyIdentityRunning(RegistryStore& store, const IdentityCatalogue& catalogue);

}  // namespace quillbox
