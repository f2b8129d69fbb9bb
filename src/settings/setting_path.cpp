// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/setting_path.h"

#include <stdexcept>

#include "core/identity_catalogue.h"

namespace quillbox {
namespace {

struct KeyRow {
  SettingKey key;
  RegistryRoot root;
  bool ofIdentity;
  const char* path;  ///< for a key of an identity: what follows its settings key
};

constexpr KeyRow kKeys[] = {
    {SettingKey::Settings, RegistryRoot::CurrentUser, true, ""},
    {SettingKey::Mail, RegistryRoot::CurrentUser, true, "\\Mail"},
    {SettingKey::News, RegistryRoot::CurrentUser, true, "\\News"},
    {SettingKey::Rules, RegistryRoot::CurrentUser, true, "\\Rules"},
    {SettingKey::Machine, RegistryRoot::LocalMachine, false, "Software\\Microsoft\\Outlook Express"},
    {SettingKey::WebMain, RegistryRoot::CurrentUser, false, "Software\\Microsoft\\Internet Explorer\\Main"},
    {SettingKey::WebToolbar, RegistryRoot::CurrentUser, false, "Software\\Microsoft\\Internet Explorer\\Toolbar"},
};

const KeyRow& RowOf(SettingKey key) {
  for (const KeyRow& row : kKeys) {
    if (row.key == key) return row;
  }
  throw std::logic_error("a setting without a value has no path");
}

}  // namespace

RegistryPath PathOf(SettingKey key, const std::string& userId) {
  const KeyRow& row = RowOf(key);
  return {row.root, row.ofIdentity ? IdentitySettingsKey(userId) + row.path : row.path};
}

bool IsOfIdentity(SettingKey key) {
  return key != SettingKey::None && RowOf(key).ofIdentity;
}

}  // namespace quillbox
