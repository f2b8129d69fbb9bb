// SPDX-License-Identifier: GPL-3.0-or-later
// Where an identity's messages are on this disk, or why they cannot be reached: asked by every command that copies a
// message store.
#pragma once

#include <string>
#include <variant>

#include "core/registry_store.h"
#include "platform/platform.h"
#include "text/win_path.h"

namespace quillbox {

/// Why an identity's message store cannot be reached.
struct StoreFault {
  std::string clause;  ///< to follow the identity's name: "its message store folder \"C:\\Mail\" does not exist"
};

/// The folder, or why there is none.
using StoreFolderResult = std::variant<WinPath, StoreFault>;

/// The identity's message store folder as the registry has it now, whether it exists or not.
StoreFolderResult LocateStore(RegistryStore& store, Platform& platform, const std::string& userId);
/// The same, for a folder that must exist.
StoreFolderResult FindStore(RegistryStore& store, Platform& platform, const std::string& userId);

}  // namespace quillbox
