#include "platform/offline/host_walk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include "platform/offline/folder_finder.h"
#include "platform/offline/folder_names.h"
#include "platform/offline/host_open.h"
#include "platform/offline/windows_names.h"

namespace quillbox {

namespace {

/// Folders that are open at one time; those further up are opened again on the way back.
constexpr std::size_t kMaxOpen = 100;
constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;

HostFd OpenBelow(int parent, const std::string& name) {
  return HostFd(openat(parent, name.c_str(), kOpenFlags | O_NOFOLLOW));
}

/// The entry's type; one that is gone counts as a file.
unsigned char TypeOf(int folder, const char* name) {
  struct stat info = {};
  if (fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return DT_REG;
  if (S_ISLNK(info.st_mode)) return DT_LNK;
  return S_ISDIR(info.st_mode) ? DT_DIR : DT_REG;
}

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
    HostFd fd;
    if (top.fd || Reopen(levels_.size() - 1)) fd = OpenBelow(top.fd.Get(), name);
    if (!fd) {
      TellUnread(name, SystemCode(errno), step);
      continue;
    }
    Enter(std::move(fd), name);
    if (reading_) return true;
  }
  return false;
}

/// Makes the open folder the deepest level, unless it is one of those above it.
void HostWalk::Enter(HostFd fd, const std::string& hostName) {
  struct stat info = {};
  if (fstat(fd.Get(), &info) != 0 || IsAbove(info.st_dev, info.st_ino)) return;
  Level level;
  level.fd = std::move(fd);
  level.hostName = hostName;
  level.device = info.st_dev;
  level.node = info.st_ino;
  if (!levels_.empty()) path_ += WindowsName(hostName) + '\\';
  level.pathLength = path_.size();
  levels_.push_back(std::move(level));
  if (levels_.size() > kMaxOpen) levels_[levels_.size() - kMaxOpen - 1].fd.Close();
  reading_ = true;
}

/// Opens the folder at `depth` again, down from the nearest one above it that is open.
bool HostWalk::Reopen(std::size_t depth) {
  std::size_t from = depth;
  while (from > 0 && !levels_[from].fd) --from;
  HostFd opened;
  int folder = levels_[from].fd.Get();
  if (!levels_[from].fd) {
    try {
      opened = OpenFolder(host_);
    } catch (const std::system_error& failure) {
      errno = failure.code().value();
    }
    folder = opened.Get();
  }
  for (std::size_t at = from + 1; at <= depth && folder >= 0; ++at) {
    opened = OpenBelow(folder, levels_[at].hostName);
    folder = opened.Get();
  }
  levels_[depth].fd = std::move(opened);
  return folder >= 0;
}

/// Handles the entries that one call returns.
void HostWalk::Read(WalkStep& step) {
  Level& top = levels_.back();
  const ssize_t size = getdents64(top.fd.Get(), buffer_.data(), buffer_.size());
  if (size < 0) TellUnread({}, SystemCode(errno), step);
  reading_ = size > 0;
  for (ssize_t at = 0; at < size;) {
    const auto& stored = *reinterpret_cast<const dirent64*>(buffer_.data() + at);
    Take(stored, step);
    at += stored.d_reclen;
  }
}

void HostWalk::Take(const dirent64& stored, WalkStep& step) {
  if (IsDots(stored.d_name)) return;
  Level& top = levels_.back();
  unsigned char type = stored.d_type;
  if (type == DT_UNKNOWN) type = TypeOf(top.fd.Get(), stored.d_name);
  if (type == DT_DIR) {
    top.subfolders.emplace_back(stored.d_name);
    return;
  }
  std::string name = WindowsName(stored.d_name);
  if (!pattern_.Matches(name)) return;
  if (type == DT_LNK && IsLinkToFolder(stored.d_name)) return;
  step.files.push_back(std::move(name));
}

/// A link that leads nowhere, or out of the disk, counts as one to a file.
bool HostWalk::IsLinkToFolder(const char* name) const {
  HostPlace folder = host_;
  for (std::size_t at = 1; at < levels_.size(); ++at) folder = folder.Join(levels_[at].hostName);
  const std::optional<struct stat> info = StatEntry({std::move(folder), levels_.back().fd.Get()}, name);
  return info && S_ISDIR(info->st_mode);
}

bool HostWalk::IsAbove(dev_t device, ino_t node) const {
  return std::any_of(levels_.rbegin(), levels_.rend(),
                     [=](const Level& level) { return level.node == node && level.device == device; });
}

/// Reports that the deepest level, or the entry `hostName` in it, could not be read, unless it is gone.
void HostWalk::TellUnread(const std::string& hostName, const std::error_code& fault, WalkStep& step) const {
  if (fault == std::errc::no_such_file_or_directory || fault == std::errc::not_a_directory) return;
  step.unread.push_back(path_ + WindowsName(hostName) + ": " + ReasonOf(fault));
}

}  // namespace quillbox
