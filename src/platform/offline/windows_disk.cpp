#include "platform/offline/windows_disk.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "platform/offline/drive_map.h"
#include "platform/offline/hive_file.h"
#include "platform/offline/state_folder.h"
#include "text/unicode.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDoing = "opening a Windows disk";

constexpr std::array kWindowsFolders = {"WINDOWS", "WINNT"};
constexpr std::array kProfileRoots = {"Documents and Settings", "WINNT/Profiles", "WINDOWS/Profiles", "Users"};
constexpr std::array kNobodysProfiles = {"All Users",    "Default", "Default User",  "Default.migrated",
                                         "LocalService", "Public",  "NetworkService"};
constexpr const char* kConfigFolder = "System32/config";
constexpr const char* kUserHive = "NTUSER.DAT";
constexpr const char* kOldUserHive = "USER.DAT";

[[noreturn]] void Fail(const fs::path& folder, std::string why) {
  throw Error(kDoing, {folder.string(), {}, {}}, std::move(why));
}

/// The host path of `relative` (names with slashes between) below `folder`, or nothing when it isn't there.
std::optional<fs::path> FindBelow(const fs::path& folder, std::string_view relative) {
  fs::path found = folder;
  for (const fs::path& part : fs::path(relative)) {
    const std::optional<std::string> name = FindEntry(found, part.native());
    if (!name) return std::nullopt;
    found /= *name;
  }
  return found;
}

fs::path FindOrEmpty(const fs::path& folder, std::string_view relative) {
  return FindBelow(folder, relative).value_or(fs::path());
}

/// The names in a folder that lead to folders, sorted as Windows sorts names; none when it cannot be read.
std::vector<std::string> FoldersIn(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code code;
  for (fs::directory_iterator entry(folder, code), end; !code && entry != end; entry.increment(code)) {
    std::error_code unreadable;
    if (entry->is_directory(unreadable)) names.push_back(entry->path().filename().native());
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const int order = CompareIgnoreCase(ToUtf16(a), ToUtf16(b));
    return order != 0 ? order < 0 : a < b;
  });
  return names;
}

/// The folder that Windows was installed in: one of the usual names, else any that holds a registry.
std::optional<fs::path> FindWindowsFolder(const fs::path& disk) {
  for (const char* name : kWindowsFolders) {
    std::optional<fs::path> folder = FindBelow(disk, name);
    if (folder && FindBelow(*folder, kConfigFolder)) return folder;
  }
  for (const std::string& name : FoldersIn(disk)) {
    if (FindBelow(disk / name, std::string(kConfigFolder) + "/software")) return disk / name;
  }
  return std::nullopt;
}

bool IsNobodys(std::string_view name) {
  return std::any_of(kNobodysProfiles.begin(), kNobodysProfiles.end(),
                     [name](std::string_view nobody) { return EqualIgnoreCase(name, nobody); });
}

WinPath OnSystemDrive(const fs::path& relative) {
  WinPath path("C:\\");
  for (const fs::path& part : relative) path = path.Join(WindowsName(part.native()));
  return path;
}

/// Adds the profiles below `root`, unless a link has led to the same folders before.
void AddProfiles(const fs::path& disk, const fs::path& root, std::vector<ProfileFolder>& profiles) {
  for (const std::string& name : FoldersIn(root)) {
    if (IsNobodys(name)) continue;
    const fs::path folder = root / name;
    const std::optional<fs::path> hive = FindBelow(folder, kUserHive);
    std::error_code code;
    if (!hive || !fs::is_regular_file(*hive, code)) continue;
    const bool known = std::any_of(profiles.begin(), profiles.end(),
                                   [&](const ProfileFolder& other) { return fs::equivalent(other.hive, *hive, code); });
    if (!known) profiles.push_back({WindowsName(name), folder, *hive, OnSystemDrive(folder.lexically_relative(disk))});
  }
}

bool IsOldWindows(const fs::path& disk) {
  const std::optional<fs::path> windows = FindBelow(disk, kWindowsFolders[0]);
  if (!windows || FindBelow(*windows, kConfigFolder)) return false;
  return FindBelow(*windows, kOldUserHive).has_value() || FindBelow(*windows, "SYSTEM.DAT").has_value();
}

/// Where the disk begins when `folder` is a part of one; empty when it is none that we know.
fs::path DiskAround(const fs::path& folder) {
  const fs::path& root = folder.parent_path();
  if (FindBelow(folder, kConfigFolder)) return root;
  const auto below = [](const fs::path& parent, const fs::path& child) {
    for (const char* profileRoot : kProfileRoots) {
      std::error_code code;
      const std::optional<fs::path> found = FindBelow(parent, profileRoot);
      if (found && fs::equivalent(*found, child, code)) return true;
    }
    return false;
  };
  const fs::path profiles = FindBelow(folder, kUserHive) ? root : folder;
  if (below(profiles.parent_path(), profiles)) return profiles.parent_path();
  if (below(profiles.parent_path().parent_path(), profiles)) return profiles.parent_path().parent_path();
  return {};
}

[[noreturn]] void FailWithoutWindows(const fs::path& folder) {
  const fs::path around = DiskAround(folder);
  if (!around.empty()) Fail(folder, "it is a folder of a Windows disk; choose the disk itself, " + around.string());
  if (IsOldWindows(folder)) {
    Fail(folder, "it is a disk of Windows 95, 98 or Me; their registry files (USER.DAT) are not supported yet");
  }
  std::string looked = "there is no Windows in it; looked for a folder WINDOWS or WINNT with System32\\config";
  for (const char* root : kProfileRoots) looked += std::string(", for ") + root;
  Fail(folder, looked);
}

}  // namespace

WindowsDisk FindWindowsDisk(const fs::path& given) {
  std::error_code code;
  const fs::file_status status = fs::status(given, code);
  if (!fs::exists(status))
    Fail(given, status.type() == fs::file_type::none ? SystemReason(code.value()) : "there is no such folder");
  if (!fs::is_directory(status)) Fail(given, "it is a file, not a folder");

  WindowsDisk disk;
  disk.folder = fs::canonical(given);
  std::vector<fs::path> roots;
  for (const char* name : kProfileRoots) {
    const std::optional<fs::path> root = FindBelow(disk.folder, name);
    if (root) roots.push_back(*root);
  }
  const std::optional<fs::path> windows = FindWindowsFolder(disk.folder);
  if (!windows && (roots.empty() || IsOldWindows(disk.folder))) FailWithoutWindows(disk.folder);

  disk.windowsFolder = windows.value_or(fs::path());
  disk.windowsPath = windows ? OnSystemDrive(windows->filename()) : WinPath("C:\\WINDOWS");
  if (windows) {
    disk.softwareHive = FindOrEmpty(*windows, std::string(kConfigFolder) + "/software");
    disk.systemHive = FindOrEmpty(*windows, std::string(kConfigFolder) + "/system");
  }
  std::string searched;
  for (const fs::path& root : roots) {
    AddProfiles(disk.folder, root, disk.profiles);
    searched += (searched.empty() ? "" : ", ") + root.string();
  }
  if (disk.profiles.empty()) {
    Fail(disk.folder, searched.empty()
                          ? "there is no folder with people's profiles in it"
                          : std::string("nobody's profile in it holds a ") + kUserHive + "; looked in " + searched);
  }
  return disk;
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
    const HiveFile file(profile.hive, HiveMode::Read, StateFolder(), log);
    const Hive& hive = file.View();
    const std::optional<HiveKey> identities = hive.Find(hive.Root(), "Identities");
    return {identities ? hive.SubkeyCount(*identities) : 0, std::nullopt};
  } catch (const Error& error) {
    return {0, error};
  }
}

}  // namespace quillbox
