// SPDX-License-Identifier: GPL-3.0-or-later
// Where the registry holds the values of settings.
#pragma once

#include <string>

#include "settings/setting.h"
#include "text/registry_path.h"

namespace quillbox {

/// The path of `key`; for a key of an identity, below that of `userId`.
RegistryPath PathOf(SettingKey key, const std::string& userId);

/// True for a key that every identity has for itself.
bool IsOfIdentity(SettingKey key);

}  // namespace quillbox
