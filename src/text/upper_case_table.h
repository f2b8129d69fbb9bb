// SPDX-License-Identifier: GPL-3.0-or-later
// The table behind Windows' case rule, apart from the code that uses it because it is pure data.
#pragma once

#include <cstdint>
#include <span>

namespace quillbox {

/// Every `stride`-th unit from `first` to `last` has its upper case `delta` away.
struct UpperCaseRange {
  std::uint16_t first;
  std::uint16_t last;
  std::int16_t delta;
  std::uint16_t stride;
};

/// All units that have an upper case, in the order of `first`.
std::span<const UpperCaseRange> UpperCaseRanges();

}  // namespace quillbox
