// SPDX-License-Identifier: GPL-3.0-or-later
// The folders and hives of a Windows disk, by the names that Windows gives them. Whatever leads out of the disk is
// found as such, so that opening it says so.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/hosted/host_place.h"
#include "text/win_path.h"

namespace quillbox {

/// A hive that was found on a disk.
class FoundHive {
 public:
  FoundHive(HostPath shownAs, PlaceResult place) : shownAs_(std::move(shownAs)), place_(std::move(place)) {}
  /// Where it is, links resolved. Throws Error when it is a link that leads out of the disk.
  const HostPlace& Place() const;
  /// As Place(), or null.
  const HostPlace* PlaceIfAny() const { return place_ ? &*place_ : nullptr; }

 private:
  HostPath shownAs_;
  PlaceResult place_;
};

/// A folder and how Windows names it, links on the way not resolved.
struct NamedFolder {
  HostPlace place;
  WinPath path;
};

/// The place of `relative` (names with slashes between) below `folder`, also where nothing is there.
PlaceResult PlaceBelow(const HostPlace& folder, std::string_view relative);

/// The place of what is there.
std::optional<HostPlace> FindBelow(const HostPlace& folder, std::string_view relative);

/// A hive, or a link of its name that leads out of the disk; opening that one reports it.
std::optional<FoundHive> FindHive(const HostPlace& folder, const std::string& name);

/// The folders in a folder, sorted as Windows sorts names; none when it cannot be read.
std::vector<NamedFolder> FoldersIn(const NamedFolder& folder);

/// A folder by its path below another one; the path gets the names as they are stored.
std::optional<NamedFolder> FindFolder(const NamedFolder& from, std::string_view relative);

}  // namespace quillbox
