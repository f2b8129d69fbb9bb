// SPDX-License-Identifier: GPL-3.0-or-later
// The Marvin hash with 32-bit arithmetic, by which Windows protects the entries of its registry logs.
#pragma once

#include <cstdint>

#include "text/unicode.h"

namespace quillbox {

/// What registry logs begin the hash with: the high half before the low one. Entries that Windows wrote verify with it;
/// none does when the bytes of each half are reversed.
inline constexpr std::uint64_t kLogHashSeed = 0x82EF4D887A4E55C5;

std::uint64_t Marvin32(std::uint64_t seed, ByteView data);

}  // namespace quillbox
