// SPDX-License-Identifier: GPL-3.0-or-later
// The drives that a person can search: what they are called and in which order they are offered.
#pragma once

#include <string>
#include <vector>

#include "platform/drives.h"

namespace quillbox {

struct DriveList {
  /// "C:\SYSTEM", "E:\CD-ROM"; more than one drive is followed by "All Hard Drives (C:\, D:\)".
  std::vector<std::string> items;
  std::vector<WinPath> roots;  ///< "C:\" of each drive among the items, in their order
};

/// How the item for all drives begins.
inline constexpr const char* kAllDrives = "All Hard Drives";

/// "Fixed Drive", "CD-ROM" and so on for a drive ("C", "C:" or "C:\"); "Drive Doesn't Exist" for anything else.
std::string DriveTypeText(Drives& drives, std::string root);

/// The fixed drives from B to Z, then the CD-ROM drives.
DriveList ListDrives(Drives& drives);

}  // namespace quillbox
