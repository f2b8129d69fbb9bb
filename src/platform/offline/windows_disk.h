// SPDX-License-Identifier: GPL-3.0-or-later
// Finds Windows on a folder of the host: the people whose profiles are on it and where their registry is. The
// messages for a wrong folder help to choose the right one.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/offline/disk_folders.h"
#include "platform/offline/old_windows.h"
#include "text/error.h"
#include "text/win_path.h"

namespace quillbox {

struct ProfileFolder {
  /// By which it is chosen: the folder's name, which is the person's user name or begins with it, or
  /// OldWindows::kSharedProfile. Of two people of the same name, the one of an old Windows has the file's name behind.
  std::string name;
  FoundHive hive;  ///< its NTUSER.DAT, or USER.DAT of an old Windows
  WinPath winFolder;
  std::optional<OldWindows> oldWindows = {};  ///< the Windows that it belongs to where that is an old one
};

struct WindowsDisk {
  HostPath folder;  ///< the host folder that is C:\ .
  // Of the Windows of the NT family.
  WinPath windowsPath;  ///< "C:\WINDOWS" when the disk holds profiles only
  std::optional<FoundHive> softwareHive;
  std::optional<FoundHive> systemHive;
  /// At least one, sorted by name, those of an old Windows behind.
  std::vector<ProfileFolder> profiles;
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
  std::string windows;  ///< the name of an old Windows; empty for others
  std::size_t identities = 0;
  std::optional<Error> error;     ///< why they could not be counted
  std::size_t damagedPlaces = 0;  ///< in the registry; what cannot be read there was passed over
  bool lacksLogs = false;         ///< the registry was not closed cleanly, and its logs cannot be used
};

/// How many identities a profile's registry holds, as far as it can be read. Only reads, without questions.
IdentityCount CountIdentities(const ProfileFolder& profile);

/// The copies that an old Windows keeps of a profile's registry file, as EarlierCopies() says it.
std::string CopiesOf(const ProfileFolder& profile);
/// Where the key of the person is in a profile's hive: empty for its root.
std::string PersonKeyOf(const ProfileFolder& profile, const Hive& hive);

/// A profile's name as windows show it: of an old Windows with that one's name, "Everyone (Windows 98)".
std::string ShownName(const ProfileFolder& profile, const std::string& windows);
/// The same for a profile of which only the name is known.
std::string PersonInWords(const std::string& profileName);

}  // namespace quillbox
