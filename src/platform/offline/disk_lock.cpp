#include "platform/offline/disk_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include "text/error.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr const char* kDoing = "locking the disk for writing";

struct FolderId {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const FolderId&) const = default;
};

FolderId IdOf(int fd) {
  struct stat info = {};
  if (fstat(fd, &info) != 0) return {};
  return {info.st_dev, info.st_ino};
}

/// The process that the system's list of locks names for the folder, or 0. Some file systems have another device number
/// there than stat gives, so the inode alone counts where nothing matches both.
long LockHolder(const FolderId& folder) {
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
    if (inode != folder.inode) continue;
    if (makedev(major, minor) == folder.device) return process;
    byInode = process;
  }
  return byInode;
}

std::string Describe(const FolderId& folder) {
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

DiskLock::DiskLock(const std::vector<fs::path>& folders, const std::vector<int>& inherited, Log& log) {
  for (const fs::path& folder : folders) Lock(folder, inherited, log);
}

void DiskLock::Lock(const fs::path& folder, const std::vector<int>& inherited, Log& log) {
  HostFd own(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!own) throw Error(kDoing, {folder.string(), {}, {}}, SystemReason(errno));
  const FolderId id = IdOf(own.Get());
  const auto isThisFolder = [&](int fd) { return IdOf(fd) == id; };
  if (std::any_of(locks_.begin(), locks_.end(), [&](const HostFd& lock) { return isThisFolder(lock.Get()); })) return;

  const auto parent = std::find_if(inherited.begin(), inherited.end(), isThisFolder);
  if (parent != inherited.end()) {
    own = HostFd(*parent);
    fcntl(own.Get(), F_SETFD, FD_CLOEXEC);
  }
  if (flock(own.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) throw Error(kDoing, {folder.string(), {}, {}}, Describe(id) + " has it open");
    if (!HasNoLocks(errno)) throw Error(kDoing, {folder.string(), {}, {}}, SystemReason(errno));
    log.Write(folder.string() + ": the file system has no locks (" + SystemReason(errno) +
              "); another program could change the hives there at the same time");
  }
  locks_.push_back(std::move(own));
}

std::vector<int> DiskLock::Descriptors() const {
  std::vector<int> numbers;
  for (const HostFd& lock : locks_) numbers.push_back(lock.Get());
  return numbers;
}

}  // namespace quillbox
