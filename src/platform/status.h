// SPDX-License-Identifier: GPL-3.0-or-later
// The registry's answers, with the platform's numbers: the program's rules are written in them.
#pragma once

#include <cstdint>

namespace quillbox {

enum class Status : std::uint32_t {
  Success = 0,
  FileNotFound = 2,  ///< no such key or value
  PathNotFound = 3,
  AccessDenied = 5,
  InvalidHandle = 6,  ///< a call on a key that is not open
  InvalidParameter = 87,
  DiskFull = 112,
  FileExists = 183,
  MoreData = 234,           ///< the buffer is too small for the value
  NoMoreItems = 259,        ///< the index is past the end
  BadRegistry = 1009,       ///< a hive file that cannot be used
  RegistryIo = 1016,        ///< a hive file that cannot be read or written
  KeyDeleted = 1018,        ///< the open key was deleted meanwhile
  PrivilegeNotHeld = 1314,  ///< a right that this program lacks or has not enabled
  NoResources = 1450,       ///< a value, a list or the hive would become too large
};

}  // namespace quillbox
