// SPDX-License-Identifier: GPL-3.0-or-later
// Changes by path, as folders and the calls on paths both make them.
#pragma once

#include <system_error>

#include "host/host_path.h"

namespace quillbox {

/// In one step that has reached the disk when it is done; replaces a file of that name.
std::error_code MoveEntry(const HostPath& from, const HostPath& to);

/// Removes a file, or a link itself.
std::error_code RemoveEntry(const HostPath& entry);

/// What keeps the file from being replaced: it is a folder, read-only, or open elsewhere. No code where it is not
/// there, or nothing keeps it.
std::error_code ReplaceFaultOf(const HostPath& file);

}  // namespace quillbox
