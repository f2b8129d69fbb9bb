// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/posix/open_beneath.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <string>
#include <utility>

#include "host/posix/posix.h"

namespace quillbox {

namespace {

constexpr int kStepFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::atomic<bool>& Openat2IsUsed() {
  static std::atomic<bool> used = true;
  return used;
}

bool IsLink(int folder, const std::string& name) {
  struct stat info = {};
  return fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
}

HostHandle OpenNameByName(int root, const HostPath& names, int flags) {
  HostHandle opened;
  int folder = root;
  for (const std::string& name : names.Names()) {
    const bool last = &name == &names.Names().back();
    HostHandle next = OpenEntry(folder, name, last ? flags : kStepFlags);
    if (!next) return {};
    opened = std::move(next);
    folder = Fd(opened);
  }
  return opened;
}

}  // namespace

HostHandle OpenEntry(int folder, const std::string& name, int flags) {
  HostHandle opened(openat(folder, name.c_str(), flags | O_NOFOLLOW));
  if (opened) return opened;
  // A link that is opened as a folder counts as something that is not one.
  const int code = errno;
  errno = code == ENOTDIR && IsLink(folder, name) ? ELOOP : code;
  return {};
}

HostHandle OpenBeneath(const HostHandle& root, const HostPath& names, int flags) {
  if (names.Empty()) return HostHandle(openat(Fd(root), ".", flags));
  if (Openat2IsUsed()) {
    open_how how = {};
    how.flags = static_cast<unsigned>(flags);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    const long opened = syscall(SYS_openat2, Fd(root), names.Text().c_str(), &how, sizeof how);
    if (opened >= 0) return HostHandle(opened);
    // A path that is too long for one call can still be opened in steps.
    if (errno != ENOSYS && errno != EPERM && errno != EAGAIN && errno != ENAMETOOLONG) return {};
    if (errno == ENOSYS) UseOpenat2(false);
  }
  return OpenNameByName(Fd(root), names, flags);
}

void UseOpenat2(bool use) {
  Openat2IsUsed() = use;
}

}  // namespace quillbox
