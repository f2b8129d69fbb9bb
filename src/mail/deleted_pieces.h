// SPDX-License-Identifier: GPL-3.0-or-later
// What is left of deleted messages: records and text segments that nothing leads to, found by their shape in the parts
// of the file that nobody claimed, and put together again. A damaged tree is helped in the same way.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "mail/store_extents.h"
#include "mail/stored_message.h"

namespace quillbox {

enum class RecoveryState {
  Whole,       ///< begins with a header, goes on to a last segment, and is about as long as the record says
  Partly,      ///< the rest of the text, or its beginning, was overwritten
  RecordOnly,  ///< subject, sender and times are known, the text is gone
};

struct RecoveredMessage {
  RecoveryState state = RecoveryState::RecordOnly;
  std::optional<std::uint32_t> record;  ///< where its record is, if one was found
  std::int64_t shift = 0;               ///< how much its offsets are too high (see StoreRecord::Read)
  std::uint32_t firstSegment = 0;
  std::uint64_t segments = 0;  ///< of its chain that are there
};

struct DeletedPieces {
  std::vector<RecoveredMessage> messages;  ///< those with records first, both in the file's order
  DamageList damage;
};

/// Searches the unclaimed parts of a store, claims what it finds as Deleted, and joins it. `extents` must be settled,
/// and is afterwards. With `isFolderList` there are no messages, but records and nodes are found.
DeletedPieces FindDeletedPieces(StoreInput& input, StoreExtents& extents, bool isFolderList);

}  // namespace quillbox
