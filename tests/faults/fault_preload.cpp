// A library that is loaded before the C library and replaces its calls that change files: it counts those below
// one folder, and has one of them, or all from one on, fail as on a full or failing disk (fault_plan.h).
//
// Flushes below the folder are counted and otherwise left out: no test can see whether they were done, and they take
// most of the time.
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "fault_plan.h"

namespace {

using PathBuffer = std::array<char, 2 * PATH_MAX>;

quillbox::FaultPlan* plan = nullptr;
std::string_view root;

/// The call that this library replaces.
template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define REAL(name) (*Real<decltype(name)>(#name))

__attribute__((constructor)) void Begin() {
  const char* file = std::getenv(quillbox::kFaultPlanVariable);
  const char* folder = std::getenv(quillbox::kFaultRootVariable);
  if (file == nullptr || folder == nullptr) return;
  const int fd = REAL(open)(file, O_RDWR | O_CLOEXEC);
  if (fd < 0) return;
  void* mapped = mmap(nullptr, sizeof(quillbox::FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  close(fd);
  if (mapped == MAP_FAILED) return;
  root = folder;
  plan = static_cast<quillbox::FaultPlan*>(mapped);
}

bool IsBelowRoot(std::string_view path) {
  return path.size() > root.size() && path.starts_with(root) && path[root.size()] == '/';
}

/// The path behind a descriptor, or the current folder; empty when there is none.
std::size_t FolderPath(int fd, PathBuffer& buffer) {
  if (fd == AT_FDCWD) return getcwd(buffer.data(), PATH_MAX) == nullptr ? 0 : std::strlen(buffer.data());
  std::array<char, 40> link = {};
  std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", fd);
  const ssize_t length = readlink(link.data(), buffer.data(), PATH_MAX);
  return length > 0 ? static_cast<std::size_t>(length) : 0;
}

bool Counts(const char* call, std::string_view path) {
  if (!IsBelowRoot(path)) return false;
  const std::uint32_t number = ++plan->calls;
  if (plan->failAt == 0 || number < plan->failAt || (number > plan->failAt && plan->andAllAfter == 0)) return false;
  if (plan->failed++ == 0) {
    std::snprintf(plan->firstFailed.data(), plan->firstFailed.size(), "%s %.*s", call,
                  static_cast<int>(path.size() - root.size()), path.data() + root.size());
  }
  errno = plan->code;
  return true;
}

/// True when the call on `path`, relative to the folder `fd`, is to fail; errno is set then.
bool FailsAt(const char* call, int fd, const char* path) {
  if (plan == nullptr || path == nullptr) return false;
  if (path[0] == '/') return Counts(call, path);
  PathBuffer buffer = {};
  const std::size_t length = FolderPath(fd, buffer);
  std::snprintf(buffer.data() + length, buffer.size() - length, "/%s", path);
  return Counts(call, buffer.data());
}

bool Fails(const char* call, const char* path) {
  return FailsAt(call, AT_FDCWD, path);
}

/// The same for an open file.
bool Fails(const char* call, int fd) {
  if (plan == nullptr) return false;
  const int before = errno;
  PathBuffer buffer = {};
  const std::size_t length = FolderPath(fd, buffer);
  errno = before;
  return Counts(call, {buffer.data(), length});
}

bool IsBelowRoot(int fd) {
  PathBuffer buffer = {};
  return plan != nullptr && IsBelowRoot({buffer.data(), FolderPath(fd, buffer)});
}

bool Writes(int flags) {
  return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
}

bool OpenFails(const char* call, int folder, const char* path, int flags) {
  return Writes(flags) && FailsAt(call, folder, path);
}

mode_t ModeOf(int flags, va_list arguments) {
  const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return hasMode ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

}  // namespace

// NOLINTBEGIN: the C library's own names and forms
extern "C" {

#define OPEN(name)                                           \
  int name(const char* path, int flags, ...) {               \
    va_list arguments;                                       \
    va_start(arguments, flags);                              \
    const mode_t mode = ModeOf(flags, arguments);            \
    va_end(arguments);                                       \
    if (OpenFails("open", AT_FDCWD, path, flags)) return -1; \
    return REAL(name)(path, flags, mode);                    \
  }
OPEN(open)
OPEN(open64)

#define OPENAT(name)                                       \
  int name(int folder, const char* path, int flags, ...) { \
    va_list arguments;                                     \
    va_start(arguments, flags);                            \
    const mode_t mode = ModeOf(flags, arguments);          \
    va_end(arguments);                                     \
    if (OpenFails("open", folder, path, flags)) return -1; \
    return REAL(name)(folder, path, flags, mode);          \
  }
OPENAT(openat)
OPENAT(openat64)

#define FOPEN(name)                                                                  \
  FILE* name(const char* path, const char* mode) {                                   \
    if (std::strpbrk(mode, "wa+") != nullptr && Fails("open", path)) return nullptr; \
    return REAL(name)(path, mode);                                                   \
  }
FOPEN(fopen)
FOPEN(fopen64)

// A call that gives -1 where `fails`.
#define CALL(result, name, parameters, arguments, fails) \
  result name parameters {                               \
    return (fails) ? result(-1) : REAL(name) arguments;  \
  }
CALL(int, creat, (const char* path, mode_t mode), (path, mode), Fails("open", path))
// The template names a file of the same folder.
CALL(int, mkstemp, (char* path), (path), Fails("open", path))
CALL(int, mkstemp64, (char* path), (path), Fails("open", path))
CALL(int, mkostemp, (char* path, int flags), (path, flags), Fails("open", path))
CALL(int, mkostemp64, (char* path, int flags), (path, flags), Fails("open", path))
char* mkdtemp(char* path) {
  return Fails("mkdir", path) ? nullptr : REAL(mkdtemp)(path);
}
CALL(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), Fails("mkdir", path))
CALL(int, mkdirat, (int folder, const char* path, mode_t mode) noexcept, (folder, path, mode),
     FailsAt("mkdir", folder, path))
CALL(int, rename, (const char* from, const char* to) noexcept, (from, to), Fails("rename", to))
CALL(int, renameat, (int folder, const char* from, int toFolder, const char* to) noexcept, (folder, from, toFolder, to),
     FailsAt("rename", toFolder, to))
CALL(int, renameat2, (int folder, const char* from, int toFolder, const char* to, unsigned flags) noexcept,
     (folder, from, toFolder, to, flags), FailsAt("rename", toFolder, to))
CALL(int, link, (const char* from, const char* to) noexcept, (from, to), Fails("link", to))
CALL(int, linkat, (int folder, const char* from, int toFolder, const char* to, int flags) noexcept,
     (folder, from, toFolder, to, flags), FailsAt("link", toFolder, to))
CALL(ssize_t, write, (int fd, const void* bytes, size_t size), (fd, bytes, size), Fails("write", fd))
CALL(ssize_t, writev, (int fd, const iovec* parts, int count), (fd, parts, count), Fails("write", fd))
CALL(ssize_t, pwrite, (int fd, const void* bytes, size_t size, off_t at), (fd, bytes, size, at), Fails("write", fd))
CALL(ssize_t, pwrite64, (int fd, const void* bytes, size_t size, off64_t at), (fd, bytes, size, at), Fails("write", fd))
CALL(ssize_t, copy_file_range, (int from, off64_t* fromAt, int to, off64_t* toAt, size_t size, unsigned flags),
     (from, fromAt, to, toAt, size, flags), Fails("copy_file_range", to))
CALL(ssize_t, sendfile, (int to, int from, off_t* at, size_t size) noexcept, (to, from, at, size),
     Fails("sendfile", to))
CALL(ssize_t, sendfile64, (int to, int from, off64_t* at, size_t size) noexcept, (to, from, at, size),
     Fails("sendfile", to))
CALL(int, ftruncate, (int fd, off_t size) noexcept, (fd, size), Fails("ftruncate", fd))
CALL(int, ftruncate64, (int fd, off64_t size) noexcept, (fd, size), Fails("ftruncate", fd))

int fsync(int fd) {
  if (Fails("fsync", fd)) return -1;
  return IsBelowRoot(fd) ? 0 : REAL(fsync)(fd);
}
int fdatasync(int fd) {
  if (Fails("fsync", fd)) return -1;
  return IsBelowRoot(fd) ? 0 : REAL(fdatasync)(fd);
}
int sync_file_range(int fd, off64_t at, off64_t size, unsigned flags) {
  if (Fails("sync_file_range", fd)) return -1;
  return IsBelowRoot(fd) ? 0 : REAL(sync_file_range)(fd, at, size, flags);
}

// Calls that the C library has no function for.
long syscall(long number, ...) noexcept {
  va_list list;
  va_start(list, number);
  std::array<long, 6> a = {};
  for (long& argument : a) argument = va_arg(list, long);
  va_end(list);
  if (number == SYS_openat2 && a[2] != 0) {
    const auto* how = reinterpret_cast<const open_how*>(a[2]);
    if (OpenFails("open", static_cast<int>(a[0]), reinterpret_cast<const char*>(a[1]), static_cast<int>(how->flags))) {
      return -1;
    }
  }
  if (number == SYS_renameat2 && FailsAt("rename", static_cast<int>(a[2]), reinterpret_cast<const char*>(a[3]))) {
    return -1;
  }
  return REAL(syscall)(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

}  // extern "C"
// NOLINTEND
