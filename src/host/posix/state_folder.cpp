// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/state_folder.h"

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "host/host_fault.h"
#include "host/host_paths.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFolderName = "quillbox";

HostPath FromEnvironment(const char* variable) {
  const char* value = std::getenv(variable);
  HostPath path(value == nullptr ? "" : value);
  return path.IsAbsolute() ? path : HostPath();  // a relative one is to be ignored
}

}  // namespace

HostPath HomeFolder() {
  HostPath home = FromEnvironment("HOME");
  if (!home.Empty()) return home;
  const passwd* user = getpwuid(geteuid());
  return user != nullptr && user->pw_dir != nullptr ? HostPath(user->pw_dir) : HostPath::Root();
}

HostPath StateFolder() {
  const HostPath state = FromEnvironment("XDG_STATE_HOME");
  return (state.Empty() ? HomeFolder() / ".local/state" : state) / kFolderName;
}

bool MakePrivateFolder(const HostPath& folder) {
  if (IsFolder(folder)) return true;
  if (folder.HasName() && !MakePrivateFolder(folder.Parent())) return false;
  std::error_code code;
  if (!fs::create_directory(NativePath(folder), code)) return IsFolder(folder);
  fs::permissions(NativePath(folder), fs::perms::owner_all, code);
  return true;
}

std::optional<std::string> StateFolderFault(const HostPath& folder) {
  const auto mayWrite = [](const HostPath& path) {
    return faccessat(AT_FDCWD, NativePath(path).c_str(), W_OK | X_OK, AT_EACCESS) == 0;
  };
  if (MakePrivateFolder(folder) && mayWrite(folder)) return std::nullopt;
  // Why it could not be made is known by its nearest parent that is there.
  HostPath there = folder;
  while (!Exists(there) && there.HasName()) there = there.Parent();
  const int code = IsFolder(there) && !mayWrite(there) ? errno : ENOTDIR;
  return there.Text() + " cannot be written: " + SystemReason(code);
}

}  // namespace quillbox
