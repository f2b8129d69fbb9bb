#include "platform/offline/place_finder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <deque>
#include <optional>
#include <string>

#include "platform/offline/open_beneath.h"
#include "platform/offline/windows_names.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// A step of a path: to the entry of this Windows name, or up where it is "..".
using Steps = std::deque<std::string>;
constexpr const char* kUp = "..";

HostFd OpenAt(const HostPlace& place) {
  if (!place.IsBeneathDrive()) return HostFd(open(place.Path().c_str(), kFolderFlags));
  const HostFd root(open(place.Drive().folder.c_str(), kFolderFlags));
  return root ? OpenBeneath(root.Get(), place.Names(), kFolderFlags) : HostFd();
}

std::optional<std::string> ReadLink(int folder, const std::string& name) {
  std::array<char, PATH_MAX> target = {};
  const ssize_t size = readlinkat(folder, name.c_str(), target.data(), target.size());
  if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(size));
}

class Finder {
 public:
  Finder(const HostPlace& from, Steps steps, LastStep last)
      : at_(from), folder_(OpenAt(from)), exists_(folder_), steps_(std::move(steps)), last_(last) {}

  PlaceResult Run() {
    while (!steps_.empty() && !fault_) {
      const std::string name = std::move(steps_.front());
      steps_.pop_front();
      if (name == kUp) {
        GoUp();
      } else if (const std::optional<HostEntry> entry = exists_ ? FindEntry(folder_.Get(), name) : std::nullopt) {
        Take(*entry);
      } else {
        exists_ = false;
        at_ = at_.Join(HostName(name));
      }
    }
    if (fault_) return fault_;
    return refuseLink_ ? PlaceResult(HostFault::IsLink) : PlaceResult(at_);
  }

 private:
  void GoUp() {
    if (at_.IsRoot()) {
      fault_ = HostFault::LeadsOut;
    } else if (!exists_) {
      fault_ = SystemCode(ENOENT);
    } else {
      MoveTo(at_.Folder());
    }
  }

  void MoveTo(const HostPlace& place) {
    at_ = place;
    folder_ = OpenAt(at_);
    exists_ = static_cast<bool>(folder_);
  }

  void Take(const HostEntry& entry) {
    const bool isLink = S_ISLNK(entry.info.st_mode) && at_.IsBeneathDrive();
    if (isLink && !(steps_.empty() && last_ == LastStep::Keep)) {
      refuseLink_ = refuseLink_ || (steps_.empty() && last_ == LastStep::NoLink);
      FollowLink(entry.name);
      return;
    }
    at_ = at_.Join(entry.name);
    if (steps_.empty()) return;
    const int noFollow = at_.IsBeneathDrive() ? O_NOFOLLOW : 0;
    folder_ = HostFd(openat(folder_.Get(), entry.name.c_str(), kFolderFlags | noFollow));
    exists_ = static_cast<bool>(folder_);
  }

  void FollowLink(const std::string& name) {
    const std::optional<std::string> target = ReadLink(folder_.Get(), name);
    if (!target) {
      fault_ = HostFault::Changed;
      return;
    }
    if (++links_ > kMaxLinks) {
      fault_ = HostFault::TooManyLinks;
      return;
    }
    fs::path way = *target;
    if (way.is_absolute()) {
      const std::optional<DiskBounds::Inside> inside = at_.Bounds()->Find(way);
      if (!inside) {
        fault_ = HostFault::LeadsOut;
        return;
      }
      MoveTo(HostPlace::Beneath(at_.Bounds(), inside->drive));
      way = inside->below;
    }
    Steps more;
    for (const fs::path& part : way) {
      if (part == kUp) more.emplace_back(kUp);
      if (!LeavesItsFolder(part.native())) more.push_back(WindowsName(part.native()));
    }
    steps_.insert(steps_.begin(), more.begin(), more.end());
  }

  HostPlace at_;
  HostFd folder_;  ///< at_ while it is a folder that is there
  bool exists_;
  Steps steps_;
  LastStep last_;
  int links_ = 0;
  bool refuseLink_ = false;  ///< the path ended in a link, whose way is followed only to say where it leads
  std::error_code fault_;
};

}  // namespace

PlaceResult FindPlace(const HostPlace& from, const std::vector<std::string_view>& windowsNames, LastStep last) {
  const auto isImpossible = [](std::string_view name) { return LeavesItsFolder(HostName(name)); };
  if (std::any_of(windowsNames.begin(), windowsNames.end(), isImpossible)) return HostFault::ImpossibleName;
  return Finder(from, {windowsNames.begin(), windowsNames.end()}, last).Run();
}

PlaceResult FollowEntry(const HostPlace& folder, std::string_view hostName, LastStep last) {
  return Finder(folder, {WindowsName(hostName)}, last).Run();
}

PlaceResult FindAgain(const HostPlace& place, LastStep last) {
  Steps steps;
  for (const fs::path& name : place.Names()) steps.push_back(WindowsName(name.native()));
  return Finder(HostPlace::Beneath(place.Bounds(), place.DriveNumber()), std::move(steps), last).Run();
}

}  // namespace quillbox
