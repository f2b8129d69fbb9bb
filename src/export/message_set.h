// SPDX-License-Identifier: GPL-3.0-or-later
// Which messages a folder has already: a set of their digests, small enough for millions of messages.
#pragma once

#include <cstddef>
#include <vector>

#include "mail/message_digest.h"

namespace quillbox {

/// Two messages are the same when their bytes are; the message id is a part of them.
class MessageSet {
 public:
  /// False when it was there.
  bool Add(const MessageIdentity& message);
  bool Has(const MessageIdentity& message) const;
  std::size_t Count() const { return count_; }

 private:
  using Value = MessageDigest::Value;

  /// Where the digest is, or the free place for it.
  std::size_t PlaceOf(const Value& digest) const;
  void Grow();

  std::vector<Value> places_;  ///< a power of two; all zero: free
  std::size_t count_ = 0;
};

}  // namespace quillbox
