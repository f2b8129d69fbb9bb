// One program per disk: an exclusive lock on the folders whose hives are open for writing. It is on the folder
// itself, so nothing is left on the disk, and it ends with the processes that hold it.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/offline/host_file.h"
#include "platform/platform.h"

namespace quillbox {

class DiskLock {
 public:
  /// Locks every folder (the same one twice is locked once). `inherited` are descriptors that the starting process got
  /// from Descriptors(): if the folder's is among them, its lock is shared, and it is closed with this
  /// object. Throws Error that says which program has the folder. Where the file system has no locks, the folder
  /// stays unlocked and the log says so.
  DiskLock(const std::vector<std::filesystem::path>& folders, const std::vector<int>& inherited, Log& log);

  /// The descriptors to hand to a child. They are closed on exec unless the child clears FD_CLOEXEC on them.
  std::vector<int> Descriptors() const;

 private:
  void Lock(const std::filesystem::path& folder, const std::vector<int>& inherited, Log& log);

  std::vector<HostFd> locks_;
};

}  // namespace quillbox
