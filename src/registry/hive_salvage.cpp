// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_salvage.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "registry/hive_damage.h"
#include "registry/hive_records.h"

namespace quillbox {

namespace {

constexpr const char* kDoing = "opening the hive";

using Owner = RecordChecker::Owner;

/// A hive to read from, with its cells scanned and its root known.
struct Damaged {
  HiveData hive;
};

/// Walks a damaged hive from its root, and copies what passes the same checks as a whole hive's records into a new one.
class Salvager {
 public:
  /// `hive`: without keys.
  Salvager(HiveData& hive, Damaged damaged)
      : hive_(hive),
        damaged_(std::move(damaged.hive)),
        cells_(damaged_.cells),
        records_(damaged_, RecordChecker::Cells::Likely),
        pool_(hive) {}

  void Run() {
    records_.ClaimRoot();
    hive_.root = CopyKeyRecord(hive_, KeyCell(), {damaged_, damaged_.root});
    Store32(hive_.cells.Base() + BaseField::kRoot, hive_.root.offset);
    CopyContent({damaged_.root, hive_.root, 1});
    CopyBelow();
    FindOrphans();
    CopyOrphans();
    while (!misplaced_.empty()) {
      const Misplaced next = misplaced_.back();
      misplaced_.pop_back();
      TakeSubkey(next.parent, Owner(next.list), next.key);
      CopyBelow();
      CopyOrphans();
    }
    for (const Key& key : uncertainValues_) CopyUncertainValues(key);
    CheckLinks();
  }

 private:
  struct Key {
    KeyCell from;           ///< in the damaged hive
    KeyCell to;             ///< in the new one
    std::size_t depth = 0;  ///< 1 for the root
  };
  /// A key in a list of one key that names another as its parent.
  struct Misplaced {
    Key parent;
    ListCell list;
    KeyCell key;
  };

  void Note(KeyCell to, const Error& fault) { NoteOf(to, {}, fault.Place().offset.value_or(0), fault.Why()); }

  /// Notes a damage of the new hive's key `to`, or of its value `value`.
  void NoteOf(KeyCell to, const std::string& value, std::uint64_t offset, std::string fault) {
    AddKeyDamage(hive_, to, value, offset, std::move(fault));
  }

  void NoteCell(KeyCell to, Cell cell, std::string fault) { NoteOf(to, {}, kHivePage + cell.offset, std::move(fault)); }

  /// False when `check` met a fault, which is then noted as one of the key `to`.
  template <typename Check>
  bool Passes(KeyCell to, Check check) {
    try {
      check();
      return true;
    } catch (const Error& fault) {
      Note(to, fault);
      return false;
    }
  }

  void CopyBelow() {
    while (!pending_.empty()) {
      const Key key = pending_.back();
      pending_.pop_back();
      CopySubkeys(key);
    }
  }

  /// All of a key but its subkeys, which are left for later.
  void CopyContent(const Key& key) {
    if (Passes(key.to, [&] { records_.ClaimClass(key.from); })) SetClass(hive_, key.to, KeyClass(damaged_, key.from));
    CopySecurity(key);
    CopyValues(key);
    pending_.push_back(key);
  }

  // Security descriptors

  void CopySecurity(const Key& key) {
    const SecurityCell theirs = cells_.Get(key.from, KeyField::kSecurity);
    if (theirs.IsNone()) return;
    ClaimDescriptor(Owner(key.from), theirs);
    if (const auto broken = brokenDescriptors_.find(theirs); broken != brokenDescriptors_.end()) {
      const bool isInCell = broken->second.offset == kHivePage + theirs.offset;
      NoteCell(key.to, isInCell ? Cell(theirs) : Cell(key.from), broken->second.fault);
      hive_.cells.Put(key.to, KeyField::kSecurity, Inherited(key.to));
      return;
    }
    SecurityCell& ours = descriptors_[theirs];
    if (ours.IsNone()) {
      ours = pool_.Share(Descriptor(damaged_, theirs));
    } else {
      ShareSecurity(hive_, ours);
    }
    hive_.cells.Put(key.to, KeyField::kSecurity, ours);
  }

  SecurityCell Inherited(KeyCell to) {
    if (to == hive_.root) return pool_.Share(DefaultDescriptor());
    const KeyCell parent = hive_.cells.Get(to, KeyField::kParent);
    const SecurityCell security = hive_.cells.Get(parent, KeyField::kSecurity);
    ShareSecurity(hive_, security);
    return security;
  }

  /// Puts a descriptor that `owner` names into one of the two sets, unless it is in one.
  void ClaimDescriptor(Owner owner, SecurityCell security) {
    if (descriptors_.contains(security) || brokenDescriptors_.contains(security)) return;
    try {
      records_.ClaimDescriptor(owner, security);
    } catch (const Error& fault) {
      brokenDescriptors_[security] = {{}, fault.Place().offset.value_or(0), fault.Why()};
      return;
    }
    RequireSpace(hive_, hive_.root, kDoing, cells_.Get(security, SecurityField::kSize));
    descriptors_.emplace(security, SecurityCell());
    order_.push_back(security);
  }

  /// The links between the descriptors are not needed to read anything, but they may be damaged too.
  void CheckLinks() {
    for (std::size_t at = 0; at < order_.size();) {
      const SecurityCell security = order_[at++];  // which may get more
      const SecurityCell next = cells_.Get(security, SecurityField::kNext);
      const bool isKnown = descriptors_.contains(next) || brokenDescriptors_.contains(next);
      ClaimDescriptor(Owner(security), next);
      if (const auto broken = brokenDescriptors_.find(next); broken != brokenDescriptors_.end()) {
        if (!isKnown) AddDamage(hive_, kWholeFile, broken->second.offset, broken->second.fault);
      } else if (cells_.Get(next, SecurityField::kPrevious) != security) {
        AddDamage(hive_, kWholeFile, kHivePage + next.offset, kUnlinkedSecurity);
      }
    }
  }

  // Values

  void CopyValues(const Key& key) {
    const std::size_t count = cells_.Get(key.from, KeyField::kValueCount);
    const ValueListCell list = cells_.Get(key.from, KeyField::kValueList);
    if (count == 0) {
      if (!list.IsNone()) uncertainValues_.push_back(key);
      return;
    }
    constexpr const char* kWhat = "list of values";
    if (!Passes(key.to, [&] { records_.Claim(Owner(key.from), list, kWhat); })) return;
    if (cells_.Room(list) / 4 < count) {
      NoteCell(key.to, list, RecordChecker::TooShortFor(kWhat));
      uncertainValues_.push_back(key);
      return;
    }
    if (!Passes(key.to, [&] { records_.Take(list, count * 4); })) return;
    for (std::size_t at = 0; at < count; ++at) CopyOneValue(key, list, cells_.Get(list, ValueEntry(at)));
  }

  void CopyOneValue(const Key& key, ValueListCell list, ValueCell value) {
    std::string name;
    try {
      records_.ClaimValue(list, value);
      name = ValueInNotes(NameText(ValueName(damaged_, value)));
      records_.ClaimData(value);
      if (const std::uint64_t size = ValueSize(damaged_, value); hive_.minor > 3) {
        if (const std::string why = DataFault(hive_, size); !why.empty()) records_.Fault(value, why);
      }
    } catch (const Error& fault) {
      NoteOf(key.to, name, fault.Place().offset.value_or(0), fault.Why());
      return;
    }
    const std::uint64_t size = ValueSize(damaged_, value);
    RequireSpace(hive_, key.to, kDoing, size + size / 4 + cells_.Get(value, ValueField::kNameLength));
    CopyValue(hive_, key.to, damaged_, value);
  }

  /// The values of a list whose end is not known: the rest of an older, longer list may follow it. So these lists come
  /// after all others, and take only what looks like a value.
  void CopyUncertainValues(const Key& key) {
    const ValueListCell list = cells_.Get(key.from, KeyField::kValueList);
    if (cells_.Get(key.from, KeyField::kValueCount) == 0) {
      if (!records_.HasUncountedValues(key.from)) return;
      NoteCell(key.to, key.from, kWrongValueCount);
      if (!Passes(key.to, [&] { records_.Claim(Owner(key.from), list, "list of values"); })) return;
    }
    for (std::size_t at = 0; at < cells_.Room(list) / 4; ++at) {
      const ValueCell value = cells_.Get(list, ValueEntry(at));
      if (records_.IsFree(value, kValueTag, ValueField::kName)) CopyOneValue(key, list, value);
    }
  }

  // Subkeys

  void CopySubkeys(const Key& key) {
    const std::uint64_t faults = hive_.damageCount;
    const std::uint32_t count = cells_.Get(key.from, KeyField::kSubkeyCount);
    const bool uncounted = records_.HasUncountedSubkeys(key.from);
    if (uncounted) NoteCell(key.to, key.from, kWrongSubkeyCount);
    if (count == 0 && !uncounted) return;
    if (key.depth == Hive::kMaxDepth) {
      NoteCell(key.to, key.from, kNestedTooDeeply);
      return;
    }
    const ListCell list = cells_.Get(key.from, KeyField::kSubkeyList);
    if (Passes(key.to, [&] { ClaimOwnList(key.from, list); })) {
      const std::uint64_t seen = records_.IsIndex(list) ? CopyLeaves(key, list) : CopyLeaf(key, list);
      if (seen != count && hive_.damageCount == faults) NoteCell(key.to, key.from, kWrongSubkeyCount);
    }
    if (hive_.damageCount != faults) incomplete_.push_back(key);
  }

  /// A list that another key names too is left to that key if the list's keys name it as their parent.
  void ClaimOwnList(KeyCell key, ListCell list) {
    if (const auto subkey = records_.FirstSubkey(list)) {
      const KeyCell parent = cells_.Get(*subkey, KeyField::kParent);
      if (parent != key && IsKey(parent) && cells_.Get(parent, KeyField::kSubkeyCount) > 0 &&
          cells_.Get(parent, KeyField::kSubkeyList) == list) {
        records_.Fault(key, "the cell of its list of subkeys belongs to another record already");
      }
    }
    records_.ClaimList(Owner(key), list);
  }

  bool IsKey(Cell cell) {
    return records_.IsCell(cell) && cells_.Room(cell) >= KeyField::kName && cells_.Tag(cell) == kKeyTag;
  }

  /// How many entries of a list are in its cell; `whole` becomes true when these are all.
  std::size_t ReadableEntries(const Key& key, ListCell list, bool& whole) {
    whole = Passes(key.to, [&] { records_.CheckEntries(list); });
    const std::size_t room = (cells_.Room(list) - ListField::kEntries) / records_.EntrySize(list);
    return std::min(records_.EntryCount(list), room);
  }

  /// How many subkeys the lists name.
  std::uint64_t CopyLeaves(const Key& key, ListCell index) {
    bool whole = false;
    const std::size_t count = ReadableEntries(key, index, whole);
    std::uint64_t seen = 0;
    for (std::size_t at = 0; at < count; ++at) {
      const ListCell leaf = records_.Leaf(index, at);
      if (!whole && !records_.IsCell(leaf)) continue;
      if (Passes(key.to, [&] { records_.ClaimList(Owner(index), leaf); })) seen += CopyLeaf(key, leaf);
    }
    return seen;
  }

  std::uint64_t CopyLeaf(const Key& key, ListCell leaf) {
    if (!Passes(key.to, [&] { records_.CheckLeaf(leaf); })) return 0;
    bool whole = false;
    const std::size_t count = ReadableEntries(key, leaf, whole);
    for (std::size_t at = 0; at < count; ++at) {
      const KeyCell subkey = records_.Subkey(leaf, at);
      const bool isKey = records_.IsFree(subkey, kKeyTag, KeyField::kName);
      const bool isOurs = isKey && cells_.Get(subkey, KeyField::kParent) == key.from;
      if (isKey && !isOurs && whole) {
        misplaced_.push_back({key, leaf, subkey});
      } else if (isOurs || whole) {
        TakeSubkey(key, Owner(leaf), subkey);
      }
    }
    return count;
  }

  /// Keys in use that no list has named so far, by the parents that they name.
  void FindOrphans() {
    if (incomplete_.empty()) return;
    for (std::size_t at = 0; at + kCellUnit <= cells_.BinsSize(); at += kCellUnit) {
      const KeyCell cell(static_cast<std::uint32_t>(at));
      if (cells_.Tag(cell) != kKeyTag || !records_.IsFree(cell, kKeyTag, KeyField::kName)) continue;
      orphans_.emplace_back(cells_.Get(cell, KeyField::kParent), cell);
    }
    std::sort(orphans_.begin(), orphans_.end());
  }

  /// Gives keys whose lists could not be read whole those keys that name them as their parents.
  void CopyOrphans() {
    while (!incomplete_.empty()) {
      const Key key = incomplete_.back();
      incomplete_.pop_back();
      for (auto orphan = std::lower_bound(orphans_.begin(), orphans_.end(), std::pair(key.from, KeyCell(0)));
           orphan != orphans_.end() && orphan->first == key.from; ++orphan) {
        if (records_.IsFree(orphan->second, kKeyTag, KeyField::kName)) TakeSubkey(key, Owner(key.from), orphan->second);
      }
      CopyBelow();
    }
  }

  void TakeSubkey(const Key& parent, Owner owner, KeyCell subkey) {
    if (!Passes(parent.to, [&] {
          records_.ClaimSubkey(owner, subkey);
          if (!CanTakeSubkey(hive_, parent.to)) records_.Fault(subkey, "the key's list of subkeys is full");
        })) {
      return;
    }
    const std::size_t room = cells_.Get(subkey, KeyField::kNameLength) + KeyField::kName;
    RequireSpace(hive_, parent.to, kDoing, room + cells_.Get(subkey, KeyField::kClassLength));
    const KeyCell to = CopyKeyRecord(hive_, parent.to, {damaged_, subkey});
    if (cells_.Get(subkey, KeyField::kParent) != parent.from) {
      NoteCell(to, subkey, "its parent offset is wrong; corrected");
    }
    CopyContent({subkey, to, parent.depth + 1});
    InsertSubkey(hive_, to);
  }

  HiveData& hive_;
  HiveData damaged_;
  HiveCells& cells_;  ///< of the damaged hive
  RecordChecker records_;
  SecurityPool pool_;
  std::vector<Key> pending_;  ///< keys whose subkeys are not copied yet
  std::vector<Misplaced> misplaced_;
  std::vector<Key> incomplete_;                       ///< keys of whose subkeys some may be missing
  std::vector<std::pair<KeyCell, KeyCell>> orphans_;  ///< the parent, the key
  std::vector<Key> uncertainValues_;
  std::unordered_map<SecurityCell, SecurityCell> descriptors_;  ///< theirs: ours, none while no key has it
  std::unordered_map<SecurityCell, HiveDamage> brokenDescriptors_;
  std::vector<SecurityCell> order_;  ///< the descriptors as they were met
};

/// As much of the file as cells can be in.
Bytes CutToCells(Bytes file) {
  const std::size_t size = std::min(file.size() - kHivePage, kMaxBinsSize);
  file.resize(kHivePage + size / kCellUnit * kCellUnit);
  return file;
}

}  // namespace

void SalvageHive(HiveData& hive, Bytes file, const Error& fault) {
  const std::size_t named = Load32(file.data() + BaseField::kBinsSize);
  const auto noteFault = [&] { AddDamage(hive, kWholeFile, fault.Place().offset.value_or(0), fault.Why()); };
  const bool isSizeRight = named > 0 && named % kHivePage == 0 && named <= kMaxBinsSize;
  // This was checked before anything else.
  if (!isSizeRight || file.size() - kHivePage < named) noteFault();
  hive.minor = Load32(file.data() + BaseField::kMinor);
  hive.now = Load64(file.data() + BaseField::kTime);
  hive.cells = HiveCells(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(kHivePage)));

  Damaged damaged;
  damaged.hive.name = hive.name;
  damaged.hive.minor = hive.minor;
  damaged.hive.root = KeyCell(Load32(file.data() + BaseField::kRoot));
  damaged.hive.cells = HiveCells(CutToCells(std::move(file)));
  damaged.hive.cells.Scan([&](std::size_t offset, std::string why) {
    // What follows the last bin is not a bin.
    if (isSizeRight && offset >= named) return;
    AddDamage(hive, kWholeFile, kHivePage + offset, std::move(why));
  });
  Salvager(hive, std::move(damaged)).Run();
  if (hive.damage.empty()) noteFault();
}

}  // namespace quillbox
