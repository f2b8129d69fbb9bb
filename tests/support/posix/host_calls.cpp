// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/host_calls.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

namespace quillbox {
namespace {

OnHostCall& Hook() {
  static OnHostCall hook;
  return hook;
}

bool Fails(HostCall call, const std::string& file) {
  const int code = Hook() ? Hook()(call, file) : 0;
  if (code != 0) errno = code;
  return code != 0;
}

}  // namespace

HostCallGuard::HostCallGuard(OnHostCall onCall) {
  before_ = std::exchange(Hook(), std::move(onCall));
}

HostCallGuard::~HostCallGuard() {
  Hook() = std::move(before_);
}

}  // namespace quillbox

using quillbox::Fails;
using quillbox::HostCall;

extern "C" {

int fsync(int fd) {
  if (Fails(HostCall::Flush, std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd)))) return -1;
  return quillbox::Hook() ? 0 : static_cast<int>(syscall(SYS_fsync, fd));
}

int syncfs(int fd) noexcept {
  if (Fails(HostCall::Flush, std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd)))) return -1;
  return quillbox::Hook() ? 0 : static_cast<int>(syscall(SYS_syncfs, fd));
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  if (Fails(HostCall::Rename, to)) return -1;
  return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  if (Fails(HostCall::Rename, to)) return -1;
  return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, 0));
}

int unlinkat(int folder, const char* name, int flags) noexcept {
  if (Fails(HostCall::Remove, name)) return -1;
  return static_cast<int>(syscall(SYS_unlinkat, folder, name, flags));
}
}
