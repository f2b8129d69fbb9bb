// SPDX-License-Identifier: GPL-3.0-or-later
// What the files of this folder share.
#pragma once

#include <sys/stat.h>

#include "host/entry.h"
#include "host/host_handle.h"

namespace quillbox {

inline int Fd(const HostHandle& handle) {
  return static_cast<int>(handle.Number());
}

EntryInfo InfoOfStat(const struct stat& info);

/// What is open; throws std::system_error.
struct stat StatOf(const HostHandle& handle);

}  // namespace quillbox
