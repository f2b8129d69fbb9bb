// SPDX-License-Identifier: GPL-3.0-or-later
// A folder in which one program at a time may write.
#pragma once

#include <string>
#include <vector>

#include "host/host_handle.h"
#include "host/host_path.h"

namespace quillbox {

/// An exclusive lock. Nothing of it stays in the folder once it is gone, and it ends with the processes that hold it.
class FolderLock {
 public:
  /// `inherited` are numbers that the starting program got from Number(): if the folder's is among them, its lock is
  /// shared. Throws Error that says which program has the folder.
  FolderLock(const HostPath& folder, const std::vector<HandleNumber>& inherited);

  /// Why the file system has no locks, and the folder stays unlocked; empty when it is locked.
  const std::string& Lack() const { return lack_; }
  bool IsOf(const HostPath& folder) const;
  /// What a program that is started must be passed, to be let in.
  HandleNumber Number() const { return handle_.Number(); }

 private:
  HostHandle handle_;
  std::string lack_;
};

}  // namespace quillbox
