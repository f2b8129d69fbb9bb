// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/this_computer.h"

namespace quillbox {

bool IsWindowsHere() {
  return false;
}

bool HasIdentitiesHere() {
  return false;
}

std::unique_ptr<ThisComputer> OpenThisComputer(const HostPath& /*stateFolder*/, Dialogs& /*dialogs*/,
                                               Clipboard& /*clipboard*/) {
  return nullptr;
}

}  // namespace quillbox
