// Where the values of settings lie in the registry.
#pragma once

#include <string>

#include "settings/setting.h"
#include "text/registry_path.h"

namespace quillbox {

/// The path of `key`, for those of an identity that of `userId`.
RegistryPath PathOf(SettingKey key, const std::string& userId);

/// True for the keys that each identity has its own of.
bool IsOfIdentity(SettingKey key);

}  // namespace quillbox
