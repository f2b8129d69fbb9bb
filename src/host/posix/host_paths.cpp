// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "host/host_fault.h"
#include "host/posix/posix.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr std::array kSystemFolders = {"/proc", "/sys", "/dev"};

}  // namespace

HostPath Absolute(const HostPath& path) {
  if (path.IsAbsolute()) return path.Normal();
  std::error_code ignored;
  return HostPath(fs::current_path(ignored)).Join(path).Normal();
}

RealPath RealPathOf(const HostPath& path) {
  RealPath real;
  real.path = HostPath(fs::canonical(NativePath(path), real.fault));
  return real;
}

RealPath RealPathAsFarAsThere(const HostPath& path) {
  RealPath real;
  real.path = HostPath(fs::weakly_canonical(NativePath(path), real.fault));
  return real;
}

PathInfo InfoOf(const HostPath& path, Links links) {
  struct stat info = {};
  const int flags = links == Links::Keep ? AT_SYMLINK_NOFOLLOW : 0;
  if (fstatat(AT_FDCWD, NativePath(path).c_str(), &info, flags) != 0) return {std::nullopt, SystemCode(errno)};
  return {InfoOfStat(info), {}};
}

bool IsDiskDevice(const HostPath& path) {
  std::error_code code;
  return fs::is_block_file(NativePath(path), code);
}

std::error_code Move(const HostPath& from, const HostPath& to) {
  std::error_code code;
  fs::rename(NativePath(from), NativePath(to), code);
  return code;
}

HostPath ProgramFolder() {
  std::error_code code;
  return HostPath(fs::read_symlink("/proc/self/exe", code)).Parent();
}

HostPath TemporaryFolder() {
  std::error_code code;
  const fs::path folder = fs::temp_directory_path(code);
  return code ? HostPath("/tmp") : HostPath(folder);
}

HostPath MakeNewFolder(const HostPath& parent, const std::string& beginning) {
  std::string name = parent.Join(beginning + "XXXXXX").Text();
  if (mkdtemp(name.data()) == nullptr) ThrowErrno(errno);
  return HostPath(name);
}

bool IsSystemsOwn(const HostPath& path) {
  return std::any_of(kSystemFolders.begin(), kSystemFolders.end(),
                     [&](const char* folder) { return path.Below(HostPath(folder)).has_value(); });
}

}  // namespace quillbox
