// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/identity_catalogue.h"

#include <algorithm>
#include <exception>

#include "text/error.h"

namespace quillbox {
namespace {

/// Ends a load with a registry read error.
struct ReadErrorEnd {
  Status status;
  const char* suffix;
};

Key OpenOrEnd(RegistryStore& store, const std::string& subkey, const char* suffix) {
  OpenResult opened = store.OpenKey(CurrentUser(subkey), Access::Read);
  if (opened.status != Status::Success) throw ReadErrorEnd{opened.status, suffix};
  return std::move(opened.key);
}

void EnsureSettings(RegistryStore& store, const std::string& userId) {
  const RegistryPath settings = CurrentUser(IdentitySettingsKey(userId));
  if (store.OpenKey(settings).status != Status::FileNotFound || store.GetOsCode() == OsCode::Unknown) return;
  const Key key = store.CreateKey(settings);
  const ValueType type = IsNtFamily(store.GetOsCode()) ? ValueType::ExpandSz : ValueType::Sz;
  if (key.IsOpen()) store.SetValueEx(key, "Store Root", type, kEmptyIdentityMarker);
}

/// True where the settings are missing because the registry cannot be written, so that EnsureSettings made none.
bool IsNeverStarted(RegistryStore& store, const std::string& userId) {
  return store.OpenKey(CurrentUser(IdentitySettingsKey(userId)), Access::Read).status == Status::FileNotFound &&
         store.OpenKey(CurrentUser(kIdentitiesKey)).status == Status::AccessDenied;
}

void LoadIdentity(RegistryStore& store, SystemFacts& facts, IdentityInfo& identity) {
  EnsureSettings(store, identity.userId);
  if (IsNeverStarted(store, identity.userId)) {
    identity.storeFolder = std::nullopt;
  } else {
    identity.storeFolder = ReadStoreFolder(store, facts, identity.userId);
  }
  OpenOrEnd(store, IdentityKey(identity.userId), " Identities\\Username");
  identity.username = store.ReadStringValue(CurrentUser(IdentityKey(identity.userId)), "Username");
}

void LoadDefault(RegistryStore& store, IdentityCatalogue& catalogue) {
  OpenOrEnd(store, kIdentitiesKey, " Identities\\USER ID");
  catalogue.defaultUserId = store.ReadStringValue(CurrentUser(kIdentitiesKey), "Default User ID");
  const std::string defaultKey = IdentityKey(catalogue.defaultUserId);
  OpenOrEnd(store, defaultKey, " Default User ID Username");
  catalogue.defaultUsername = store.ReadStringValue(CurrentUser(defaultKey), "Username");
}

void LoadAll(RegistryStore& store, SystemFacts& facts, IdentityCatalogue& catalogue) {
  OpenResult identities = store.OpenKey(CurrentUser(kIdentitiesKey), Access::Read);
  if (identities.status != Status::Success) {
    catalogue.end.kind = LoadEnd::Kind::NoIdentitiesKey;
    return;
  }
  for (const std::string& userId : store.EnumSubKeys(identities.key)) {
    catalogue.identities.push_back({userId, {}, WinPath()});
  }
  identities.key.Close();
  for (IdentityInfo& identity : catalogue.identities) {
    LoadIdentity(store, facts, identity);
    // The default identity is read along with the first one: a load that stops there has one username.
    if (++catalogue.end.usernamesRead == 1) LoadDefault(store, catalogue);
  }
  catalogue.addressBookFile = ReadAddressBookFile(store);
  catalogue.end.kind = LoadEnd::Kind::Complete;
}

/// What commands need of the identities that the load did not reach.
void ReadUnreached(RegistryStore& store, SystemFacts& facts, IdentityCatalogue& catalogue) {
  for (std::size_t i = catalogue.end.usernamesRead; i < catalogue.identities.size(); ++i) {
    IdentityInfo& identity = catalogue.identities[i];
    identity.username = ReadUsername(store, identity.userId);
    try {
      identity.storeFolder = ReadStoreFolder(store, facts, identity.userId);
    } catch (const Error&) {
      identity.storeFolder = WinPath();
    }
  }
}

}  // namespace

std::string IdentityKey(const std::string& userId) {
  return std::string(kIdentitiesKey) + "\\" + userId;
}

std::string IdentitySettingsKey(const std::string& userId) {
  return IdentityKey(userId) + "\\Software\\Microsoft\\Outlook Express\\5.0";
}

RegistryPath CurrentUser(const std::string& subkey) {
  return {RegistryRoot::CurrentUser, subkey};
}

IdentityCatalogue LoadCatalogue(RegistryStore& store, SystemFacts& facts) {
  IdentityCatalogue catalogue;
  try {
    store.DetectOsCode();
    LoadAll(store, facts, catalogue);
  } catch (const ReadErrorEnd& end) {
    catalogue.end.kind = LoadEnd::Kind::ReadError;
    catalogue.end.status = end.status;
    catalogue.end.suffix = end.suffix;
  } catch (const std::exception& error) {
    catalogue.end.kind = LoadEnd::Kind::Failed;
    catalogue.end.failure = error.what();
  }
  ReadUnreached(store, facts, catalogue);
  return catalogue;
}

const IdentityInfo* IdentityCatalogue::Find(const std::string& userId) const {
  const auto found = std::find_if(identities.begin(), identities.end(),
                                  [&](const IdentityInfo& identity) { return identity.userId == userId; });
  return found == identities.end() ? nullptr : &*found;
}

std::optional<WinPath> ReadStoreFolder(RegistryStore& store, SystemFacts& facts, const std::string& userId) {
  const std::string stored = store.ReadStringValue(CurrentUser(IdentitySettingsKey(userId)), "Store Root");
  if (stored == kEmptyIdentityMarker) return std::nullopt;
  return WinPath(ExpandStoreRoot(facts, stored));
}

std::string ReadUsername(RegistryStore& store, const std::string& userId) {
  if (userId.empty()) return {};
  const RegValue username = store.RegistryGetKeyValue(CurrentUser(IdentityKey(userId)), "Username");
  return username.Data() ? std::string() : username.AsText();
}

WinPath ReadAddressBookFile(RegistryStore& store) {
  const RegValue file = store.RegistryGetKeyValue(CurrentUser(kAddressBookKey), "");
  return WinPath(file.Text() ? *file.Text() : std::string());
}

std::string ExpandStoreRoot(SystemFacts& facts, const std::string& storeRoot) {
  const std::size_t first = storeRoot.find('%');
  if (first == std::string::npos) return storeRoot;
  const std::size_t second = storeRoot.find('%', first + 1);
  if (second == std::string::npos) return storeRoot;
  return facts.ExpandEnvironment(storeRoot.substr(first, second - first + 1)) + storeRoot.substr(second + 1);
}

bool IsAnyIdentityRunning(RegistryStore& store, const IdentityCatalogue& catalogue) {
  return std::any_of(catalogue.identities.begin(), catalogue.identities.end(), [&](const IdentityInfo& identity) {
    return store.RegistryGetKeyValue(CurrentUser(IdentitySettingsKey(identity.userId)), "Running") == RegValue(1);
  });
}

}  // namespace quillbox
