#include "platform/offline/windows_disk.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "host/host_names.h"
#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/hosted/folder_finder.h"
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

[[noreturn]] void Fail(const HostPath& folder, std::string why) {
  throw Error(kDoing, {folder.Text(), {}, {}}, std::move(why));
}

/// The place of `relative` (names with slashes between) below `folder`, also where nothing is there.
PlaceResult PlaceBelow(const HostPlace& folder, std::string_view relative) {
  std::vector<std::string_view> names;
  while (!relative.empty()) {
    const std::size_t end = std::min(relative.find('/'), relative.size());
    names.push_back(relative.substr(0, end));
    relative.remove_prefix(std::min(end + 1, relative.size()));
  }
  return FindPlace(folder, names, LastStep::Follow);
}

/// The place of what is there.
std::optional<HostPlace> FindBelow(const HostPlace& folder, std::string_view relative) {
  const PlaceResult found = PlaceBelow(folder, relative);
  return found && InfoOf(*found) ? std::optional(*found) : std::nullopt;
}

/// A hive, or a link of its name that leads out of the disk; opening that one reports it.
std::optional<FoundHive> FindHive(const HostPlace& folder, const std::string& name) {
  const PlaceResult place = PlaceBelow(folder, name);
  if (place && !InfoOf(*place)) return std::nullopt;
  if (place) return FoundHive(place->Path(), place);
  const PlaceResult link = FindPlace(folder, {name}, LastStep::Keep);
  return FoundHive(link ? link->Path() : folder.Path() / name, place);
}

/// A folder and how Windows names it, links on the way not resolved.
struct NamedFolder {
  HostPlace place;
  WinPath path;
};

/// The folders in a folder, sorted as Windows sorts names; none when it cannot be read.
std::vector<NamedFolder> FoldersIn(const NamedFolder& folder) {
  std::vector<std::string> names;
  FolderFinder entries(folder.place, "*", {.isRoot = true, .namesOnly = true});
  while (const std::optional<FileEntry> entry = entries.Next()) {
    if (entry->isDirectory) names.push_back(entry->name);
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const int order = CompareIgnoreCase(ToUtf16(a), ToUtf16(b));
    return order != 0 ? order < 0 : a < b;
  });
  std::vector<NamedFolder> folders;
  for (const std::string& name : names) {
    const PlaceResult place = FindPlace(folder.place, {name}, LastStep::Follow);
    if (place) folders.push_back({*place, folder.path.Join(name)});
  }
  return folders;
}

/// A folder by its path below another one; the path gets the names as they are stored.
std::optional<NamedFolder> FindFolder(const NamedFolder& from, std::string_view relative) {
  NamedFolder found = from;
  const HostPath way(relative);
  for (const std::string& name : way.Names()) {
    const PlaceResult entry = FindPlace(found.place, {name}, LastStep::Keep);
    if (!entry || !InfoOf(*entry)) return std::nullopt;
    const PlaceResult place = FollowEntry(found.place, entry->Name());
    if (!place || !InfoOf(*place)) return std::nullopt;
    found = {*place, found.path.Join(WindowsName(entry->Name()))};
  }
  return found;
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

bool IsOldWindows(const HostPlace& disk) {
  const std::optional<HostPlace> windows = FindBelow(disk, kWindowsFolders[0]);
  if (!windows || FindBelow(*windows, kConfigFolder)) return false;
  return FindBelow(*windows, kOldUserHive) || FindBelow(*windows, "SYSTEM.DAT");
}

/// Where the disk begins when `folder` is a part of one; empty when the part is not known.
HostPath DiskAround(const HostPath& folder) {
  HostPath root = folder.Parent();
  if (FindBelow(HostPlace::DiskRoot(folder), kConfigFolder)) return root;
  const auto below = [](const HostPath& parent, const HostPath& child) {
    return std::any_of(kProfileRoots.begin(), kProfileRoots.end(), [&](const char* profileRoot) {
      const std::optional<HostPlace> found = FindBelow(HostPlace::DiskRoot(parent), profileRoot);
      return found && IsSameEntry(*found, HostPlace::Anywhere(child));
    });
  };
  const HostPath profiles = FindBelow(HostPlace::DiskRoot(folder), kUserHive) ? root : folder;
  if (below(profiles.Parent(), profiles)) return profiles.Parent();
  if (below(profiles.Parent().Parent(), profiles)) return profiles.Parent().Parent();
  return {};
}

[[noreturn]] void FailWithoutWindows(const HostPath& folder, const std::string& refused) {
  const HostPath around = DiskAround(folder);
  if (!around.Empty()) Fail(folder, "it is a folder of a Windows disk; choose the disk itself, " + around.Text());
  if (IsOldWindows(HostPlace::DiskRoot(folder))) {
    Fail(folder, "it is a disk of Windows 95, 98 or Me; their registry files (USER.DAT) are not supported yet");
  }
  std::string looked = "there is no Windows in it; looked for a folder WINDOWS or WINNT with System32\\config";
  for (const char* root : kProfileRoots) looked += std::string(", for ") + root;
  Fail(folder, looked + refused);
}

}  // namespace

const HostPlace& FoundHive::Place() const {
  if (!place_) throw Error("opening the hive", {shownAs_.Text(), {}, {}}, ReasonOf(place_.Fault()));
  return *place_;
}

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
  if (!windows && (roots.empty() || IsOldWindows(driveC.place))) FailWithoutWindows(disk.folder, refused);

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
  try {
    const HiveFile file(profile.hive.Place(), HiveMode::Read, StateFolder(), log, [](const Hive&) { return true; });
    const Hive& hive = file.View();
    const std::optional<HiveKey> identities = hive.Find(hive.Root(), "Identities");
    return {identities ? hive.SubkeyCount(*identities) : 0, std::nullopt, file.DamagedPlaces(),
            hive.Origin() == HiveOrigin::DirtyUnusedLogs};
  } catch (const Error& error) {
    return {0, error};
  }
}

}  // namespace quillbox
