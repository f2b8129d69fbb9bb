// Finds Windows on a folder of the host: the people whose profiles are on it and where their registry is. Everything
// that can be wrong with a chosen folder is said here, in words that help to choose the right one.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "text/error.h"
#include "text/win_path.h"

namespace quillbox {

struct ProfileFolder {
  std::string name;              ///< the folder's name, which is the person's user name or begins with it
  std::filesystem::path folder;  ///< on the host
  std::filesystem::path hive;    ///< its NTUSER.DAT on the host
  WinPath winFolder;
};

struct WindowsDisk {
  std::filesystem::path folder;         ///< the host folder that is C:\ .
  std::filesystem::path windowsFolder;  ///< empty when the disk holds profiles only
  WinPath windowsPath;                  ///< "C:\WINDOWS" when the folder is not there
  std::filesystem::path softwareHive;   ///< empty when there is none
  std::filesystem::path systemHive;     ///< empty when there is none
  std::vector<ProfileFolder> profiles;  ///< at least one, sorted by name
};

/// Looks at `folder` as at C:\ of a Windows that isn't running. Throws Error when there is no such folder, no Windows
/// on it, or nobody's registry.
WindowsDisk FindWindowsDisk(const std::filesystem::path& folder);

/// The profile called `name` (without regard to case), or the only one when `name` is empty. Throws Error, which lists
/// the profiles, when there is none or more than one.
const ProfileFolder& ChooseProfile(const WindowsDisk& disk, const std::string& name);

struct IdentityCount {
  std::size_t identities = 0;
  std::optional<Error> error;  ///< why they could not be counted
};

/// How many identities a profile's registry holds. Only reads.
IdentityCount CountIdentities(const ProfileFolder& profile);

}  // namespace quillbox
