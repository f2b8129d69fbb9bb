// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/host_walk.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "host/host_names.h"
#include "platform/hosted/folder_finder.h"
#include "platform/hosted/host_open.h"

namespace quillbox {

namespace {

/// Folders that are open at one time; those further up are opened again on the way back.
constexpr std::size_t kMaxOpen = 100;

}  // namespace

HostWalk::HostWalk(HostPlace host, const WinPath& root, const std::string& pattern)
    : host_(std::move(host)), pattern_(pattern), path_(WithBackslash(root.Text())) {}

bool HostWalk::Step(WalkStep& step) {
  step.files.clear();
  step.unread.clear();
  if (!started_) {
    started_ = true;
    try {
      Enter(OpenFolder(host_), {});
    } catch (const std::system_error& failure) {
      TellUnread({}, failure.code(), step);
      return !step.unread.empty();
    }
  }
  if (!reading_ && !EnterNext(step)) return !step.unread.empty();
  step.folder = path_;
  Read(step);
  return true;
}

/// Goes to the next folder that can be read; false when there is none.
bool HostWalk::EnterNext(WalkStep& step) {
  while (!levels_.empty()) {
    Level& top = levels_.back();
    path_.resize(top.pathLength);
    if (top.next == top.subfolders.size()) {
      levels_.pop_back();
      continue;
    }
    const std::string name = std::move(top.subfolders[top.next++]);
    try {
      if (!top.folder) Reopen(levels_.size() - 1);
      Enter(top.folder.OpenFolder(name, Links::Keep, FolderUse::Listing), name);
    } catch (const std::system_error& failure) {
      TellUnread(name, failure.code(), step);
      continue;
    }
    if (reading_) return true;
  }
  return false;
}

/// Makes the open folder the deepest level, unless it is one of those above it.
void HostWalk::Enter(HostFolder folder, const std::string& hostName) {
  const FileId id = folder.Info().id;
  if (IsAbove(id)) return;
  Level level;
  level.folder = std::move(folder);
  level.hostName = hostName;
  level.id = id;
  if (!levels_.empty()) path_ += WindowsName(hostName) + '\\';
  level.pathLength = path_.size();
  levels_.push_back(std::move(level));
  if (levels_.size() > kMaxOpen) levels_[levels_.size() - kMaxOpen - 1].folder.Close();
  reading_ = true;
}

/// Opens the folder at `depth` again, down from the nearest one above it that is open.
void HostWalk::Reopen(std::size_t depth) {
  std::size_t from = depth;
  while (from > 0 && !levels_[from].folder) --from;
  HostFolder opened;
  if (!levels_[from].folder) opened = OpenFolder(host_);
  for (std::size_t at = from + 1; at <= depth; ++at) {
    opened = (opened ? opened : levels_[from].folder).OpenFolder(levels_[at].hostName);
  }
  levels_[depth].folder = std::move(opened);
}

/// Handles the entries that one call returns.
void HostWalk::Read(WalkStep& step) try {
  reading_ = levels_.back().folder.ListSome(listed_);
  for (ListedEntry& entry : listed_) Take(entry, step);
} catch (const std::system_error& failure) {
  reading_ = false;
  TellUnread({}, failure.code(), step);
}

void HostWalk::Take(ListedEntry& entry, WalkStep& step) {
  Level& top = levels_.back();
  if (!entry.kind) {
    // One that is gone counts as a file.
    const std::optional<EntryInfo> info = top.folder.Find(entry.name);
    entry.kind = info ? info->kind : EntryKind::File;
  }
  if (entry.kind == EntryKind::Folder) {
    top.subfolders.push_back(std::move(entry.name));
    return;
  }
  std::string name = WindowsName(entry.name);
  if (!pattern_.Matches(name)) return;
  if (entry.kind == EntryKind::Link && IsLinkToFolder(entry.name)) return;
  step.files.push_back(std::move(name));
}

/// A link that leads nowhere, or out of the disk, counts as one to a file.
bool HostWalk::IsLinkToFolder(const std::string& name) const {
  HostPlace folder = host_;
  for (std::size_t at = 1; at < levels_.size(); ++at) folder = folder.Join(levels_[at].hostName);
  const std::optional<EntryInfo> info = InfoBehind({std::move(folder), levels_.back().folder}, name);
  return info && info->IsFolder();
}

bool HostWalk::IsAbove(const FileId& id) const {
  return std::any_of(levels_.rbegin(), levels_.rend(), [&](const Level& level) { return level.id == id; });
}

/// Reports that the deepest level, or the entry `hostName` in it, could not be read, unless it is gone.
void HostWalk::TellUnread(const std::string& hostName, const std::error_code& fault, WalkStep& step) const {
  if (fault == std::errc::no_such_file_or_directory || fault == std::errc::not_a_directory) return;
  step.unread.push_back(path_ + WindowsName(hostName) + ": " + ReasonOf(fault));
}

}  // namespace quillbox
