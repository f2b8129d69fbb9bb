// SPDX-License-Identifier: GPL-3.0-or-later
// Stores of Outlook Express 4: messages one after another, without a tree and without anything but number and text.
#pragma once

#include "mail/segment_chain.h"
#include "mail/store_tree.h"
#include "mail/stored_message.h"

namespace quillbox {

/// A message's head, checked against the file.
struct OldMessage {
  std::uint32_t number = 0;
  std::uint32_t length = 0;      ///< with the head
  std::uint32_t textLength = 0;  ///< right after the head
};

std::variant<OldMessage, ReadFault> ReadOldMessage(StoreInput& input, std::uint64_t offset);

/// The offsets of all messages. After a damaged one, the next message's mark is searched for.
StoreTree WalkOldStore(StoreInput& input);

/// The message at `offset`. Its header has to say the rest (CompleteFromHeader).
std::variant<StoredMessage, StoreDamage> ReadOldRecord(StoreInput& input, std::uint64_t offset);
TextResult ReadOldText(StoreInput& input, std::uint64_t offset, const TextSink& sink);

}  // namespace quillbox
