// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "registry/hive_records.h"

namespace quillbox {

namespace {

using Owner = RecordChecker::Owner;

/// One walk over all that the root leads to.
class Checker {
 public:
  explicit Checker(HiveData& hive) : hive_(hive), cells_(hive.cells), records_(hive) {}

  void Run() {
    records_.ClaimRoot();
    CheckContent(hive_.root);
    Enter(hive_.root);
    while (!path_.empty()) {
      if (const auto subkey = Next(path_.back())) {
        CheckChild(path_.back(), *subkey);
      } else {
        path_.pop_back();
      }
    }
    for (const KeyCell key : noValues_) {
      if (records_.HasUncountedValues(key)) records_.Fault(key, kWrongValueCount);
    }
    CorrectSecurityCounts();
  }

 private:
  /// A key whose subkeys are being walked.
  struct Level {
    KeyCell key;
    std::optional<ListCell> index;  ///< the `ri`, if any
    std::size_t nextLeaf = 0;
    std::optional<ListCell> leaf;
    std::size_t nextEntry = 0;
    std::uint64_t seen = 0;
    std::optional<KeyCell> previous;
  };

  /// What a key's fields lead to, except its subkeys.
  void CheckContent(KeyCell key) {
    records_.ClaimClass(key);
    CheckSecurity(key);
    CheckValues(key);
  }

  void CheckSecurity(KeyCell key) {
    const SecurityCell security = cells_.Get(key, KeyField::kSecurity);
    if (security.IsNone()) return;
    if (!securityCounts_.contains(security)) CheckRing(key, security);
    ++securityCounts_[security];
  }

  void CheckRing(KeyCell key, SecurityCell first) {
    records_.ClaimDescriptor(Owner(key), first);
    securityCounts_[first] = 0;
    SecurityCell last = first;
    for (SecurityCell next = NextOf(first); next != first; next = NextOf(next)) {
      records_.ClaimDescriptor(Owner(last), next);
      if (cells_.Get(next, SecurityField::kPrevious) != last) records_.Fault(next, kUnlinkedSecurity);
      securityCounts_[next] = 0;
      last = next;
    }
    if (cells_.Get(first, SecurityField::kPrevious) != last) records_.Fault(first, kUnlinkedSecurity);
    hive_.anySecurity = first;
  }

  SecurityCell NextOf(SecurityCell security) const { return cells_.Get(security, SecurityField::kNext); }

  void CheckValues(KeyCell key) {
    const std::size_t count = cells_.Get(key, KeyField::kValueCount);
    const ValueListCell list = cells_.Get(key, KeyField::kValueList);
    if (count == 0) {
      if (!list.IsNone()) noValues_.push_back(key);
      return;
    }
    records_.Claim(Owner(key), list, count * 4, "list of values");
    for (std::size_t at = 0; at < count; ++at) {
      const ValueCell value = cells_.Get(list, ValueEntry(at));
      records_.ClaimValue(list, value);
      records_.ClaimData(value);
    }
  }

  void Enter(KeyCell key) {
    if (records_.HasUncountedSubkeys(key)) records_.Fault(key, kWrongSubkeyCount);
    if (cells_.Get(key, KeyField::kSubkeyCount) == 0) return;
    if (path_.size() + 1 == Hive::kMaxDepth) records_.Fault(key, kNestedTooDeeply);
    Level level;
    level.key = key;
    const ListCell list = cells_.Get(key, KeyField::kSubkeyList);
    records_.ClaimList(Owner(key), list);
    if (records_.IsIndex(list)) {
      records_.CheckEntries(list);
      level.index = list;
    } else {
      EnterLeaf(level, list);
    }
    path_.push_back(level);
  }

  void EnterLeaf(Level& level, ListCell leaf) {
    records_.CheckLeaf(leaf);
    records_.CheckEntries(leaf);
    level.leaf = leaf;
    level.nextEntry = 0;
  }

  /// The next subkey that a level's lists name, which may have any number; nothing after the last one.
  std::optional<KeyCell> Next(Level& level) {
    if (!level.leaf || level.nextEntry == records_.EntryCount(*level.leaf)) {
      if (!level.index || level.nextLeaf == records_.EntryCount(*level.index)) {
        if (level.seen != cells_.Get(level.key, KeyField::kSubkeyCount)) records_.Fault(level.key, kWrongSubkeyCount);
        return std::nullopt;
      }
      const ListCell leaf = records_.Leaf(*level.index, level.nextLeaf++);
      records_.ClaimList(Owner(*level.index), leaf);
      EnterLeaf(level, leaf);
    }
    ++level.seen;
    PrefetchAfter(*level.leaf, level.nextEntry);
    return records_.Subkey(*level.leaf, level.nextEntry++);
  }

  /// The walk is in the order of names, which are all over the file: without prefetching it would wait for memory at
  /// every record of every key. Each stage reads what the stage before it has fetched.
  void PrefetchAfter(ListCell leaf, std::size_t entry) const {
    const std::size_t count = cells_.Get(leaf, ListField::kCount);
    const RecordTag tag = cells_.Tag(leaf);
    const auto key = [&](std::size_t ahead) {
      return entry + ahead < count ? cells_.Get(leaf, LeafEntry(tag, entry + ahead)) : KeyCell();
    };
    const auto values = [&](std::size_t ahead) { return cells_.Peek(key(ahead), KeyField::kValueList); };
    cells_.Prefetch(key(16));
    cells_.Prefetch(values(12));
    for (const std::size_t value : {std::size_t{0}, std::size_t{1}}) {
      cells_.Prefetch(cells_.Peek(values(8), ValueEntry(value)));
      cells_.Prefetch(cells_.Peek(cells_.Peek(values(4), ValueEntry(value)), ValueField::kData));
    }
  }

  void CheckChild(Level& level, KeyCell subkey) {
    records_.ClaimSubkey(Owner(*level.leaf), subkey);
    CheckContent(subkey);
    if (cells_.Get(subkey, KeyField::kParent) != level.key) records_.Fault(subkey, "the key names another parent");
    if (level.previous && CompareName(KeyName(hive_, *level.previous), KeyName(hive_, subkey)) >= 0) {
      hive_.unordered.insert(level.key);
    }
    level.previous = subkey;
    Enter(subkey);
  }

  /// A count that is too low would free a descriptor that is still in use; so would a count of a descriptor without
  /// keys that is so high that it wraps to 0 when keys share the descriptor.
  void CorrectSecurityCounts() {
    for (const auto& [security, count] : securityCounts_) {
      const std::uint32_t unused = std::min(cells_.Get(security, SecurityField::kCount), std::uint32_t{1});
      cells_.Put(security, SecurityField::kCount, count > 0 ? count : unused);
    }
  }

  HiveData& hive_;
  HiveCells& cells_;
  RecordChecker records_;
  std::vector<Level> path_;
  std::vector<KeyCell> noValues_;  ///< keys without values that name a list of them
  std::unordered_map<SecurityCell, std::uint32_t> securityCounts_;
};

}  // namespace

void CheckHive(HiveData& hive) {
  Checker(hive).Run();
}

}  // namespace quillbox
