// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/message_digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <utility>

namespace quillbox {

/// On the heap by itself: the hash asks for more alignment than its owners have.
struct MessageDigest::State {
  State() { XXH3_128bits_reset(&hash); }
  XXH3_state_t hash;
};

MessageDigest::MessageDigest() : state_(std::make_unique<State>()) {}
MessageDigest::~MessageDigest() = default;
MessageDigest::MessageDigest(MessageDigest&&) noexcept = default;
MessageDigest& MessageDigest::operator=(MessageDigest&&) noexcept = default;

void MessageDigest::Add(std::string_view piece) {
  XXH3_128bits_update(&state_->hash, piece.data(), piece.size());
}

MessageDigest::Value MessageDigest::Finish() {
  const XXH128_hash_t digest = XXH3_128bits_digest(&state_->hash);
  XXH3_128bits_reset(&state_->hash);
  return {digest.high64, digest.low64};
}

void IdentityCollector::Add(std::string_view piece) {
  header_.Add(piece);
  digest_.Add(piece);
  length_ += piece.size();
}

MessageIdentity IdentityCollector::Finish() {
  MessageIdentity identity{Header().messageId, std::exchange(length_, 0), digest_.Finish()};
  header_ = {};
  return identity;
}

}  // namespace quillbox
