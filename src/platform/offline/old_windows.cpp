// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/old_windows.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "platform/hosted/folder_finder.h"
#include "platform/hosted/host_open.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr const char* kUsualFolder = "WINDOWS";
constexpr const char* kUserFile = "USER.DAT";
constexpr const char* kSystemFile = "SYSTEM.DAT";
constexpr const char* kClassesFile = "CLASSES.DAT";

std::optional<FoundHive> FindRegistryFile(const NamedFolder& folder, const char* name) {
  std::optional<FoundHive> file = FindHive(folder.place, name);
  const HostPlace* place = file ? file->PlaceIfAny() : nullptr;
  return place != nullptr && IsFolder(*place) ? std::nullopt : file;
}

OldWindows WindowsIn(const NamedFolder& disk, const NamedFolder& folder) {
  return {disk, folder, FindRegistryFile(folder, kUserFile), FindRegistryFile(folder, kSystemFile),
          FindRegistryFile(folder, kClassesFile)};
}

struct ValueOfKey {
  std::string_view key, name;
};

/// A text value, up to its first NUL; empty when there is none.
std::string TextOf(const Hive& hive, const ValueOfKey& wanted) {
  const std::optional<HiveKey> key = hive.Find(hive.Root(), wanted.key);
  const std::optional<HiveValue> value = key ? hive.Value(*key, wanted.name) : std::nullopt;
  const std::string text = value ? ToUtf8(Utf16FromBytes(value->data)) : std::string();
  return text.substr(0, text.find('\0'));
}

/// "Windows 98" of "Microsoft Windows 98".
std::string NameOfProduct(std::string product) {
  constexpr std::string_view kMaker = "Microsoft ";
  constexpr std::string_view kMillennium = "Windows ME";
  if (product.starts_with(kMaker)) product.erase(0, kMaker.size());
  return product == kMillennium ? "Windows Me" : product;
}

/// The names in a folder that a pattern matches, sorted.
std::vector<std::string> NamesIn(const NamedFolder& folder, const std::string& pattern) {
  std::vector<std::string> names;
  FolderFinder entries(folder.place, pattern, {.isRoot = true, .namesOnly = true});
  while (const std::optional<FileEntry> entry = entries.Next()) {
    if (!entry->isDirectory) names.push_back(entry->name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

std::optional<OldWindows> FindOldWindows(const NamedFolder& disk) {
  if (const std::optional<NamedFolder> folder = FindFolder(disk, kUsualFolder)) {
    OldWindows windows = WindowsIn(disk, *folder);
    if (windows.user || windows.system) return windows;
  }
  for (const NamedFolder& folder : FoldersIn(disk)) {
    OldWindows windows = WindowsIn(disk, folder);
    if (windows.user && windows.system) return windows;
  }
  return std::nullopt;
}

std::vector<OldProfile> PeopleOf(const OldWindows& windows) {
  std::vector<OldProfile> people;
  if (const std::optional<NamedFolder> profiles = FindFolder(windows.folder, "Profiles")) {
    for (const NamedFolder& folder : FoldersIn(*profiles)) {
      if (const auto file = FindRegistryFile(folder, kUserFile))
        people.push_back({folder.path.Name(), *file, folder.path});
    }
  }
  if (people.empty() && windows.user) {
    people.push_back({OldWindows::kSharedProfile, *windows.user, windows.folder.path});
  }
  return people;
}

OldWindowsFacts ReadFacts(const OldWindows& windows) {
  OldWindowsFacts facts;
  if (!windows.system) return facts;
  try {
    const HostPlace& file = windows.system->Place();
    // What is asked for is plain ASCII, whatever the code page.
    const Hive hive = Hive::LoadCreg(ReadHostFile(file, "opening the registry file"), file.Path().Text(),
                                     facts.codePage, DamagedParts::LeaveOut);
    const std::string product =
        NameOfProduct(TextOf(hive, {"Software\\Microsoft\\Windows\\CurrentVersion", "ProductName"}));
    if (!product.empty()) facts.name = product;
    const std::string number = TextOf(hive, {"System\\CurrentControlSet\\Control\\Nls\\CodePage", "ACP"});
    unsigned codePage = 0;
    std::from_chars(number.data(), number.data() + number.size(), codePage);
    if (codePage != 0) facts.codePage = CodePage(codePage);
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): whoever opens the registry reports it
  }
  return facts;
}

std::optional<std::string> PersonKey(const Hive& hive, const std::string& name) {
  std::vector<std::string> others;
  bool hasShared = false;
  for (const HiveKey key : hive.Subkeys(hive.Root())) {
    std::string found = hive.Name(key);
    if (EqualIgnoreCase(found, name)) return found;
    const bool isShared = EqualIgnoreCase(found, OldWindows::kSharedProfile);
    hasShared = hasShared || isShared;
    if (!isShared) others.push_back(std::move(found));
  }
  if (!EqualIgnoreCase(name, OldWindows::kSharedProfile) && others.size() == 1) return others.front();
  return hasShared ? std::optional<std::string>(OldWindows::kSharedProfile) : std::nullopt;
}

std::string EarlierCopies(const OldWindows& windows, const NamedFolder& folder, const std::string& name) {
  std::vector<std::string> copies;
  const auto add = [&](const NamedFolder& in, const std::string& pattern, const char* remark = "") {
    for (const std::string& found : NamesIn(in, pattern)) copies.push_back(in.path.Join(found).Text() + remark);
  };
  const std::string stem = name.substr(0, name.find('.'));
  add(folder, stem + ".DA0");
  if (folder.path == windows.folder.path) {
    if (const auto backups = FindFolder(windows.folder, "SYSBCKUP")) add(*backups, "RB*.CAB", " (a cabinet with it)");
    add(windows.disk, stem + ".1ST", " (as Windows was installed)");
  }
  std::string text;
  for (const std::string& copy : copies) text += (text.empty() ? "" : ", ") + copy;
  if (text.empty()) return text;
  return (copies.size() == 1 ? "an earlier copy of it is " : "earlier copies of it are ") + text;
}

}  // namespace quillbox
