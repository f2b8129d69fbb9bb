// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/disk_lock.h"

#include <algorithm>

namespace quillbox {

DiskLock::DiskLock(const std::vector<HostPath>& folders, const std::vector<HandleNumber>& inherited, Log& log) {
  for (const HostPath& folder : folders) {
    if (std::any_of(locks_.begin(), locks_.end(), [&](const FolderLock& lock) { return lock.IsOf(folder); })) continue;
    const FolderLock& lock = locks_.emplace_back(folder, inherited);
    if (lock.Lack().empty()) continue;
    log.Write(folder.Text() + ": the file system has no locks (" + lock.Lack() +
              "); another program could change the hives there at the same time");
  }
}

std::vector<HandleNumber> DiskLock::Numbers() const {
  std::vector<HandleNumber> numbers;
  for (const FolderLock& lock : locks_) numbers.push_back(lock.Number());
  return numbers;
}

}  // namespace quillbox
