// SPDX-License-Identifier: GPL-3.0-or-later
// One program per disk: an exclusive lock on the folders whose hives are open for writing.
#pragma once

#include <vector>

#include "host/folder_lock.h"
#include "platform/platform.h"

namespace quillbox {

class DiskLock {
 public:
  /// Locks every folder (the same one twice is locked once). `inherited` are what the starting process got from
  /// Numbers(). Throws Error that says which program has the folder. Where the file system has no locks, the folder
  /// stays unlocked and the log says so.
  DiskLock(const std::vector<HostPath>& folders, const std::vector<HandleNumber>& inherited, Log& log);

  /// What a program must be passed, to be let in.
  std::vector<HandleNumber> Numbers() const;

 private:
  std::vector<FolderLock> locks_;
};

}  // namespace quillbox
