// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/place_finder.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <string>

#include "host/host_names.h"
#include "platform/hosted/find_entry.h"
#include "platform/hosted/host_open.h"

namespace quillbox {

namespace {

/// A step of a path: to the entry of this Windows name, or up where it is "..".
using Steps = std::deque<std::string>;
constexpr const char* kUp = "..";

/// The folder, or none where it cannot be opened.
HostFolder OpenAt(const HostPlace& place) try {
  return place.IsBeneathDrive() ? HostFolder::OpenBeneath(place.Drive().folder, place.Names())
                                : HostFolder::Open(place.Path());
} catch (const std::system_error&) {
  return {};
}

HostFolder OpenEntry(const HostFolder& folder, const std::string& name, Links links) try {
  return folder.OpenFolder(name, links);
} catch (const std::system_error&) {
  return {};
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
      } else if (const std::optional<HostEntry> entry = exists_ ? FindEntry(folder_, name) : std::nullopt) {
        Take(*entry);
      } else {
        exists_ = false;
        at_ = at_.Join(HostName(name));
      }
    }
    if (fault_) return fault_;
    return refuseLink_ ? PlaceResult(DiskFault::IsLink) : PlaceResult(at_);
  }

 private:
  void GoUp() {
    if (at_.IsRoot()) {
      fault_ = DiskFault::LeadsOut;
    } else if (!exists_) {
      fault_ = SystemCode(std::errc::no_such_file_or_directory);
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
    const bool isLink = entry.info.IsLink() && at_.IsBeneathDrive();
    if (isLink && !(steps_.empty() && last_ == LastStep::Keep)) {
      refuseLink_ = refuseLink_ || (steps_.empty() && last_ == LastStep::NoLink);
      FollowLink(entry.name);
      return;
    }
    at_ = at_.Join(entry.name);
    if (steps_.empty()) return;
    folder_ = OpenEntry(folder_, entry.name, at_.IsBeneathDrive() ? Links::Keep : Links::Follow);
    exists_ = static_cast<bool>(folder_);
  }

  void FollowLink(const std::string& name) {
    const std::optional<HostPath> target = folder_.ReadLink(name);
    if (!target) {
      fault_ = DiskFault::Changed;
      return;
    }
    if (++links_ > kMaxLinks) {
      fault_ = DiskFault::TooManyLinks;
      return;
    }
    HostPath way = *target;
    if (way.IsAbsolute()) {
      const std::optional<DiskBounds::Inside> inside = at_.Bounds()->Find(way);
      if (!inside) {
        fault_ = DiskFault::LeadsOut;
        return;
      }
      MoveTo(HostPlace::Beneath(at_.Bounds(), inside->drive));
      way = inside->below;
    }
    Steps more;
    for (const std::string& part : way.Names()) {
      if (part == kUp) more.emplace_back(kUp);
      if (!LeavesItsFolder(part)) more.push_back(WindowsName(part));
    }
    steps_.insert(steps_.begin(), more.begin(), more.end());
  }

  HostPlace at_;
  HostFolder folder_;  ///< at_ while it is a folder that is there
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
  if (std::any_of(windowsNames.begin(), windowsNames.end(), isImpossible)) return DiskFault::ImpossibleName;
  return Finder(from, {windowsNames.begin(), windowsNames.end()}, last).Run();
}

PlaceResult FollowEntry(const HostPlace& folder, std::string_view hostName, LastStep last) {
  return Finder(folder, {WindowsName(hostName)}, last).Run();
}

PlaceResult FindAgain(const HostPlace& place, LastStep last) {
  Steps steps;
  for (const std::string& name : place.Names().Names()) steps.push_back(WindowsName(name));
  return Finder(HostPlace::Beneath(place.Bounds(), place.DriveNumber()), std::move(steps), last).Run();
}

}  // namespace quillbox
