// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include "host/host_fault.h"
#include "host/posix/posix.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kDoing = "locking the disk for writing";

/// All zero for what is not open.
FileId IdOf(int fd) {
  struct stat info = {};
  return fstat(fd, &info) == 0 ? InfoOfStat(info).id : FileId();
}

/// The process that the system's list of locks names for the folder, or 0. Some file systems have another device number
/// there than stat gives, so the inode alone counts where nothing matches both.
long LockHolder(const FileId& folder) {
  std::ifstream locks("/proc/locks");
  std::string line;
  long byInode = 0;
  while (std::getline(locks, line)) {
    std::istringstream fields(line);
    std::string number, kind, mode, access, place;
    long process = 0;
    if (!(fields >> number >> kind >> mode >> access >> process >> place) || kind != "FLOCK") continue;
    unsigned major = 0, minor = 0;
    unsigned long inode = 0;
    char colon = 0;
    std::istringstream parts(place);
    if (!(parts >> std::hex >> major >> colon >> minor >> colon >> std::dec >> inode)) continue;
    if (inode != folder.number) continue;
    if (makedev(major, minor) == folder.volume) return process;
    byInode = process;
  }
  return byInode;
}

std::string HolderOf(const FileId& folder) {
  const long process = LockHolder(folder);
  if (process <= 0) return "another program";
  std::string name;
  std::ifstream comm("/proc/" + std::to_string(process) + "/comm");
  std::getline(comm, name);
  return (name.empty() ? "another program" : name) + " (process " + std::to_string(process) + ")";
}

bool HasNoLocks(int code) {
  return code == EBADF || code == EINVAL || code == ENOLCK || code == ENOSYS || code == EOPNOTSUPP;
}

}  // namespace

FolderLock::FolderLock(const HostPath& folder, const std::vector<HandleNumber>& inherited) {
  handle_ = HostHandle(open(NativePath(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!handle_) throw Error(kDoing, {folder.Text(), {}, {}}, SystemReason(errno));
  const FileId id = IdOf(Fd(handle_));
  const auto parent = std::find_if(inherited.begin(), inherited.end(),
                                   [&](HandleNumber number) { return IdOf(static_cast<int>(number)) == id; });
  if (parent != inherited.end()) {
    handle_ = HostHandle(*parent);
    fcntl(Fd(handle_), F_SETFD, FD_CLOEXEC);
  }
  if (flock(Fd(handle_), LOCK_EX | LOCK_NB) == 0) return;
  if (errno == EWOULDBLOCK) throw Error(kDoing, {folder.Text(), {}, {}}, HolderOf(id) + " has it open");
  if (!HasNoLocks(errno)) throw Error(kDoing, {folder.Text(), {}, {}}, SystemReason(errno));
  lack_ = SystemReason(errno);
}

bool FolderLock::IsOf(const HostPath& folder) const {
  struct stat info = {};
  return stat(NativePath(folder).c_str(), &info) == 0 && InfoOfStat(info).id == IdOf(Fd(handle_));
}

}  // namespace quillbox
