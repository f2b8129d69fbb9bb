// SPDX-License-Identifier: GPL-3.0-or-later
// Looking up entries of a host folder by Windows' names, which have no case.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/host_folder.h"

namespace quillbox {

struct HostEntry {
  std::string name;  ///< as stored
  EntryInfo info;    ///< of the entry itself: a link is not followed
};

/// The entry of the open folder that a Windows name means: the one of exactly that name, else the first that equals it
/// without regard to case. Nothing when there is none, or when the folder cannot be read.
std::optional<HostEntry> FindEntry(const HostFolder& folder, std::string_view windowsName);

}  // namespace quillbox
