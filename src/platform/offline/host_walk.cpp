#include "platform/offline/host_walk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/offline/drive_map.h"
#include "text/error.h"

namespace quillbox {

namespace {

/// Folders that are open at one time; those further up are opened again on the way back.
constexpr std::size_t kMaxOpen = 100;
constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;

HostFd OpenBelow(int parent, const std::string& name) {
  return HostFd(openat(parent, name.c_str(), kOpenFlags | O_NOFOLLOW));
}

bool IsDots(const char* name) {
  return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

/// The entry's type; that of a link is its target's, and a link that leads nowhere counts as a file.
unsigned char TypeOf(int folder, const char* name, int flags) {
  struct stat info = {};
  if (fstatat(folder, name, &info, flags) != 0) return DT_REG;
  if (S_ISLNK(info.st_mode)) return DT_LNK;
  return S_ISDIR(info.st_mode) ? DT_DIR : DT_REG;
}

}  // namespace

HostWalk::HostWalk(std::filesystem::path host, std::string root, const std::string& pattern)
    : host_(std::move(host)), pattern_(pattern), path_(std::move(root)) {}

bool HostWalk::Step(WalkStep& step) {
  step.files.clear();
  step.unread.clear();
  if (!started_) {
    started_ = true;
    HostFd fd(open(host_.c_str(), kOpenFlags));
    if (!fd) {
      TellUnread({}, step);
      return !step.unread.empty();
    }
    Enter(std::move(fd), {});
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
      TellUnread(name, step);
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
    opened = HostFd(open(host_.c_str(), kOpenFlags));
    folder = opened.Get();
  }
  for (std::size_t at = from + 1; at <= depth && folder >= 0; ++at) {
    opened = OpenBelow(folder, levels_[at].hostName);
    folder = opened.Get();
  }
  levels_[depth].fd = std::move(opened);
  return folder >= 0;
}

/// Takes up the entries that one call gives.
void HostWalk::Read(WalkStep& step) {
  Level& top = levels_.back();
  const ssize_t size = getdents64(top.fd.Get(), buffer_.data(), buffer_.size());
  if (size < 0) TellUnread({}, step);
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
  if (type == DT_UNKNOWN) type = TypeOf(top.fd.Get(), stored.d_name, AT_SYMLINK_NOFOLLOW);
  if (type == DT_DIR) {
    top.subfolders.emplace_back(stored.d_name);
    return;
  }
  std::string name = WindowsName(stored.d_name);
  if (!pattern_.Matches(name)) return;
  if (type == DT_LNK && TypeOf(top.fd.Get(), stored.d_name, 0) == DT_DIR) return;
  step.files.push_back(std::move(name));
}

bool HostWalk::IsAbove(dev_t device, ino_t node) const {
  return std::any_of(levels_.rbegin(), levels_.rend(),
                     [=](const Level& level) { return level.node == node && level.device == device; });
}

/// Tells that the deepest level, or the entry `hostName` in it, could not be read, unless it is gone.
void HostWalk::TellUnread(const std::string& hostName, WalkStep& step) const {
  if (errno == ENOENT || errno == ENOTDIR) return;
  step.unread.push_back(path_ + WindowsName(hostName) + ": " + SystemReason(errno));
}

}  // namespace quillbox
