#include "platform/offline/host_open.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/offline/open_beneath.h"

namespace quillbox {

namespace {

HostFd OpenWith(const HostPlace& place, int flags) {
  if (!place.IsBeneathDrive()) return HostFd(open(place.Path().c_str(), flags));
  const HostFd root(open(place.Drive().folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  return root ? OpenBeneath(root.Get(), place.Names(), flags) : HostFd();
}

/// Refuses everything that is not an ordinary file; a disk's devices and pipes are not even opened.
void CheckOrdinary(const HostPlace& file, const struct stat& info) {
  if (S_ISLNK(info.st_mode)) ThrowAbout(file, ELOOP);
  if (S_ISDIR(info.st_mode)) ThrowErrno(EISDIR);
  if (!S_ISREG(info.st_mode)) ThrowFault(HostFault::NotOrdinary);
}

}  // namespace

void ThrowAbout(const HostPlace& place, int code, LastStep last) {
  if (!place.IsBeneathDrive() || code != ELOOP) ThrowErrno(code);
  const PlaceResult again = FindAgain(place, last);
  ThrowFault(again ? make_error_code(HostFault::Changed) : again.Fault());
}

HostFd OpenFolder(const HostPlace& folder) {
  HostFd fd = OpenWith(folder, O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
  if (!fd && errno == EACCES) fd = OpenWith(folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (!fd) ThrowAbout(folder, errno);
  return fd;
}

OpenPlace OpenFolderOf(const HostPlace& place) {
  if (place.IsRoot()) ThrowErrno(EISDIR);
  return {OpenFolder(place.Folder()), place.Name(), place.IsBeneathDrive() ? AT_SYMLINK_NOFOLLOW : 0};
}

HostFd OpenForReading(const HostPlace& file) {
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  if (!file.IsBeneathDrive()) {
    HostFd fd = OpenWith(file, kFlags);
    if (!fd) ThrowErrno(errno);
    return fd;
  }
  const OpenPlace entry = OpenFolderOf(file);
  struct stat info = {};
  if (fstatat(entry.folder.Get(), entry.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) ThrowErrno(errno);
  CheckOrdinary(file, info);
  HostFd fd(openat(entry.folder.Get(), entry.name.c_str(), kFlags | O_NOFOLLOW));
  if (!fd) ThrowAbout(file, errno);
  if (fstat(fd.Get(), &info) != 0) ThrowErrno(errno);
  CheckOrdinary(file, info);
  return fd;
}

std::optional<struct stat> StatPlace(const HostPlace& place) {
  struct stat info = {};
  if (!place.IsBeneathDrive()) {
    if (stat(place.Path().c_str(), &info) != 0) return std::nullopt;
    return info;
  }
  if (place.IsRoot()) {
    if (stat(place.Drive().folder.c_str(), &info) != 0) return std::nullopt;
    return info;
  }
  const HostFd folder = OpenWith(place.Folder(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (!folder || fstatat(folder.Get(), place.Name().c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  return info;
}

bool IsFolder(const HostPlace& place) {
  const std::optional<struct stat> info = StatPlace(place);
  return info && S_ISDIR(info->st_mode);
}

}  // namespace quillbox
