// SPDX-License-Identifier: GPL-3.0-or-later
// What the machine knows: the time, and randomness.
#pragma once

#include <cstdint>
#include <span>

#include "host/entry.h"

namespace quillbox {

HostTime Now();
/// Fills `bytes` from the system's own source. Throws std::system_error.
void FillRandom(std::span<std::uint8_t> bytes);

}  // namespace quillbox
