// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

#include "host/host_fault.h"
#include "host/posix/host_io.h"
#include "host/posix/posix.h"

namespace quillbox {

namespace {

constexpr mode_t kNewFileMode = 0666;  // less what the user's mask takes away

}  // namespace

HostHandle NewFolder::MakeFile(const std::string& name) const {
  HostHandle file(
      openat(Fd(made_.Handle()), name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
  if (!file) ThrowErrno(errno);
  return file;
}

void NewFolder::Write(std::string_view bytes) {
  WriteAll(file_, bytes);
}

void NewFolder::EndFile(const std::optional<HostTime>& modified) {
  if (modified) {
    const timespec time = {.tv_sec = modified->seconds, .tv_nsec = static_cast<long>(modified->nanoseconds)};
    const std::array<timespec, 2> times = {time, time};
    if (futimens(Fd(file_), times.data()) != 0 && errno != EINVAL && errno != EOVERFLOW) ThrowErrno(errno);
  }
  file_.Close();
}

void NewFolder::MarkInUse() const {
  flock(Fd(made_.Handle()), LOCK_EX | LOCK_NB);
}

bool IsBeingMade(const HostFolder& folder, const std::string& name) {
  const HostFolder making = folder.OpenFolder(name);
  return flock(Fd(making.Handle()), LOCK_EX | LOCK_NB) != 0;
}

}  // namespace quillbox
