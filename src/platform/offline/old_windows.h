// SPDX-License-Identifier: GPL-3.0-or-later
// Windows 95, 98 and Me on a disk. Their registry is in files of another form (CREG), which are read and never written.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/offline/disk_folders.h"
#include "registry/hive.h"
#include "text/code_page.h"

namespace quillbox {

struct OldWindows {
  /// The name of the registry that everyone shares where nobody has a profile: that of its key below HKEY_USERS.
  static constexpr const char* kSharedProfile = ".DEFAULT";

  NamedFolder disk;
  NamedFolder folder;                ///< C:\WINDOWS
  std::optional<FoundHive> user;     ///< USER.DAT
  std::optional<FoundHive> system;   ///< SYSTEM.DAT: HKEY_LOCAL_MACHINE
  std::optional<FoundHive> classes;  ///< CLASSES.DAT of Windows Me: the classes below that
};

/// The first Windows of this family on a disk: the folder WINDOWS with one of its registry files, else any folder with
/// both.
std::optional<OldWindows> FindOldWindows(const NamedFolder& disk);

/// A person with a registry of this family.
struct OldProfile {
  std::string name;  ///< the folder's, or kSharedProfile
  FoundHive hive;
  WinPath folder;
};
/// The people with a profile, sorted by name; everyone together where nobody has one.
std::vector<OldProfile> PeopleOf(const OldWindows& windows);

/// What is found in SYSTEM.DAT, as far as that can be read.
struct OldWindowsFacts {
  std::string name = "this Windows";  ///< "Windows 95", "Windows 98", "Windows Me"
  CodePage codePage;                  ///< of names and texts
};
OldWindowsFacts ReadFacts(const OldWindows& windows);

/// The path of a person's key in a USER.DAT: the key of their name, else the only one that is someone's, else the
/// shared one. Nothing when there is none.
std::optional<std::string> PersonKey(const Hive& hive, const std::string& name);

/// The copies of the registry file `name` that this Windows keeps, as a clause: "an earlier copy of it is
/// C:\WINDOWS\USER.DA0". Empty when there are none. `folder` is the file's.
std::string EarlierCopies(const OldWindows& windows, const NamedFolder& folder, const std::string& name);

}  // namespace quillbox
