// SPDX-License-Identifier: GPL-3.0-or-later
// Whether two messages are the same one, though they come from two stores or from a store and an export of it: by their
// message ids and a digest of their bytes.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "mail/message_header.h"

namespace quillbox {

/// XXH3 with 128 bits: faster than the bytes come. It tells apart what chance and damage make different; someone who
/// wants two messages to have one digest can build them.
class MessageDigest {
 public:
  /// The upper half first, as the hash is written down.
  using Value = std::array<std::uint64_t, 2>;

  MessageDigest();
  ~MessageDigest();
  MessageDigest(MessageDigest&&) noexcept;
  MessageDigest& operator=(MessageDigest&&) noexcept;

  void Add(std::string_view piece);
  /// The digest of what was added; the next Add begins another one.
  Value Finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

struct MessageIdentity {
  std::string messageId;  ///< empty for a message without one
  std::uint64_t length = 0;
  MessageDigest::Value digest = {};

  auto operator<=>(const MessageIdentity&) const = default;
};

/// Gathers the identity of a message that is streamed, and its header by the way.
class IdentityCollector {
 public:
  void Add(std::string_view piece);
  /// The message's identity; the next Add begins another one.
  MessageIdentity Finish();
  /// The header of the message so far.
  MessageHeader Header() const { return ParseHeader(header_.Text()); }

 private:
  HeaderCollector header_;
  MessageDigest digest_;
  std::uint64_t length_ = 0;
};

}  // namespace quillbox
