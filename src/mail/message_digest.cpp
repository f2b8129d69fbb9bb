// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/message_digest.h"

#include <bit>

#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr int kCompressionRounds = 2;
constexpr int kFinalRounds = 4;
constexpr std::size_t kWord = 8;

}  // namespace

MessageDigest::MessageDigest(const Key& key)
    : state_{key[0] ^ 0x736F6D6570736575, key[1] ^ 0x646F72616E646F6D ^ 0xEE, key[0] ^ 0x6C7967656E657261,
             key[1] ^ 0x7465646279746573} {}

void MessageDigest::Rounds(int count) {
  auto& [v0, v1, v2, v3] = state_;
  for (int round = 0; round < count; ++round) {
    v0 += v1;
    v1 = std::rotl(v1, 13) ^ v0;
    v0 = std::rotl(v0, 32);
    v2 += v3;
    v3 = std::rotl(v3, 16) ^ v2;
    v0 += v3;
    v3 = std::rotl(v3, 21) ^ v0;
    v2 += v1;
    v1 = std::rotl(v1, 17) ^ v2;
    v2 = std::rotl(v2, 32);
  }
}

void MessageDigest::Compress(std::uint64_t word) {
  state_[3] ^= word;
  Rounds(kCompressionRounds);
  state_[0] ^= word;
}

void MessageDigest::Add(std::string_view piece) {
  const auto addByte = [this](char c) {
    const std::size_t at = length_++ % kWord;
    pending_ |= std::uint64_t{static_cast<unsigned char>(c)} << (8 * at);
    if (at != kWord - 1) return;
    Compress(pending_);
    pending_ = 0;
  };
  while (!piece.empty() && length_ % kWord != 0) {
    addByte(piece.front());
    piece.remove_prefix(1);
  }
  for (; piece.size() >= kWord; piece.remove_prefix(kWord)) {
    Compress(Load64(reinterpret_cast<const std::uint8_t*>(piece.data())));
    length_ += kWord;
  }
  for (const char c : piece) addByte(c);
}

MessageDigest::Value MessageDigest::Finish() {
  Compress(pending_ | length_ << 56);
  const auto half = [this](std::size_t at, std::uint64_t mark) {
    state_[at] ^= mark;
    Rounds(kFinalRounds);
    return state_[0] ^ state_[1] ^ state_[2] ^ state_[3];
  };
  const std::uint64_t first = half(2, 0xEE);
  return {first, half(1, 0xDD)};
}

void IdentityCollector::Add(std::string_view piece) {
  header_.Add(piece);
  digest_.Add(piece);
  length_ += piece.size();
}

MessageIdentity IdentityCollector::Finish() {
  MessageIdentity identity{Header().messageId, length_, digest_.Finish()};
  *this = {};
  return identity;
}

}  // namespace quillbox
