// SPDX-License-Identifier: GPL-3.0-or-later
// Links as they are stored.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>

#include "host/host_path.h"

namespace quillbox {

/// Where a stored link leads to, as it is written there; nothing for another kind of reparse point, or one that is cut
/// off.
std::optional<HostPath> TargetOfReparsePoint(std::span<const std::uint8_t> stored);
/// Where the open symbolic link or junction leads to, as it is written there; nothing when it is another thing.
std::optional<HostPath> TargetOfLink(HANDLE link);

}  // namespace quillbox
