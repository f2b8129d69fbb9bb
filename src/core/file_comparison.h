// SPDX-License-Identifier: GPL-3.0-or-later
// Two files side by side: for checks of copies.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/file_system.h"

namespace quillbox {

/// Called before each piece with the bytes compared so far; what it throws ends the comparison.
using ComparisonTick = std::function<void(std::uint64_t done)>;

/// The first offset at which two files differ, in bytes from their start; nothing when they are the same. Throws Error.
std::optional<std::uint64_t> FirstDifference(FileReader& a, FileReader& b, const ComparisonTick& tick);

}  // namespace quillbox
