// The ways to open a place on the host and to look at it. Beneath a drive no link is followed: the place was found with
// its links resolved, and what has changed since is refused with the reason. Failures are std::system_error; callers
// know the name that a person would recognise, and ReasonOf has the words.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "platform/offline/host_fd.h"
#include "platform/offline/host_place.h"
#include "platform/offline/place_finder.h"

namespace quillbox {

/// Opens a folder, for reading its entries where its permissions allow that, else for working on them by name.
HostFd OpenFolder(const HostPlace& folder);

/// An entry for calls like openat: its folder, open, and its name there.
struct OpenPlace {
  HostFd folder;
  std::string name;
  int follow = 0;  ///< flag for fstatat and the like: 0 where the host follows links
};
/// Opens the folder that `place` is in. The place itself need not be there; it must not be a root (EISDIR).
OpenPlace OpenFolderOf(const HostPlace& place);

/// Opens a file for reading, never waiting for a pipe's other end. Beneath a drive it must be an ordinary file.
HostFd OpenForReading(const HostPlace& file);

/// What is there, or nothing. Anywhere on the host links are followed.
std::optional<struct stat> StatPlace(const HostPlace& place);
bool IsFolder(const HostPlace& place);

/// Throws std::system_error for a failed call on `place`, which was found with `last`: where a link was the reason,
/// with where it leads.
[[noreturn]] void ThrowAbout(const HostPlace& place, int code, LastStep last = LastStep::Follow);

}  // namespace quillbox
