// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/folder_finder.h"

#include <array>
#include <system_error>
#include <utility>

#include "host/host_names.h"
#include "platform/hosted/host_open.h"
#include "platform/hosted/place_finder.h"
#include "text/file_time.h"

namespace quillbox {

namespace {

constexpr std::array kDots = {".", ".."};

HostFolder OpenForEntries(const HostPlace& place) try { return OpenFolder(place); } catch (const std::system_error&) {
  return {};
}

}  // namespace

std::optional<EntryInfo> InfoBehind(const OpenedFolder& opened, const std::string& storedName) {
  const std::optional<EntryInfo> info = opened.folder.Find(storedName);
  if (!info || !info->IsLink()) return info;
  if (!opened.place.IsBeneathDrive()) {
    const std::optional<EntryInfo> target = opened.folder.Find(storedName, Links::Follow);
    return target ? target : info;
  }
  const PlaceResult led = FollowEntry(opened.place, storedName);
  return led ? InfoOf(*led).value_or(*info) : info;
}

FileEntry EntryOf(const EntryInfo& info) {
  FileEntry entry;
  entry.isDirectory = info.IsFolder();
  entry.size = entry.isDirectory ? 0 : info.size;
  entry.modified = FileTimeOfUnix(info.modified.seconds, info.modified.nanoseconds);
  return entry;
}

std::optional<FileEntry> ReadHostEntry(const OpenedFolder& folder, const std::string& storedName,
                                       const AttributeReader* attributes) {
  const std::optional<EntryInfo> info = InfoBehind(folder, storedName);
  if (!info) return std::nullopt;
  FileEntry entry = EntryOf(*info);
  const FileAttributes flags = attributes != nullptr ? attributes->Of(storedName) : FileAttributes();
  entry.isHidden = flags.isHidden;
  entry.isSystem = flags.isSystem;
  return entry;
}

FolderFinder::FolderFinder(const HostPlace& folder, const std::string& pattern, Options options)
    : place_(folder),
      folder_(OpenForEntries(folder)),
      pattern_(pattern),
      namesOnly_(options.namesOnly),
      dotsGiven_(options.isRoot ? 2 : 0) {
  if (folder_ && !namesOnly_) attributes_.emplace(folder_);
}

std::optional<FileEntry> FolderFinder::Next() {
  if (!folder_) return std::nullopt;
  if (std::optional<FileEntry> dots = NextDots()) return dots;
  while (next_ < listed_.size() || ListMore()) {
    const ListedEntry& listed = listed_[next_++];
    std::string name = WindowsName(listed.name);
    if (!pattern_.Matches(name)) continue;
    std::optional<FileEntry> entry = Read(listed);
    if (!entry) continue;
    entry->name = std::move(name);
    return entry;
  }
  return std::nullopt;
}

std::optional<FileEntry> FolderFinder::NextDots() {
  while (dotsGiven_ < 2) {
    const char* name = kDots[static_cast<std::size_t>(dotsGiven_++)];
    if (!pattern_.Matches(name)) continue;
    FileEntry entry = ReadHostEntry({place_, folder_}, name, nullptr).value_or(FileEntry());
    entry.name = name;
    entry.isDirectory = true;
    return entry;
  }
  return std::nullopt;
}

std::optional<FileEntry> FolderFinder::Read(const ListedEntry& listed) const {
  const bool kindIsKnown = listed.kind && listed.kind != EntryKind::Link;
  if (!namesOnly_ || !kindIsKnown) {
    return ReadHostEntry({place_, folder_}, listed.name, attributes_ ? &*attributes_ : nullptr);
  }
  FileEntry entry;
  entry.isDirectory = listed.kind == EntryKind::Folder;
  return entry;
}

bool FolderFinder::ListMore() try {
  next_ = 0;
  return folder_.ListSome(listed_);
} catch (const std::system_error&) {
  listed_.clear();
  return false;
}

}  // namespace quillbox
