// SPDX-License-Identifier: GPL-3.0-or-later
#include "identities/manage_identities.h"

#include <algorithm>

#include "identities/user_id.h"

namespace quillbox {
namespace {

constexpr const char* kDefault = "Default User ID";
constexpr const char* kStartAs = "Start As";

std::string ReadUserId(RegistryStore& store, const char* name) {
  const RegValue value = store.RegistryGetKeyValue(CurrentUser(kIdentitiesKey), name);
  return value.Data() ? std::string() : value.AsText();
}

}  // namespace

void RemoveIdentity(RegistryStore& store, const std::string& userId) {
  if (userId.empty() || userId.find('\\') != std::string::npos) return;
  store.DeleteKey(CurrentUser(IdentityKey(userId)));
}

std::string ReadDefaultIdentity(RegistryStore& store) {
  return ReadUserId(store, kDefault);
}

void SetDefaultIdentity(RegistryStore& store, const std::string& userId) {
  store.SetKeyValue(kIdentitiesKey, kDefault, userId, ValueType::Sz);
}

std::string ReadStartAs(RegistryStore& store) {
  return ReadUserId(store, kStartAs);
}

void SetStartAs(RegistryStore& store, const std::string& userId) {
  store.SetKeyValue(kIdentitiesKey, kStartAs, userId, ValueType::Sz);
  if (userId != kNobody) return;
  store.SetKeyValue(kIdentitiesKey, "Last Username", "", ValueType::Sz);
  store.SetKeyValue(kIdentitiesKey, "Last User ID", kNobody, ValueType::Sz);
}

bool RenameIdentity(RegistryStore& store, IdentityCatalogue& catalogue, const IdentityInfo& identity,
                    const std::string& username) {
  std::vector<IdentityInfo>& identities = catalogue.identities;
  const auto has = [](const std::string& name) {
    return [&name](const IdentityInfo& each) { return each.username == name; };
  };
  if (std::any_of(identities.begin(), identities.end(), has(username))) return false;
  for (IdentityInfo& each : identities) {
    if (has(identity.username)(each)) each.username = username;
  }
  store.SetKeyValue(IdentityKey(identity.userId), "Username", username, ValueType::Sz);
  return true;
}

}  // namespace quillbox
