// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstring>

#include "registry/hive_data.h"
#include "text/message_text.h"

namespace quillbox {

namespace {

/// What a copied record needs in addition to its own bytes: cell header, entries in lists, rounding.
constexpr std::uint64_t kRecordOverhead = 32;

/// A key of one hive that becomes one of another.
struct KeyPair {
  KeyCell to;
  KeyCell from;
};

/// Copies keys of one hive into another one, security descriptors once each.
class TreeCopier {
 public:
  TreeCopier(HiveData& hive, const HiveData& source) : hive_(hive), source_(source), pool_(hive) {}

  void Copy(KeyPair top) {
    const SecurityCell oldSecurity = hive_.cells.Get(top.to, KeyField::kSecurity);
    CopyFields(top);
    CopyContent(top);
    std::vector<KeyPair> pending{top};
    while (!pending.empty()) {
      const KeyPair parent = pending.back();
      pending.pop_back();
      for (const KeyCell subkey : SubkeyCells(source_, parent.from)) {
        const KeyPair copied{.to = CopyKeyRecord(hive_, parent.to, {source_, subkey}), .from = subkey};
        CopyContent(copied);
        InsertSubkey(hive_, copied.to);
        pending.push_back(copied);
      }
    }
    // At the end, since the pool may give it out again.
    if (!source_.cells.Get(top.from, KeyField::kSecurity).IsNone()) {
      ReleaseSecurity(hive_, oldSecurity);
    }
  }

 private:
  /// The flags that do not depend on the key's place or its name's form, and what newer systems keep with them.
  void CopyFields(KeyPair key) {
    const auto [to, from] = key;
    constexpr std::uint16_t kOwn = KeyFlag::kRoot | KeyFlag::kNoDelete | KeyFlag::kOneByteName;
    HiveCells& cells = hive_.cells;
    const unsigned flags =
        (cells.Get(to, KeyField::kFlags) & kOwn) | (source_.cells.Get(from, KeyField::kFlags) & ~unsigned{kOwn});
    cells.Put(to, KeyField::kFlags, static_cast<std::uint16_t>(flags));
    cells.Put(to, KeyField::kAccess, source_.cells.Get(from, KeyField::kAccess));
    cells.Put(to, KeyField::kMoreFlags, source_.cells.Get(from, KeyField::kMoreFlags));
    cells.Put(to, KeyField::kWork, source_.cells.Get(from, KeyField::kWork));
  }

  /// Values, class name and security of one key.
  void CopyContent(KeyPair key) {
    const auto [to, from] = key;
    SetClass(hive_, to, KeyClass(source_, from));
    CopySecurity(key);
    const std::size_t count = source_.cells.Get(from, KeyField::kValueCount);
    for (std::size_t at = 0; at < count; ++at) CopyValue(hive_, to, source_, ValueOf(source_, from, at));
  }

  /// A key without a descriptor keeps the one it has, or gets its parent's.
  void CopySecurity(KeyPair key) {
    const auto [to, from] = key;
    HiveCells& cells = hive_.cells;
    const SecurityCell theirs = source_.cells.Get(from, KeyField::kSecurity);
    if (!theirs.IsNone()) {
      cells.Put(to, KeyField::kSecurity, Shared(theirs));
    } else if (cells.Get(to, KeyField::kSecurity).IsNone() && to != hive_.root) {
      const SecurityCell inherited = cells.Get(cells.Get(to, KeyField::kParent), KeyField::kSecurity);
      ShareSecurity(hive_, inherited);
      cells.Put(to, KeyField::kSecurity, inherited);
    }
  }

  SecurityCell Shared(SecurityCell theirs) {
    const auto known = security_.find(theirs);
    if (known == security_.end()) {
      const SecurityCell security = pool_.Share(Descriptor(source_, theirs));
      security_.emplace(theirs, security);
      return security;
    }
    ShareSecurity(hive_, known->second);
    return known->second;
  }

  HiveData& hive_;
  const HiveData& source_;
  SecurityPool pool_;
  std::unordered_map<SecurityCell, SecurityCell> security_;
};

/// Adds up the space that a tree needs in another hive, and throws at what exceeds a limit.
class TreeMeasure {
 public:
  TreeMeasure(const HiveData& hive, SourceKey from, std::string doing)
      : hive_(hive), source_(from.hive), from_(from.key), doing_(std::move(doing)) {}

  /// `depth`: of the key that the copy goes to.
  std::uint64_t Measure(std::size_t depth) {
    std::vector<std::pair<KeyCell, std::size_t>> pending{{from_, depth}};
    while (!pending.empty()) {
      const auto [key, level] = pending.back();
      pending.pop_back();
      if (level > Hive::kMaxDepth) {
        ThrowRefusal(source_, key, HiveLimit::Depth, doing_,
                     "keys can be nested " + std::to_string(Hive::kMaxDepth) + " levels deep and no deeper");
      }
      AddKey(key);
      for (const KeyCell subkey : SubkeyCells(source_, key)) pending.emplace_back(subkey, level + 1);
    }
    return size_;
  }

 private:
  void AddKey(KeyCell key) {
    const HiveCells& cells = source_.cells;
    size_ += cells.Room(key) + cells.Get(key, KeyField::kClassLength) + 2 * kRecordOverhead;
    const SecurityCell security = cells.Get(key, KeyField::kSecurity);
    if (!security.IsNone() && security_.insert(security).second) size_ += cells.Room(security) + kRecordOverhead;
    for (std::size_t at = 0; at < cells.Get(key, KeyField::kValueCount); ++at) {
      AddValue(key, ValueOf(source_, key, at));
    }
  }

  void AddValue(KeyCell key, ValueCell value) {
    const std::uint64_t data = ValueSize(source_, value);
    if (const std::string fault = DataFault(hive_, data); !fault.empty()) {
      ThrowRefusal(source_, key, HiveLimit::Data, doing_,
                   "value \"" + ShortName(NameText(ValueName(source_, value))) + "\": " + fault);
    }
    // Big data are in pieces that do not fill their bins: a quarter more is enough.
    size_ += source_.cells.Room(value) + data + data / 4 + 3 * kRecordOverhead;
    if (data > Hive::kBigDataLimit) size_ += 3 * kHivePage;
  }

  const HiveData& hive_;
  const HiveData& source_;
  KeyCell from_;
  std::string doing_;
  std::uint64_t size_ = 0;
  std::unordered_set<SecurityCell> security_;
};

}  // namespace

void CopyTree(HiveData& hive, KeyCell to, SourceKey from) {
  TreeCopier(hive, from.hive).Copy({.to = to, .from = from.key});
}

void RequireCopy(const HiveData& hive, KeyCell to, SourceKey from, const std::string& doing) {
  const std::uint64_t size = TreeMeasure(hive, from, doing).Measure(KeyDepth(hive, to));
  RequireSpace(hive, to, doing, size);
}

}  // namespace quillbox
