// Finds Windows on a folder of the host: the people whose profiles are on it and where their registry is. The
// messages for a wrong folder help to choose the right one.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/hosted/host_place.h"
#include "text/error.h"
#include "text/win_path.h"

namespace quillbox {

/// A hive that was found on a disk.
class FoundHive {
 public:
  FoundHive(HostPath shownAs, PlaceResult place) : shownAs_(std::move(shownAs)), place_(std::move(place)) {}
  /// Where it is, links resolved. Throws Error when it is a link that leads out of the disk.
  const HostPlace& Place() const;
  /// As Place(), or null.
  const HostPlace* PlaceIfAny() const { return place_ ? &*place_ : nullptr; }

 private:
  HostPath shownAs_;
  PlaceResult place_;
};

struct ProfileFolder {
  std::string name;  ///< the folder's name, which is the person's user name or begins with it
  FoundHive hive;    ///< its NTUSER.DAT
  WinPath winFolder;
};

struct WindowsDisk {
  HostPath folder;      ///< the host folder that is C:\ .
  WinPath windowsPath;  ///< "C:\WINDOWS" when the disk holds profiles only
  std::optional<FoundHive> softwareHive;
  std::optional<FoundHive> systemHive;
  std::vector<ProfileFolder> profiles;  ///< at least one, sorted by name
};

/// Examines `folder` as C:\ of a Windows that isn't running, whose further drives are `drives`: links that lead to
/// one of them are followed, others that leave `folder` are not. Throws Error when there is no such folder, no Windows
/// on it, or nobody's registry.
WindowsDisk FindWindowsDisk(const HostPath& folder, const std::map<char, HostPath>& drives = {});

/// The disks that someone who chose `folder` may have meant: the one that it is a part of, or those in its folders.
std::vector<WindowsDisk> FindDisksNear(const HostPath& folder);

/// The profile called `name` (without regard to case), or the only one when `name` is empty. Throws Error, which lists
/// the profiles, when there is none or more than one.
const ProfileFolder& ChooseProfile(const WindowsDisk& disk, const std::string& name);

struct IdentityCount {
  std::size_t identities = 0;
  std::optional<Error> error;     ///< why they could not be counted
  std::size_t damagedPlaces = 0;  ///< in the registry; what cannot be read there was passed over
  bool lacksLogs = false;         ///< the registry was not closed cleanly, and its logs cannot be used
};

/// How many identities a profile's registry holds, as far as it can be read. Only reads, without questions.
IdentityCount CountIdentities(const ProfileFolder& profile);

}  // namespace quillbox
