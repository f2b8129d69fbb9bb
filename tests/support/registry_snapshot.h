// SPDX-License-Identifier: GPL-3.0-or-later
// A registry key with everything below it as text by text, so that two trees compare equal only when every key, value,
// type and byte does, and a failed comparison names the first that differs.
#pragma once

#include <map>
#include <string>

#include "platform/registry.h"

namespace quillbox {

/// "key|" for each key and "key|name" for each value, keys relative to `path`; the text holds the type and the bytes.
using RegistrySnapshot = std::map<std::string, std::string>;

inline void AddToSnapshot(Registry& registry, const RegistryPath& path, const std::string& shown,
                          RegistrySnapshot& snapshot) {
  const OpenResult opened = registry.Open(path, Access::Read);
  if (opened.status != Status::Success) return;
  snapshot[shown + "|"] = "key";
  for (std::uint32_t i = 0;; ++i) {
    const ValueResult value = registry.EnumStoredValue(opened.key, i);
    if (value.status != Status::Success) break;
    snapshot[shown + "|" + value.name + "="] =
        std::to_string(static_cast<unsigned>(value.type)) + ":" + std::string(value.data.begin(), value.data.end());
  }
  for (std::uint32_t i = 0;; ++i) {
    const NameResult name = registry.EnumKey(opened.key, i);
    if (name.status != Status::Success) break;
    AddToSnapshot(registry, path.Child(name.name), shown + "\\" + name.name, snapshot);
  }
}

inline RegistrySnapshot SnapshotOf(Registry& registry, const RegistryPath& path) {
  RegistrySnapshot snapshot;
  AddToSnapshot(registry, path, "", snapshot);
  return snapshot;
}

}  // namespace quillbox
