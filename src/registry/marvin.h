// The Marvin hash with 32-bit arithmetic, by which Windows protects the entries of its registry logs.
#pragma once

#include <cstdint>

#include "text/unicode.h"

namespace quillbox {

/// The seed that registry logs use.
inline constexpr std::uint64_t kLogHashSeed = 0xC5554E7A884DEF82;

std::uint64_t Marvin32(std::uint64_t seed, ByteView data);

}  // namespace quillbox
