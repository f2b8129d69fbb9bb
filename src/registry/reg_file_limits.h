// SPDX-License-Identifier: GPL-3.0-or-later
// How large a registry file and what it says may be. Tests make the limits small.
#pragma once

#include <cstddef>
#include <cstdint>

#include "registry/hive.h"

namespace quillbox {

struct RegFileLimits {
  /// Bytes of a whole file.
  std::uint64_t file = std::uint64_t{4} << 30;
  /// Bytes of one value's data: no hive holds more.
  std::uint64_t data = Hive::kMaxData;
  /// Bytes of data that are held before their end was seen. A value with more is read twice, the first time only to
  /// find its end, so that a quote that is never closed does not bring the rest of the file into memory.
  std::uint64_t held = std::uint64_t{16} << 20;
  /// Bytes that are read from the file at once.
  std::size_t piece = std::size_t{256} << 10;
};

/// Bytes of inner text: a UTF-16 unit has no more than three.
inline constexpr std::size_t kMaxValueNameBytes = 3 * Hive::kMaxValueNameUnits;
/// The longest name of the deepest key and every name above it, with the root's.
inline constexpr std::size_t kMaxKeyNameBytes = (Hive::kMaxDepth + 1) * (3 * Hive::kMaxNameUnits + 1);

}  // namespace quillbox
