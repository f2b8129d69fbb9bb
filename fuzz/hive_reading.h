// SPDX-License-Identifier: GPL-3.0-or-later
// A digest of everything that a hive holds, read in every way there is.
#pragma once

#include <cstdint>

#include "registry/hive.h"

namespace quillbox {

/// Times, classes and security descriptors included. Throws BrokenPromise where two ways of reading disagree.
std::uint64_t ReadAll(const Hive& hive);

/// Writes the hive and opens what was written: it must open, be clean, and hold the same. Opening it must not have
/// corrected anything.
void RequireReloads(Hive& hive);

}  // namespace quillbox
