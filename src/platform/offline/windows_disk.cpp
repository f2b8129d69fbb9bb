// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/windows_disk.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "host/host_names.h"
#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/hosted/host_open.h"
#include "platform/hosted/place_finder.h"
#include "platform/offline/disk_image.h"
#include "platform/offline/drive_map.h"
#include "platform/offline/hive_file.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr const char* kDoing = "opening a Windows disk";

constexpr std::array kWindowsFolders = {"WINDOWS", "WINNT"};
constexpr std::array kProfileRoots = {"Documents and Settings", "WINNT/Profiles", "WINDOWS/Profiles", "Users"};
constexpr std::array kNobodysProfiles = {"All Users",    "Default", "Default User",  "Default.migrated",
                                         "LocalService", "Public",  "NetworkService"};
constexpr const char* kConfigFolder = "System32/config";
constexpr const char* kUserHive = "NTUSER.DAT";
constexpr const char* kOldUserHive = "USER.DAT";
constexpr const char* kOldSystemHive = "SYSTEM.DAT";

[[noreturn]] void Fail(const HostPath& folder, std::string why) {
  throw Error(kDoing, {folder.Text(), {}, {}}, std::move(why));
}

/// The folder that Windows was installed in: one of the usual names, else any that holds a registry. One whose registry
/// leads out of the disk counts, so that its hives can say so.
std::optional<NamedFolder> FindWindowsFolder(const NamedFolder& disk) {
  for (const char* name : kWindowsFolders) {
    std::optional<NamedFolder> folder = FindFolder(disk, name);
    if (folder && (FindBelow(folder->place, kConfigFolder) || !PlaceBelow(folder->place, kConfigFolder))) return folder;
  }
  for (const NamedFolder& folder : FoldersIn(disk)) {
    if (FindBelow(folder.place, std::string(kConfigFolder) + "/software")) return folder;
  }
  return std::nullopt;
}

/// A hive of the machine. A folder of hives that leads out of the disk is found as they are.
std::optional<FoundHive> FindMachineHive(const NamedFolder& windows, const std::string& name) {
  const PlaceResult folder = PlaceBelow(windows.place, kConfigFolder);
  if (folder) return FindHive(*folder, name);
  return FoundHive(windows.place.Path() / kConfigFolder / name, folder.Fault());
}

bool IsNobodys(std::string_view name) {
  return std::any_of(kNobodysProfiles.begin(), kNobodysProfiles.end(),
                     [name](std::string_view nobody) { return EqualIgnoreCase(name, nobody); });
}

bool IsSameFile(const FoundHive& a, const HostPlace& b) {
  return a.PlaceIfAny() != nullptr && IsSameEntry(*a.PlaceIfAny(), b);
}

/// Adds the profiles below `root`, unless a link has led to the same folders before.
void AddProfiles(const NamedFolder& root, std::vector<ProfileFolder>& profiles) {
  for (const NamedFolder& folder : FoldersIn(root)) {
    if (IsNobodys(folder.path.Name())) continue;
    const std::optional<FoundHive> hive = FindHive(folder.place, kUserHive);
    if (!hive) continue;
    if (const HostPlace* place = hive->PlaceIfAny()) {
      if (IsFolder(*place)) continue;
      const bool known = std::any_of(profiles.begin(), profiles.end(),
                                     [place](const ProfileFolder& other) { return IsSameFile(other.hive, *place); });
      if (known) continue;
    }
    profiles.push_back({folder.path.Name(), *hive, folder.path});
  }
}

/// Adds the people of an old Windows.
void AddOldProfiles(const OldWindows& windows, std::vector<ProfileFolder>& profiles) {
  const std::vector<ProfileFolder> others = profiles;
  for (const OldProfile& person : PeopleOf(windows)) {
    const bool isNamesake = std::any_of(others.begin(), others.end(), [&](const ProfileFolder& other) {
      return EqualIgnoreCase(other.name, person.name);
    });
    profiles.push_back({person.name + (isNamesake ? std::string(" (") + kOldUserHive + ")" : ""), person.hive,
                        person.folder, windows});
  }
}

/// Where the disk begins when `folder` is a part of one; empty when the part is not known.
HostPath DiskAround(const HostPath& folder) {
  HostPath root = folder.Parent();
  const HostPlace place = HostPlace::DiskRoot(folder);
  if (FindBelow(place, kConfigFolder)) return root;
  if (FindBelow(place, kOldUserHive) && FindBelow(place, kOldSystemHive)) return root;
  const auto below = [](const HostPath& parent, const HostPath& child) {
    return std::any_of(kProfileRoots.begin(), kProfileRoots.end(), [&](const char* profileRoot) {
      const std::optional<HostPlace> found = FindBelow(HostPlace::DiskRoot(parent), profileRoot);
      return found && IsSameEntry(*found, HostPlace::Anywhere(child));
    });
  };
  const HostPath profiles = FindBelow(place, kUserHive) || FindBelow(place, kOldUserHive) ? root : folder;
  if (below(profiles.Parent(), profiles)) return profiles.Parent();
  if (below(profiles.Parent().Parent(), profiles)) return profiles.Parent().Parent();
  return {};
}

[[noreturn]] void FailWithoutWindows(const HostPath& folder, const std::string& refused) {
  const HostPath around = DiskAround(folder);
  if (!around.Empty()) Fail(folder, "it is a folder of a Windows disk; choose the disk itself, " + around.Text());
  std::string looked =
      "there is no Windows in it; looked for a folder WINDOWS or WINNT with System32\\config, for one with USER.DAT "
      "and "
      "SYSTEM.DAT";
  for (const char* root : kProfileRoots) looked += std::string(", for ") + root;
  Fail(folder, looked + refused);
}

}  // namespace

WindowsDisk FindWindowsDisk(const HostPath& given, const std::map<char, HostPath>& drives) {
  const PathInfo there = InfoOf(given);
  if (!there.info) {
    const bool isMissing =
        there.fault == std::errc::no_such_file_or_directory || there.fault == std::errc::not_a_directory;
    Fail(given, isMissing ? "there is no such folder" : ReasonOf(there.fault));
  }
  if (!there.info->IsFolder()) {
    const std::optional<MountAdvice> advice = AdviceOnMounting(given);
    Fail(given, advice ? advice->Clause() : "it is a file, not a folder");
  }

  WindowsDisk disk;
  const RealPath real = RealPathOf(given);
  if (real.fault) Fail(given, ReasonOf(real.fault));
  disk.folder = real.path;
  const NamedFolder driveC{DriveMap(disk.folder, drives).PlaceOf(WinPath("C:\\")).OrThrow(), WinPath("C:\\")};
  std::vector<NamedFolder> roots;
  std::string refused;
  for (const char* name : kProfileRoots) {
    if (std::optional<NamedFolder> root = FindFolder(driveC, name)) roots.push_back(std::move(*root));
    const PlaceResult place = PlaceBelow(driveC.place, name);
    if (!place) refused += "; " + (disk.folder / name).Text() + ": " + ReasonOf(place.Fault());
  }
  const std::optional<NamedFolder> windows = FindWindowsFolder(driveC);
  const std::optional<OldWindows> old = FindOldWindows(driveC);
  if (!windows && !old && roots.empty()) FailWithoutWindows(disk.folder, refused);

  disk.windowsPath = windows ? windows->path : WinPath("C:\\WINDOWS");
  if (windows) {
    disk.softwareHive = FindMachineHive(*windows, "software");
    disk.systemHive = FindMachineHive(*windows, "system");
  }
  std::string searched;
  for (const NamedFolder& root : roots) {
    AddProfiles(root, disk.profiles);
    searched += (searched.empty() ? "" : ", ") + root.place.Path().Text();
  }
  if (old) AddOldProfiles(*old, disk.profiles);
  if (disk.profiles.empty() && old) {
    const std::string copies = EarlierCopies(*old, old->folder, kOldUserHive);
    Fail(disk.folder, "it holds Windows 95, 98 or Me, and nobody's registry: there is no " +
                          old->folder.path.Join(kOldUserHive).Text() + (copies.empty() ? "" : "; " + copies));
  }
  if (disk.profiles.empty()) {
    const std::string fault =
        searched.empty() ? "there is no folder with people's profiles in it"
                         : std::string("nobody's profile in it holds a ") + kUserHive + "; looked in " + searched;
    Fail(disk.folder, fault + refused);
  }
  return disk;
}

std::vector<WindowsDisk> FindDisksNear(const HostPath& folder) {
  const auto [given, fault] = RealPathOf(folder);
  if (fault || !IsFolder(given)) return {};
  std::vector<HostPath> candidates;
  if (const HostPath around = DiskAround(given); !around.Empty()) {
    candidates.push_back(around);
  } else {
    for (const NamedFolder& child : FoldersIn({HostPlace::Anywhere(given), WinPath("C:\\")})) {
      candidates.push_back(child.place.Path());
    }
  }
  std::vector<WindowsDisk> disks;
  for (const HostPath& candidate : candidates) {
    try {
      disks.push_back(FindWindowsDisk(candidate));
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch): not a disk
    }
  }
  return disks;
}

const ProfileFolder& ChooseProfile(const WindowsDisk& disk, const std::string& name) {
  if (name.empty() && disk.profiles.size() == 1) return disk.profiles.front();
  std::string names;
  for (const ProfileFolder& profile : disk.profiles) {
    if (!name.empty() && EqualIgnoreCase(profile.name, name)) return profile;
    names += (names.empty() ? "" : ", ") + profile.name;
  }
  if (name.empty()) Fail(disk.folder, "it holds the profiles of several people; name one of: " + names);
  Fail(disk.folder, "it holds no profile \"" + name + "\"; there are: " + names);
}

IdentityCount CountIdentities(const ProfileFolder& profile) {
  class NoLog : public Log {
    void Write(std::string_view /*text*/) override {}
  } log;
  IdentityCount count;
  std::optional<OldRegistryFile> old;
  if (profile.oldWindows) {
    const OldWindowsFacts facts = ReadFacts(*profile.oldWindows);
    count.windows = facts.name;
    old = OldRegistryFile{facts.codePage, CopiesOf(profile)};
  }
  try {
    const HiveFile file(
        profile.hive.Place(), HiveMode::Read, StateFolder(), log, [](const Hive&) { return true; }, old);
    const Hive& hive = file.View();
    std::optional<HiveKey> person = hive.Root();
    if (profile.oldWindows) person = hive.Find(hive.Root(), PersonKeyOf(profile, hive));
    const std::optional<HiveKey> identities = person ? hive.Find(*person, "Identities") : std::nullopt;
    count.identities = identities ? hive.SubkeyCount(*identities) : 0;
    count.damagedPlaces = file.DamagedPlaces();
    count.lacksLogs = hive.Origin() == HiveOrigin::DirtyUnusedLogs;
  } catch (const Error& error) {
    count.error = error;
  }
  return count;
}

std::string CopiesOf(const ProfileFolder& profile) {
  const HostPlace* file = profile.hive.PlaceIfAny();
  if (!profile.oldWindows || file == nullptr) return {};
  return EarlierCopies(*profile.oldWindows, {file->Folder(), profile.winFolder}, kOldUserHive);
}

std::string PersonKeyOf(const ProfileFolder& profile, const Hive& hive) {
  if (!profile.oldWindows) return {};
  const bool isShared = profile.winFolder.Text() == profile.oldWindows->folder.path.Text();
  const std::string name = isShared ? OldWindows::kSharedProfile : profile.winFolder.Name();
  return PersonKey(hive, name).value_or(name);
}

std::string ShownName(const ProfileFolder& profile, const std::string& windows) {
  if (!profile.oldWindows) return profile.name;
  return PersonInWords(profile.name) + " (" + windows + ")";
}

std::string PersonInWords(const std::string& profileName) {
  return profileName == OldWindows::kSharedProfile ? "Everyone" : profileName;
}

}  // namespace quillbox
