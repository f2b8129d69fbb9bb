// SPDX-License-Identifier: GPL-3.0-or-later
// A walk through a host folder and everything below it. Each folder is read once, and is opened from the one above it
// rather than by its whole path, so that depth and length of paths have no limit.
#pragma once

#include <cstddef>
#include <string>
#include <system_error>
#include <vector>

#include "host/host_folder.h"
#include "platform/file_system.h"
#include "platform/hosted/host_place.h"

namespace quillbox {

class HostWalk : public FolderWalk {
 public:
  /// Walks `host`, which is reported as `root` (final backslash included).
  HostWalk(HostPlace host, const WinPath& root, const std::string& pattern);

  bool Step(WalkStep& step) override;

 private:
  /// A folder between the root and the one that is being read.
  struct Level {
    HostFolder folder;  ///< closed while too many folders are open
    std::string hostName;
    std::size_t pathLength = 0;  ///< how much of path_ is this folder's
    FileId id;
    std::vector<std::string> subfolders;  ///< names on the host
    std::size_t next = 0;                 ///< the subfolder to enter next
  };

  bool EnterNext(WalkStep& step);
  void Enter(HostFolder folder, const std::string& hostName);
  void Reopen(std::size_t depth);
  void Read(WalkStep& step);
  void Take(ListedEntry& entry, WalkStep& step);
  bool IsAbove(const FileId& id) const;
  bool IsLinkToFolder(const std::string& name) const;
  void TellUnread(const std::string& hostName, const std::error_code& fault, WalkStep& step) const;

  HostPlace host_;
  Wildcard pattern_;
  std::string path_;  ///< of the deepest level, final backslash included
  std::vector<Level> levels_;
  bool started_ = false;
  bool reading_ = false;  ///< the deepest level has entries that were not read yet
  std::vector<ListedEntry> listed_;
};

}  // namespace quillbox
