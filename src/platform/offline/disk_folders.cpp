// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/disk_folders.h"

#include <algorithm>
#include <string_view>

#include "host/host_names.h"
#include "platform/hosted/folder_finder.h"
#include "platform/hosted/host_open.h"
#include "platform/hosted/place_finder.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

const HostPlace& FoundHive::Place() const {
  if (!place_) throw Error("opening the hive", {shownAs_.Text(), {}, {}}, ReasonOf(place_.Fault()));
  return *place_;
}

PlaceResult PlaceBelow(const HostPlace& folder, std::string_view relative) {
  std::vector<std::string_view> names;
  while (!relative.empty()) {
    const std::size_t end = std::min(relative.find('/'), relative.size());
    names.push_back(relative.substr(0, end));
    relative.remove_prefix(std::min(end + 1, relative.size()));
  }
  return FindPlace(folder, names, LastStep::Follow);
}

std::optional<HostPlace> FindBelow(const HostPlace& folder, std::string_view relative) {
  const PlaceResult found = PlaceBelow(folder, relative);
  return found && InfoOf(*found) ? std::optional(*found) : std::nullopt;
}

std::optional<FoundHive> FindHive(const HostPlace& folder, const std::string& name) {
  const PlaceResult place = PlaceBelow(folder, name);
  if (place && !InfoOf(*place)) return std::nullopt;
  if (place) return FoundHive(place->Path(), place);
  const PlaceResult link = FindPlace(folder, {name}, LastStep::Keep);
  return FoundHive(link ? link->Path() : folder.Path() / name, place);
}

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

}  // namespace quillbox
