// SPDX-License-Identifier: GPL-3.0-or-later
// What is wrong with a message store, as data: where, with which part, and why. Readers of stores collect it and go on
// with what is whole; one function turns it into words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillbox {

enum class StorePart { Store, Header, TreeNode, Record, Field, Segment, Message, Folder };

enum class DamageReason {
  OutsideFile,     ///< the file ends before it
  CutOff,          ///< the file ends within it
  Unreadable,      ///< the source failed; the damage's detail says how
  Shrunk,          ///< the file ended earlier than its size promised: it changed while it was read
  WrongOwnOffset,  ///< it doesn't begin with its own offset, as every part does
  BadLength,       ///< a length or count in it cannot be
  UsedTwice,       ///< reached a second time: a loop, or two things that claim the same bytes
  TooDeep,         ///< more levels than kMaxTreeDepth
  TooMany,         ///< more than a named limit of the reader; the rest is left out
  NoText,          ///< a message without a place of its text
  UnknownForm,     ///< not a message store, or a message of another form
  NumberTwice,     ///< two folders of one number
  ParentMissing,   ///< a folder below one that isn't there
  ParentLoop,      ///< a folder below itself
};

struct StoreDamage {
  std::uint64_t offset = 0;  ///< of the part, in bytes from the start of the file
  StorePart part = StorePart::Store;
  DamageReason reason = DamageReason::OutsideFile;
  std::string detail = {};  ///< what else is known, in words; mostly empty

  bool operator==(const StoreDamage&) const = default;
};

/// The words of a damage, without the file's name: "offset 0x1E254: the tree node is cut off by the end of the file".
std::string Describe(const StoreDamage& damage);

/// Damage in the order in which it was found. A file can hold more faults than anybody reads, so only the first
/// kMaxListed are kept; all are counted.
class DamageList {
 public:
  static constexpr std::size_t kMaxListed = 10'000;

  void Add(StoreDamage damage);
  void Append(const DamageList& more);
  const std::vector<StoreDamage>& Listed() const { return listed_; }
  std::uint64_t Count() const { return count_; }
  bool IsEmpty() const { return count_ == 0; }

 private:
  std::vector<StoreDamage> listed_;
  std::uint64_t count_ = 0;
};

}  // namespace quillbox
