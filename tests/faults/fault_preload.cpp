// SPDX-License-Identifier: GPL-3.0-or-later
// A library that is loaded before the C library and replaces those of its calls with which our programs, and the
// libraries they use, change files: it counts those below one folder, and has one of them, or all from one on, fail as
// on a full or failing disk (fault_plan.h). Removals are left out: a file that stays is not a failure.
//
// Flushes below the folder are counted and otherwise left out: no test can see whether they were done, and they take
// most of the time.
#include <dlfcn.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "fault_plan.h"

namespace {

namespace fs = std::filesystem;

quillbox::FaultPlan* plan = nullptr;
const char* root = nullptr;

/// The call that this library replaces.
template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define REAL(name) (*Real<decltype(name)>(#name))

__attribute__((constructor)) void Begin() {
  const char* file = std::getenv(quillbox::kFaultPlanVariable);
  root = std::getenv(quillbox::kFaultRootVariable);
  if (file != nullptr && root != nullptr) plan = quillbox::MapPlan(file, 0);
}

/// `path` in the folder `fd`; without a path the open file `fd` itself.
std::string PathOf(int fd, const char* path) {
  if (path[0] == '/') return path;
  std::error_code none;
  const fs::path folder =
      fd == AT_FDCWD ? fs::current_path(none) : fs::read_symlink("/proc/self/fd/" + std::to_string(fd), none);
  return path[0] == '\0' ? folder : folder / path;
}

bool IsBelowRoot(int fd) {
  return plan != nullptr && PathOf(fd, "").starts_with(root);
}

/// True when the call is to fail; errno is set then.
bool Fails(const char* call, int fd, const char* path = "") {
  if (plan == nullptr || path == nullptr) return false;
  const std::string file = PathOf(fd, path);
  if (!file.starts_with(root)) return false;
  const std::uint32_t number = ++plan->calls;
  if (plan->failAt == 0 || number < plan->failAt || (number > plan->failAt && plan->andAllAfter == 0)) return false;
  if (plan->failed++ == 0) {
    std::snprintf(plan->firstFailed.data(), plan->firstFailed.size(), "%s %s", call, file.c_str() + std::strlen(root));
  }
  errno = plan->code;
  return true;
}

bool OpenFails(int folder, const char* path, int flags) {
  const bool writes = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
  return writes && Fails("open", folder, path);
}

mode_t ModeOf(int flags, va_list arguments) {
  const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return hasMode ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

}  // namespace

// NOLINTBEGIN: the C library's own names and forms
extern "C" {

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return OpenFails(folder, path, flags) ? -1 : REAL(openat)(folder, path, flags, mode);
}
int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return OpenFails(AT_FDCWD, path, flags) ? -1 : REAL(open)(path, flags, mode);
}

#define FOPEN(name)                                                                            \
  FILE* name(const char* path, const char* mode) {                                             \
    if (std::strpbrk(mode, "wa+") != nullptr && Fails("open", AT_FDCWD, path)) return nullptr; \
    return REAL(name)(path, mode);                                                             \
  }
FOPEN(fopen)
FOPEN(fopen64)

// A call that gives -1 where `fails`.
#define CALL(result, name, parameters, arguments, fails) \
  result name parameters {                               \
    return (fails) ? result(-1) : REAL(name) arguments;  \
  }
CALL(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), Fails("mkdir", AT_FDCWD, path))
CALL(int, mkdirat, (int folder, const char* path, mode_t mode) noexcept, (folder, path, mode),
     Fails("mkdir", folder, path))
CALL(int, rename, (const char* from, const char* to) noexcept, (from, to), Fails("rename", AT_FDCWD, to))
CALL(int, renameat, (int folder, const char* from, int toFolder, const char* to) noexcept, (folder, from, toFolder, to),
     Fails("rename", toFolder, to))
CALL(int, renameat2, (int folder, const char* from, int toFolder, const char* to, unsigned flags) noexcept,
     (folder, from, toFolder, to, flags), Fails("rename", toFolder, to))
CALL(int, linkat, (int folder, const char* from, int toFolder, const char* to, int flags) noexcept,
     (folder, from, toFolder, to, flags), Fails("link", toFolder, to))
CALL(ssize_t, write, (int fd, const void* bytes, size_t size), (fd, bytes, size), Fails("write", fd))
CALL(ssize_t, writev, (int fd, const iovec* parts, int count), (fd, parts, count), Fails("write", fd))
CALL(ssize_t, copy_file_range, (int from, off64_t* fromAt, int to, off64_t* toAt, size_t size, unsigned flags),
     (from, fromAt, to, toAt, size, flags), Fails("copy_file_range", to))

int fsync(int fd) {
  if (Fails("fsync", fd)) return -1;
  return IsBelowRoot(fd) ? 0 : REAL(fsync)(fd);
}
int syncfs(int fd) noexcept {
  if (Fails("syncfs", fd)) return -1;
  return IsBelowRoot(fd) ? 0 : REAL(syncfs)(fd);
}
int sync_file_range(int fd, off64_t at, off64_t size, unsigned flags) {
  if (Fails("sync_file_range", fd)) return -1;
  return IsBelowRoot(fd) ? 0 : REAL(sync_file_range)(fd, at, size, flags);
}

// The C library has no function for openat2.
long syscall(long number, ...) noexcept {
  va_list list;
  va_start(list, number);
  long a[6] = {};
  for (long& argument : a) argument = va_arg(list, long);
  va_end(list);
  if (number == SYS_openat2 && a[2] != 0) {
    const auto flags = static_cast<int>(reinterpret_cast<const open_how*>(a[2])->flags);
    if (OpenFails(static_cast<int>(a[0]), reinterpret_cast<const char*>(a[1]), flags)) return -1;
  }
  return REAL(syscall)(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

}  // extern "C"
// NOLINTEND
