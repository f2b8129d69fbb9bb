// SPDX-License-Identifier: GPL-3.0-or-later
// What the contract of every platform is tried on. Each platform's tests link a world of its own.
#pragma once

#include <memory>

#include "platform/platform.h"

namespace quillbox {

struct ContractWorld {
  virtual ~ContractWorld() = default;
  virtual Platform& GetPlatform() = 0;

  RegistryPath key;           ///< of the test's own, in HKEY_CURRENT_USER: made by it, and gone with the world
  WinPath folder;             ///< of the test's own, and empty
  const char* variable = "";  ///< one of the environment, whose value is a folder that is there
};
std::unique_ptr<ContractWorld> MakeContractWorld(Dialogs& dialogs);

}  // namespace quillbox
