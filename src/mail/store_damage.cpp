// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/store_damage.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace quillbox {
namespace {

// By StorePart.
constexpr std::string_view kParts[] = {"the store", "the header",       "the tree node", "the message's record",
                                       "a field",   "the text segment", "the message",   "the folder"};

// By DamageReason.
constexpr std::string_view kReasons[] = {
    "is beyond the end of the file",
    "is cut off by the end of the file",
    "cannot be read",
    "is gone: the file became shorter while it was read",
    "does not begin with its own offset",
    "has a length or count that cannot be",
    "is used twice",
    "is too deep in the tree",
    "has more of them than can be",
    "has no text on record",
    "is of an unknown form",
    "has the number of another folder",
    "is below a folder that is missing",
    "is below itself",
};

}  // namespace

std::string Describe(const StoreDamage& damage) {
  char place[32];
  std::snprintf(place, sizeof place, "offset 0x%llX: ", static_cast<unsigned long long>(damage.offset));
  std::string words = place;
  words += kParts[static_cast<std::size_t>(damage.part)];
  words += ' ';
  words += kReasons[static_cast<std::size_t>(damage.reason)];
  if (!damage.detail.empty()) words += " (" + damage.detail + ")";
  return words;
}

void DamageList::Add(StoreDamage damage) {
  ++count_;
  if (listed_.size() < kMaxListed) listed_.push_back(std::move(damage));
}

void DamageList::Append(const DamageList& more) {
  const std::size_t room = kMaxListed - listed_.size();
  listed_.insert(listed_.end(), more.listed_.begin(),
                 more.listed_.begin() + static_cast<std::ptrdiff_t>(std::min(room, more.listed_.size())));
  count_ += more.count_;
}

}  // namespace quillbox
