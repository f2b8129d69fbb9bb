#include <algorithm>

#include "registry/hive_records.h"

namespace quillbox {

namespace {

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
    for (const std::uint32_t key : noValues_) {
      if (records_.HasUncountedValues(key)) records_.Fault(key, kWrongValueCount);
    }
    CorrectSecurityCounts();
  }

 private:
  /// A key whose subkeys are being walked.
  struct Level {
    std::uint32_t key = kNoCell;
    std::optional<std::uint32_t> index;  ///< the `ri`, if any
    std::size_t nextLeaf = 0;
    std::optional<std::uint32_t> leaf;
    std::size_t nextEntry = 0;
    std::uint64_t seen = 0;
    std::optional<std::uint32_t> previous;
  };

  /// What a key's fields lead to beside its subkeys.
  void CheckContent(std::uint32_t key) {
    records_.ClaimClass(key);
    CheckSecurity(key);
    CheckValues(key);
  }

  void CheckSecurity(std::uint32_t key) {
    const std::uint32_t security = cells_.Get32(key, KeyField::kSecurity);
    if (security == kNoCell) return;
    if (!securityCounts_.contains(security)) CheckRing(key, security);
    ++securityCounts_[security];
  }

  void CheckRing(std::uint32_t key, std::uint32_t first) {
    std::uint32_t owner = key;
    std::uint32_t security = first;
    do {
      records_.ClaimDescriptor(owner, security);
      if (security != first && cells_.Get32(security, SecurityField::kPrevious) != owner) {
        records_.Fault(security, kUnlinkedSecurity);
      }
      securityCounts_[security] = 0;
      owner = security;
      security = cells_.Get32(security, SecurityField::kNext);
    } while (security != first);
    if (cells_.Get32(first, SecurityField::kPrevious) != owner) records_.Fault(first, kUnlinkedSecurity);
    hive_.anySecurity = first;
  }

  void CheckValues(std::uint32_t key) {
    const std::size_t count = cells_.Get32(key, KeyField::kValueCount);
    const std::uint32_t list = cells_.Get32(key, KeyField::kValueList);
    if (count == 0) {
      if (list != kNoCell) noValues_.push_back(key);
      return;
    }
    records_.Claim(key, list, count * 4, "list of values");
    for (std::size_t at = 0; at < count; ++at) {
      const std::uint32_t value = cells_.Get32(list, at * 4);
      records_.ClaimValue(list, value);
      records_.ClaimData(value);
    }
  }

  void Enter(std::uint32_t key) {
    if (records_.HasUncountedSubkeys(key)) records_.Fault(key, kWrongSubkeyCount);
    if (cells_.Get32(key, KeyField::kSubkeyCount) == 0) return;
    if (path_.size() + 1 == Hive::kMaxDepth) records_.Fault(key, kNestedTooDeeply);
    Level level;
    level.key = key;
    const std::uint32_t list = cells_.Get32(key, KeyField::kSubkeyList);
    records_.ClaimList(key, list);
    if (records_.IsIndex(list)) {
      records_.CheckEntries(list);
      level.index = list;
    } else {
      EnterLeaf(level, list);
    }
    path_.push_back(level);
  }

  void EnterLeaf(Level& level, std::uint32_t leaf) {
    records_.CheckLeaf(leaf);
    records_.CheckEntries(leaf);
    level.leaf = leaf;
    level.nextEntry = 0;
  }

  /// The next subkey that a level's lists name, any number at all; nothing when all have been seen.
  std::optional<std::uint32_t> Next(Level& level) {
    if (!level.leaf || level.nextEntry == records_.EntryCount(*level.leaf)) {
      if (!level.index || level.nextLeaf == records_.EntryCount(*level.index)) {
        if (level.seen != cells_.Get32(level.key, KeyField::kSubkeyCount)) records_.Fault(level.key, kWrongSubkeyCount);
        return std::nullopt;
      }
      const std::uint32_t leaf = records_.Entry(*level.index, level.nextLeaf++);
      records_.ClaimList(*level.index, leaf);
      EnterLeaf(level, leaf);
    }
    const std::size_t stride = LeafStride(cells_.Tag(*level.leaf));
    ++level.seen;
    PrefetchAfter(*level.leaf, level.nextEntry, stride);
    return cells_.Get32(*level.leaf, ListField::kEntries + stride * level.nextEntry++);
  }

  /// The walk follows names, which leads all over the file: without looking ahead it would wait for memory at every
  /// record of every key. Each stage needs what the one before it has fetched.
  void PrefetchAfter(std::uint32_t leaf, std::size_t entry, std::size_t stride) const {
    const std::size_t count = cells_.Get16(leaf, ListField::kCount);
    const auto key = [&](std::size_t ahead) {
      return entry + ahead < count ? cells_.Get32(leaf, ListField::kEntries + (entry + ahead) * stride) : kNoCell;
    };
    const auto values = [&](std::size_t ahead) { return cells_.Peek(key(ahead), KeyField::kValueList); };
    cells_.Prefetch(key(16));
    cells_.Prefetch(values(12));
    for (const std::size_t first : {std::size_t{0}, std::size_t{4}}) {
      cells_.Prefetch(cells_.Peek(values(8), first));
      cells_.Prefetch(cells_.Peek(cells_.Peek(values(4), first), ValueField::kData));
    }
  }

  void CheckChild(Level& level, std::uint32_t subkey) {
    records_.ClaimSubkey(*level.leaf, subkey);
    CheckContent(subkey);
    if (cells_.Get32(subkey, KeyField::kParent) != level.key) records_.Fault(subkey, "the key names another parent");
    if (level.previous && CompareName(KeyName(hive_, *level.previous), KeyName(hive_, subkey)) >= 0) {
      hive_.unordered.insert(level.key);
    }
    level.previous = subkey;
    Enter(subkey);
  }

  /// A count that is too low would free a descriptor that is still in use; so would one of a descriptor without keys
  /// that is so high that it comes to 0 when keys are given it.
  void CorrectSecurityCounts() {
    for (const auto& [security, count] : securityCounts_) {
      const std::uint32_t unused = std::min(cells_.Get32(security, SecurityField::kCount), std::uint32_t{1});
      cells_.Put32(security, SecurityField::kCount, count > 0 ? count : unused);
    }
  }

  HiveData& hive_;
  HiveCells& cells_;
  RecordChecker records_;
  std::vector<Level> path_;
  std::vector<std::uint32_t> noValues_;  ///< keys without values that name a list of them
  std::unordered_map<std::uint32_t, std::uint32_t> securityCounts_;
};

}  // namespace

void CheckHive(HiveData& hive) {
  Checker(hive).Run();
}

}  // namespace quillbox
