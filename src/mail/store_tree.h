// SPDX-License-Identifier: GPL-3.0-or-later
// The tree by which a store keeps its records in order. Walked without recursion: its depth comes from the file.
#pragma once

#include <cstdint>
#include <vector>

#include "mail/store_input.h"

namespace quillbox {

inline constexpr std::size_t kMaxTreeDepth = 32;
/// More records than a store of 2 GB has room for are not listed.
inline constexpr std::size_t kMaxStoreEntries = 4'000'000;

struct StoreTree {
  std::vector<std::uint32_t> records;  ///< their offsets, in the tree's order; none twice
  std::vector<std::uint32_t> nodes;    ///< those that were read
  DamageList damage;
};

/// Walks the tree below `root` (0: an empty one), reading nodes only. What cannot be read is in the damage, with how
/// many entries it should have held, and the rest of the tree is walked.
StoreTree WalkTree(StoreInput& input, std::uint32_t root);

}  // namespace quillbox
