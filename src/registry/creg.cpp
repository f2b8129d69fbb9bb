// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/creg.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "registry/creg_entries.h"
#include "registry/creg_layout.h"
#include "registry/hive_damage.h"
#include "registry/hive_records.h"

namespace quillbox {

namespace {

constexpr const char* kDoing = "opening the registry file";
constexpr const char* kInAnotherPlace = "the offset of a subkey leads to a key that is in another place already";
constexpr std::uint16_t kKnownMajor = 1;

/// Types whose data are text.
constexpr std::uint32_t kText = 1;
constexpr std::uint32_t kExpandText = 2;
constexpr std::uint32_t kTexts = 7;

bool IsText(std::uint32_t type) {
  return type == kText || type == kExpandText || type == kTexts;
}

std::string_view AsText(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};  // NOLINT: bytes as they are
}

/// Which places of the tree belong to nodes already, so that the walk ends.
class NodeClaims {
 public:
  explicit NodeClaims(std::size_t treeSize) : size_(treeSize), taken_(treeSize / CregNode::kUnit) {}

  bool IsPossible(std::uint32_t node) const {
    return node >= CregTree::kHead && node % CregNode::kUnit == 0 && size_ >= CregNode::kSize &&
           node <= size_ - CregNode::kSize;
  }
  bool IsFree(std::uint32_t node) const {
    const auto [first, last] = Units(node);
    return std::find(first, last, true) == last;
  }
  void Claim(std::uint32_t node) {
    const auto [first, last] = Units(node);
    std::fill(taken_.begin() + (first - taken_.cbegin()), taken_.begin() + (last - taken_.cbegin()), true);
  }

 private:
  std::pair<std::vector<bool>::const_iterator, std::vector<bool>::const_iterator> Units(std::uint32_t node) const {
    const auto first = taken_.begin() + node / CregNode::kUnit;
    return {first, first + CregNode::kSize / CregNode::kUnit};
  }

  std::size_t size_;
  std::vector<bool> taken_;
};

class CregReader {
 public:
  CregReader(HiveData& hive, ByteView file, const CodePage& codePage, DamagedParts damaged)
      : hive_(hive),
        file_(file),
        codePage_(codePage),
        faults_(hive, damaged),
        tree_(FindTree()),
        claims_(tree_.size()),
        entries_(file, faults_) {}

  void Run() {
    TakeRoot();
    TakePending();
    if (isTreeBroken_) {
      FindOrphans();
      TakeOrphans();
    }
    while (!misplaced_.empty()) {
      const Misplaced next = misplaced_.back();
      misplaced_.pop_back();
      TakeMisplaced(next);
      TakePending();
      TakeOrphans();
    }
  }

 private:
  struct Key {
    std::uint32_t node = 0;
    KeyCell cell;
    std::size_t depth = 0;  ///< 1 for the root
  };
  /// A node in the list of a key that it does not name as its parent.
  struct Misplaced {
    Key parent;
    std::size_t namedAt = 0;  ///< the offset of the list's field that names it
    std::uint32_t node = 0;
  };

  // The file's frame

  /// The tree as far as the file holds it.
  ByteView FindTree() {
    const auto version = [&](std::size_t field) { return Load16(file_.data() + field); };
    if (file_.size() < 4 || Load32(file_.data()) != kCregTag) {
      faults_.Refuse(0, "it does not begin with \"CREG\", so it is not a registry file of Windows 95, 98 or Me");
    }
    if (file_.size() < CregTree::kAt + CregTree::kHead) {
      faults_.Refuse(file_.size(), "the file ends here, within its first 64 bytes");
    }
    if (version(CregHeader::kMajor) != kKnownMajor) {
      faults_.Refuse(CregHeader::kMinor, "its format is version " + std::to_string(version(CregHeader::kMajor)) + "." +
                                             std::to_string(version(CregHeader::kMinor)) +
                                             "; only version 1 can be read");
    }
    const ByteView rest = file_.subspan(CregTree::kAt);
    if (Load32(rest.data()) != kCregTreeTag) faults_.OfFile(CregTree::kAt, "the tree of the keys does not begin here");
    const std::size_t blocks = Load32(file_.data() + CregHeader::kBlocks);
    const std::size_t length = Load32(rest.data() + CregTree::kLength);
    if (length >= CregTree::kHead && length <= rest.size() && CregTree::kAt + length <= blocks) {
      return rest.first(length);
    }
    faults_.OfFile(CregTree::kAt + CregTree::kLength,
                   "the tree of the keys is " + std::to_string(length) + " bytes long, which it cannot be");
    const bool areBlocksInFile = blocks > CregTree::kAt + CregTree::kHead && blocks <= file_.size();
    return areBlocksInFile ? rest.first(blocks - CregTree::kAt) : rest;
  }

  std::uint32_t Node(std::uint32_t node, std::size_t field) const { return Load32(tree_.data() + node + field); }
  CregReference EntryOf(std::uint32_t node) const {
    return {Load16(tree_.data() + node + CregNode::kBlock), Load16(tree_.data() + node + CregNode::kEntry)};
  }
  static std::size_t OffsetOf(std::uint32_t node) { return CregTree::kAt + node; }

  /// True when the node has the entry of a key that nobody else has.
  bool NamesAnEntry(std::uint32_t node) {
    const CregFoundEntry* entry = entries_.Find(EntryOf(node));
    return entry != nullptr && !entry->isTaken && Load16(&file_[entry->offset + CregEntry::kNameLength]) > 0;
  }

  // Keys

  void TakeRoot() {
    std::uint32_t root = Load32(tree_.data() + CregTree::kRoot);
    if (!claims_.IsPossible(root)) {
      constexpr const char* kNowhere = "the root key's offset leads to no key";
      if (!claims_.IsPossible(CregTree::kHead)) faults_.Refuse(CregTree::kAt + CregTree::kRoot, kNowhere);
      faults_.OfFile(CregTree::kAt + CregTree::kRoot, kNowhere);
      root = CregTree::kHead;
    }
    claims_.Claim(root);
    const Key key{root, hive_.root, 1};
    if (EntryOf(root).number != kNoCregEntry) {
      if (CregFoundEntry* entry = TakeEntry(key, root)) TakeValues(key.cell, *entry);
    }
    Reached(key);
  }

  void Reached(const Key& key) {
    pending_.push_back(key);
    if (faults_.AreLeftOut()) reached_.push_back(key);
  }

  void TakePending() {
    while (!pending_.empty()) {
      const Key key = pending_.back();
      pending_.pop_back();
      TakeSubkeys(key);
    }
  }

  void TakeSubkeys(const Key& key) {
    std::uint32_t owner = key.node;
    std::size_t field = CregNode::kFirstChild;
    for (std::uint32_t node = Node(owner, field); node != kNoCregNode; node = Node(owner, field)) {
      if (!IsNextNode(key, OffsetOf(owner) + field, node)) return;
      TakeKey(key, node);
      owner = node;
      field = CregNode::kNext;
    }
  }

  /// False with a note when the node, named at `offset`, cannot be the next one in the key's list.
  bool IsNextNode(const Key& key, std::size_t offset, std::uint32_t node) {
    const char* fault = nullptr;
    if (!claims_.IsPossible(node)) {
      fault = "the offset of a subkey leads to no key";
    } else if (!claims_.IsFree(node)) {
      fault = kInAnotherPlace;
    } else if (Node(node, CregNode::kParent) != key.node) {
      isTreeBroken_ = true;
      // Which of the two offsets is wrong shows when all other keys have been found.
      if (!faults_.AreLeftOut()) faults_.OfKey(key.cell, {}, OffsetOf(node), "a subkey's parent offset is wrong");
      misplaced_.push_back({key, offset, node});
      return false;
    }
    if (fault == nullptr) return true;
    isTreeBroken_ = true;
    faults_.OfKey(key.cell, {}, offset, fault);
    return false;
  }

  /// Null with a note when the node's entry is not there or is another key's.
  CregFoundEntry* TakeEntry(const Key& parent, std::uint32_t node) {
    const CregReference reference = EntryOf(node);
    CregFoundEntry* entry = entries_.Find(reference);
    if (entry != nullptr && !entry->isTaken) {
      entry->isTaken = true;
      return entry;
    }
    const std::string what = "entry " + std::to_string(reference.number) + " of block " +
                             std::to_string(reference.block) + ", which names a key here, ";
    faults_.OfKey(parent.cell, {}, OffsetOf(node) + CregNode::kEntry,
                  what + (entry == nullptr ? "is not there" : "belongs to another key already"));
    return nullptr;
  }

  /// The new key; nothing with a note, unless it holds nothing at all, where it cannot be one.
  std::optional<KeyCell> TakeKey(const Key& parent, std::uint32_t node) {
    claims_.Claim(node);
    // A key gets its name from its entry: one with neither an entry nor subkeys holds nothing at all.
    const bool hasEntry = EntryOf(node).number != kNoCregEntry;
    if (!hasEntry && Node(node, CregNode::kFirstChild) == kNoCregNode) return std::nullopt;
    CregFoundEntry* entry = TakeEntry(parent, node);
    if (entry == nullptr) return std::nullopt;
    const std::optional<NewName> name = NameOf(parent, *entry);
    if (!name) return std::nullopt;
    const char* full = nullptr;
    if (parent.depth == Hive::kMaxDepth) full = kNestedTooDeeply;
    if (!CanTakeSubkey(hive_, parent.cell)) full = "the key's list of subkeys is full";
    if (full != nullptr) {
      faults_.OfKey(parent.cell, {}, OffsetOf(node), full);
      return std::nullopt;
    }
    RequireSpace(hive_, parent.cell, kDoing, name->StoredSize() + KeyField::kName);
    const KeyCell cell = MakeKey(hive_, parent.cell, *name, hive_.cells.Get(hive_.root, KeyField::kSecurity));
    InsertSubkey(hive_, cell);
    TakeValues(cell, *entry);
    Reached({node, cell, parent.depth + 1});
    return cell;
  }

  /// The key's name; nothing with a note where no key can be called so.
  std::optional<NewName> NameOf(const Key& parent, const CregFoundEntry& entry) {
    const std::size_t length = Load16(&file_[entry.offset + CregEntry::kNameLength]);
    const char* fault = nullptr;
    std::optional<NewName> name;
    if (length > entry.length - CregEntry::kHead) {
      fault = "a subkey's name does not fit into its entry";
    } else {
      name.emplace(codePage_.Decode(AsText(file_.subspan(entry.offset + CregEntry::kHead, length))));
      if (name->units.empty()) fault = "a subkey has no name";
      if (name->units.size() > Hive::kMaxNameUnits) fault = "a subkey's name is too long";
      if (name->units.find(u'\\') != std::u16string::npos) fault = "a subkey's name holds a backslash";
    }
    if (fault == nullptr) return name;
    faults_.OfKey(parent.cell, {}, entry.offset, fault);
    return std::nullopt;
  }

  // Values

  void TakeValues(KeyCell key, const CregFoundEntry& entry) {
    const std::uint8_t* head = &file_[entry.offset];
    const std::size_t start = CregEntry::kHead + Load16(head + CregEntry::kNameLength);
    std::size_t used = Load32(head + CregEntry::kUsed);
    if (start > entry.length) return faults_.OfKey(key, {}, entry.offset, "its name does not fit into its entry");
    const bool isUsedRight = used >= start && used <= entry.length;
    if (!isUsedRight) {
      faults_.OfKey(key, {}, entry.offset + CregEntry::kUsed,
                    "its entry uses " + std::to_string(used) + " bytes, which it cannot");
      used = entry.length;
    }
    std::size_t at = start;
    const auto takeNext = [&] {
      const ByteView rest = file_.subspan(entry.offset + at, used - at);
      const std::optional<std::size_t> length = CregValueLength(rest);
      if (!length) return false;
      TakeValue(key, entry.offset + at, rest.first(*length));
      at += *length;
      return true;
    };
    std::size_t left = Load16(head + CregEntry::kValueCount);
    while (left > 0 && takeNext()) --left;
    if (left > 0) {
      faults_.OfKey(key, {}, entry.offset + at,
                    std::to_string(left) + (left == 1 ? " value does" : " values do") + " not fit into its entry");
    } else if (isUsedRight && used - at >= CregValue::kHead) {
      faults_.OfKey(key, {}, entry.offset + CregEntry::kValueCount, "its entry has more values than their number says");
      while (takeNext()) continue;
    }
  }

  void TakeValue(KeyCell key, std::size_t offset, ByteView value) {
    const std::size_t nameLength = Load16(value.data() + CregValue::kNameLength);
    const std::uint32_t type = Load32(value.data() + CregValue::kType);
    const std::string text = codePage_.Decode(AsText(value.subspan(CregValue::kHead, nameLength)));
    const NewName name(text);
    if (name.units.size() > Hive::kMaxValueNameUnits) {
      return faults_.OfKey(key, ValueInNotes(text), offset, "its name is too long");
    }
    if (FindValue(hive_, key, name)) {
      return faults_.OfKey(key, ValueInNotes(text), offset, "another value of the key has its name");
    }
    const Bytes data = DataOf(type, value.subspan(CregValue::kHead + nameLength));
    RequireSpace(hive_, key, kDoing, name.StoredSize() + data.size() + data.size() / 4);
    WriteValue(hive_, key, name, type, data);
  }

  /// The data as hives have them.
  Bytes DataOf(std::uint32_t type, ByteView stored) const {
    if (!IsText(type)) return {stored.begin(), stored.end()};
    std::u16string units = ToUtf16(codePage_.Decode(AsText(stored)));
    if (units.empty() || units.back() != u'\0') units += u'\0';
    return Utf16Bytes(units);
  }

  // What broken lists of subkeys do not lead to

  /// Notes nodes in use that no list has named so far, by the parents that they name.
  void FindOrphans() {
    if (!faults_.AreLeftOut()) return;
    for (std::uint32_t node = CregTree::kHead; claims_.IsPossible(node); node += CregNode::kUnit) {
      const std::uint32_t parent = Node(node, CregNode::kParent);
      if ((Node(node, CregNode::kFlags) & kFreeCregNode) == 0 && claims_.IsPossible(parent) && claims_.IsFree(node) &&
          NamesAnEntry(node)) {
        orphans_.emplace_back(parent, node);
      }
    }
    std::sort(orphans_.begin(), orphans_.end());
  }

  /// Gives each key that was reached those nodes that name it as their parent.
  void TakeOrphans() {
    for (; seen_ < reached_.size(); ++seen_) {
      const Key key = reached_[seen_];
      for (auto orphan = std::lower_bound(orphans_.begin(), orphans_.end(), std::pair(key.node, std::uint32_t{0}));
           orphan != orphans_.end() && orphan->first == key.node; ++orphan) {
        if (!claims_.IsFree(orphan->second) || !NamesAnEntry(orphan->second)) continue;
        TakeKey(key, orphan->second);
      }
      TakePending();
    }
  }

  void TakeMisplaced(const Misplaced& found) {
    if (!claims_.IsFree(found.node)) {
      return faults_.OfKey(found.parent.cell, {}, found.namedAt, kInAnotherPlace);
    }
    const std::optional<KeyCell> key = TakeKey(found.parent, found.node);
    faults_.OfKey(key.value_or(found.parent.cell), {}, OffsetOf(found.node),
                  key ? "its parent offset is wrong; corrected" : "a subkey's parent offset is wrong");
  }

  HiveData& hive_;
  ByteView file_;
  const CodePage& codePage_;
  CregFaults faults_;
  ByteView tree_;
  NodeClaims claims_;
  CregEntries entries_;
  std::vector<Key> pending_;  ///< keys whose subkeys are not taken yet
  std::vector<Key> reached_;  ///< all keys, where damaged parts are left out
  std::size_t seen_ = 0;      ///< how many of those have their orphans
  bool isTreeBroken_ = false;
  std::vector<Misplaced> misplaced_;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> orphans_;  ///< the parent, the node
};

}  // namespace

void ReadCreg(HiveData& hive, ByteView file, const CodePage& codePage, DamagedParts damaged) {
  MakeEmptyHive(hive, "Root");
  CregReader(hive, file, codePage, damaged).Run();
}

}  // namespace quillbox
