#include "platform/offline/open_beneath.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <iterator>

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr int kStepFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::atomic<bool>& Openat2IsUsed() {
  static std::atomic<bool> used = true;
  return used;
}

bool IsLink(int folder, const fs::path& name) {
  struct stat info = {};
  return fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
}

HostFd OpenNameByName(int root, const fs::path& names, int flags) {
  HostFd opened;
  int folder = root;
  for (auto name = names.begin(); name != names.end(); ++name) {
    const bool last = std::next(name) == names.end();
    HostFd next(openat(folder, name->c_str(), last ? flags | O_NOFOLLOW : kStepFlags));
    if (!next) {
      // A link that is opened as a folder counts as something that is not one.
      const int code = errno;
      errno = code == ENOTDIR && IsLink(folder, *name) ? ELOOP : code;
      return {};
    }
    opened = std::move(next);
    folder = opened.Get();
  }
  return opened;
}

}  // namespace

HostFd OpenBeneath(int root, const fs::path& names, int flags) {
  if (names.empty()) return HostFd(openat(root, ".", flags));
  if (Openat2IsUsed()) {
    open_how how = {};
    how.flags = static_cast<unsigned>(flags);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    const long opened = syscall(SYS_openat2, root, names.c_str(), &how, sizeof how);
    if (opened >= 0) return HostFd(static_cast<int>(opened));
    // A path that is too long for one call can still be opened in steps.
    if (errno != ENOSYS && errno != EPERM && errno != EAGAIN && errno != ENAMETOOLONG) return {};
    if (errno == ENOSYS) UseOpenat2(false);
  }
  return OpenNameByName(root, names, flags);
}

void UseOpenat2(bool use) {
  Openat2IsUsed() = use;
}

}  // namespace quillbox
