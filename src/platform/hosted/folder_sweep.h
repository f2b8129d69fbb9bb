// SPDX-License-Identifier: GPL-3.0-or-later
// Removes what killed programs have left in the folders that are written: in each folder once per command.
#pragma once

#include <set>

#include "platform/hosted/host_place.h"

namespace quillbox {

class FolderSweep {
 public:
  /// Removes abandoned temporary files from `folder`, unless this was done before.
  void Sweep(const HostPlace& folder);
  /// The next Sweep() of each folder looks again.
  void Forget() { swept_.clear(); }

 private:
  std::set<HostPath> swept_;
};

}  // namespace quillbox
