// A walk through a host folder and everything below it. Each folder is read once, and is opened from the one above it
// rather than by its whole path, so that depth and length of paths have no limit.
#pragma once

#include <dirent.h>
#include <sys/types.h>

#include <array>
#include <cstddef>
#include <string>
#include <system_error>
#include <vector>

#include "platform/file_system.h"
#include "platform/offline/host_fd.h"
#include "platform/offline/host_place.h"

namespace quillbox {

class HostWalk : public FolderWalk {
 public:
  /// Walks `host`, which is reported as `root` (final backslash included).
  HostWalk(HostPlace host, const WinPath& root, const std::string& pattern);

  bool Step(WalkStep& step) override;

 private:
  /// A folder between the root and the one that is being read.
  struct Level {
    HostFd fd;  ///< closed while too many folders are open
    std::string hostName;
    std::size_t pathLength = 0;  ///< how much of path_ is this folder's
    dev_t device = 0;
    ino_t node = 0;
    std::vector<std::string> subfolders;  ///< names on the host
    std::size_t next = 0;                 ///< the subfolder to enter next
  };

  bool EnterNext(WalkStep& step);
  void Enter(HostFd fd, const std::string& hostName);
  bool Reopen(std::size_t depth);
  void Read(WalkStep& step);
  void Take(const dirent64& stored, WalkStep& step);
  bool IsAbove(dev_t device, ino_t node) const;
  bool IsLinkToFolder(const char* name) const;
  void TellUnread(const std::string& hostName, const std::error_code& fault, WalkStep& step) const;

  static constexpr std::size_t kBufferSize = std::size_t{64} * 1024;

  HostPlace host_;
  Wildcard pattern_;
  std::string path_;  ///< of the deepest level, final backslash included
  std::vector<Level> levels_;
  bool started_ = false;
  bool reading_ = false;  ///< the deepest level has entries that were not read yet
  alignas(dirent64) std::array<char, kBufferSize> buffer_;
};

}  // namespace quillbox
