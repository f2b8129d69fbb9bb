// SPDX-License-Identifier: GPL-3.0-or-later
// Whether two messages are the same one, though they come from two stores or from a store and an export of it: by their
// message ids and a digest of their bytes.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "mail/message_header.h"

namespace quillbox {

/// SipHash-2-4 with 128 bits (Aumasson and Bernstein): as fast as reading the bytes.
class MessageDigest {
 public:
  using Key = std::array<std::uint64_t, 2>;
  using Value = std::array<std::uint64_t, 2>;
  /// Names that are made of a digest (Maildir) must be the same the next time, so the key is a constant.
  static constexpr Key kKey = {0x6C69616D78627175, 0x74736567692E6C69};

  explicit MessageDigest(const Key& key = kKey);
  void Add(std::string_view piece);
  Value Finish();

 private:
  void Compress(std::uint64_t word);
  void Rounds(int count);

  std::array<std::uint64_t, 4> state_;
  std::uint64_t length_ = 0;
  std::uint64_t pending_ = 0;  ///< bytes that don't make a word yet, the first lowest
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
