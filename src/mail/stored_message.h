// SPDX-License-Identifier: GPL-3.0-or-later
// What a store says about a message besides its text. Texts are as the store has them, in the 8-bit code page of the
// system that wrote it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "mail/store_record.h"
#include "text/file_time.h"

namespace quillbox {

enum class MessageFlag : std::uint32_t {
  HasText = 0x01,
  Draft = 0x08,
  Flagged = 0x20,
  Read = 0x80,
  ToDownload = 0x100,
  News = 0x800,
  Signed = 0x1000,
  Attachment = 0x4000,
  Answered = 0x80000,
  Forwarded = 0x100000,
  Watched = 0x400000,
  Ignored = 0x800000,
};

struct MessageFlags {
  std::uint32_t bits = 0;

  bool Has(MessageFlag flag) const { return (bits & static_cast<std::uint32_t>(flag)) != 0; }
  bool operator==(const MessageFlags&) const = default;
};

struct StoredMessage {
  std::uint64_t offset = 0;  ///< of its record in the file
  std::optional<std::uint32_t> number;
  MessageFlags flags;
  std::optional<FileTime> sent, saved, received;
  std::string subject;  ///< with "Re:" or "Fw:"
  std::string messageId, answeredId;
  std::string senderName, senderAddress;
  std::string receiverName, receiverAddress;
  std::string newsPlace;  ///< server, group and number of a news article
  std::string server, account, accountKey, uidl;
  std::optional<std::uint32_t> priority;  ///< 1 high, 3 normal, 5 low
  std::optional<std::uint32_t> lines;
  std::optional<std::uint32_t> size;  ///< of the text by the record, which can be wrong
  /// Where the text begins in the file; nothing for a message whose text was never downloaded.
  std::optional<std::uint32_t> text;
  /// A field that could not be read; the message is readable without it.
  std::optional<std::uint64_t> fieldFault;
};

/// The message that the record at `offset` describes.
StoredMessage MessageOf(const StoreRecord& record, std::uint64_t offset);

}  // namespace quillbox
