// SPDX-License-Identifier: GPL-3.0-or-later
// The members of an address book's groups: from entry ids to contacts and groups, without loops.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "contacts/contact_book.h"

namespace quillbox {

/// Members that the groups of a book may have together, those of groups within groups included. A group with which
/// there would be more has its own members only.
inline constexpr std::size_t kMostMemberships = 1'000'000;
/// The longest entry id that is taken for one of the book's own records. Longer ones hold texts.
inline constexpr std::size_t kLongestEntryId = 40;

/// A group as it was read: where its record is, and the entry ids that are its members.
struct RawGroup {
  std::uint64_t offset = 0;
  std::vector<Bytes> members;
};

/// Entry ids that records name as their own, as keys, with the records' numbers.
using EntryIds = std::unordered_map<std::string, std::uint32_t>;
inline std::string EntryKey(const Bytes& entryId) {
  return {entryId.begin(), entryId.end()};
}

using AddFault = std::function<void(const BookFault&)>;

/// Fills the members of the groups in `book`; `raw` has an entry for each of them.
void ResolveGroups(ContactBook& book, const std::vector<RawGroup>& raw, const EntryIds& entryIds,
                   const AddFault& addFault);

}  // namespace quillbox
