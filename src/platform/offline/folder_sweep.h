// Frees the folders that are written of what killed programs have left in them: each once a command.
#pragma once

#include <filesystem>
#include <set>

#include "platform/offline/host_place.h"

namespace quillbox {

class FolderSweep {
 public:
  /// Removes abandoned temporary files from `folder`, unless this was done before.
  void Sweep(const HostPlace& folder);
  /// The next Sweep() of each folder looks again.
  void Forget() { swept_.clear(); }

 private:
  std::set<std::filesystem::path> swept_;
};

}  // namespace quillbox
