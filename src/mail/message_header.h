// SPDX-License-Identifier: GPL-3.0-or-later
// The header of a message (RFC 5322): the few fields that exports need, and their text (RFC 2047) for people and for
// file names. The message itself is never rewritten from this.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mail/stored_message.h"
#include "text/code_page.h"

namespace quillbox {

/// What is read of a header; longer ones are cut.
inline constexpr std::size_t kMaxHeaderSize = std::size_t{64} * 1024;

/// Fields as they came, unfolded: 8-bit bytes and encoded words are still in them. Empty where the message has none.
struct MessageHeader {
  std::string subject, from, date, messageId, newsgroups;
};

/// The header at the start of `text`, which may be the whole message or its first kMaxHeaderSize bytes.
MessageHeader ParseHeader(std::string_view text);

/// Keeps the first pieces of a message that is streamed, up to the header's end or kMaxHeaderSize.
class HeaderCollector {
 public:
  void Add(std::string_view piece);
  std::string_view Text() const { return text_; }

 private:
  std::string text_;
  bool complete_ = false;
};

/// True when `start` begins with a field's name and a colon, as a message does.
bool LooksLikeHeader(std::string_view start);

struct DecodedText {
  std::string text;        ///< inner text
  bool isComplete = true;  ///< false when an encoded word is in a charset that isn't known, and is left as it is
};

/// A field's text with its encoded words decoded. Bytes outside of them are UTF-8 where they are valid as such, else
/// in `page`.
DecodedText DecodeWords(std::string_view raw, const CodePage& page);

/// A sender: both parts as they came, the name without quotes.
struct Mailbox {
  std::string name, address;
};
/// The first one of an address field.
Mailbox ParseMailbox(std::string_view field);

/// The moment of a Date field, in seconds since 1970 UTC; nothing for one that isn't a date. Old two-digit years and
/// named zones are understood.
std::optional<std::int64_t> ParseMailDate(std::string_view date);

/// Fills what the store doesn't say about a message, or all of it for one without a record, from its header.
void CompleteFromHeader(StoredMessage& message, const MessageHeader& header);

}  // namespace quillbox
