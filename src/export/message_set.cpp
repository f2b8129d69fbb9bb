// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/message_set.h"

namespace quillbox {
namespace {

constexpr MessageDigest::Value kFree = {};
constexpr std::size_t kFirstSize = 1024;

/// The digest by which a message is kept: no message has that of a free place.
MessageDigest::Value KeyOf(const MessageIdentity& message) {
  MessageDigest::Value key = message.digest;
  if (key == kFree) key[0] = 1;
  return key;
}

}  // namespace

std::size_t MessageSet::PlaceOf(const Value& digest) const {
  const std::size_t mask = places_.size() - 1;
  std::size_t place = static_cast<std::size_t>(digest[0]) & mask;
  while (places_[place] != kFree && places_[place] != digest) place = (place + 1) & mask;
  return place;
}

void MessageSet::Grow() {
  std::vector<Value> before(places_.empty() ? kFirstSize : places_.size() * 2);
  before.swap(places_);
  for (const Value& digest : before) {
    if (digest != kFree) places_[PlaceOf(digest)] = digest;
  }
}

bool MessageSet::Add(const MessageIdentity& message) {
  // At most three quarters of the places are taken.
  if (count_ >= places_.size() / 4 * 3) Grow();
  const Value key = KeyOf(message);
  Value& place = places_[PlaceOf(key)];
  if (place == key) return false;
  place = key;
  ++count_;
  return true;
}

bool MessageSet::Has(const MessageIdentity& message) const {
  if (places_.empty()) return false;
  const Value key = KeyOf(message);
  return places_[PlaceOf(key)] == key;
}

}  // namespace quillbox
