// SPDX-License-Identifier: GPL-3.0-or-later
// Where the messages of one mail folder go: a mailbox file, a folder of .eml files, a Maildir. Each adds to what is
// there, takes nothing away, and is whole or as it was before. All throw Error.
#pragma once

#include <cstdint>
#include <string_view>

#include "export/message_set.h"
#include "mail/mail_state.h"
#include "mail/message_header.h"
#include "mail/stored_message.h"

namespace quillbox {

/// What is known of a message when it is written. Its bytes follow.
struct OutgoingMessage {
  const StoredMessage& stored;  ///< completed from the header
  const MessageHeader& header;
  const MessageIdentity& identity;
};

class FolderTarget {
 public:
  virtual ~FolderTarget() = default;

  /// Whether the message was there before this export.
  bool WasThere(const MessageIdentity& message) const { return there_.Has(message); }

  /// Begin, Write for each piece, End; then the next one.
  virtual void Begin(const OutgoingMessage& message) = 0;
  virtual void Write(std::string_view piece) = 0;
  virtual void End() = 0;

  /// After the last message: how many of those written come back as they are when they are read from where they were
  /// written.
  virtual std::uint64_t ReadBack() = 0;
  /// Puts all of it in its place.
  virtual void Commit() = 0;

 protected:
  MessageSet there_;
};

}  // namespace quillbox
