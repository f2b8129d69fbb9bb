#include <utility>

#include "registry/hive_data.h"

namespace quillbox {

namespace {

/// One walk over all that the root leads to. Each cell may belong to one owner only, so the walk ends, and nothing
/// that is freed later is still in use elsewhere.
class Checker {
 public:
  explicit Checker(HiveData& hive) : hive_(hive), cells_(hive.cells), unclaimed_(hive.cells.Used()) {}

  void Run() {
    if (!cells_.IsUsed(hive_.root)) {
      ThrowHiveFault(hive_.name, 0, "the root key's offset leads to no cell in use");
    }
    Claim(hive_.root, hive_.root, KeyField::kName, "root key");
    CheckKey(hive_.root);
    Enter(hive_.root);
    while (!path_.empty()) {
      if (const std::uint32_t subkey = Next(path_.back()); subkey != kNoCell) {
        CheckChild(path_.back(), subkey);
      } else {
        path_.pop_back();
      }
    }
    CorrectSecurityCounts();
  }

 private:
  /// A key whose subkeys are being walked.
  struct Level {
    std::uint32_t key = kNoCell;
    std::uint32_t index = kNoCell;  ///< the `ri`, if any
    std::size_t nextLeaf = 0;
    std::uint32_t leaf = kNoCell;
    std::size_t nextEntry = 0;
    std::uint64_t seen = 0;
    std::uint32_t previous = kNoCell;
  };

  [[noreturn]] void Fault(std::uint32_t cell, std::string why) const {
    ThrowHiveFault(hive_.name, cell, std::move(why));
  }

  /// Makes `cell`, which the record in `owner` names, the owner's.
  void Claim(std::uint32_t owner, std::uint32_t cell, std::size_t size, const char* what) {
    if (!cells_.IsUsed(cell)) Fault(owner, std::string("the offset of its ") + what + " leads to no cell in use");
    if (!unclaimed_.Test(cell)) {
      Fault(owner, std::string("the cell of its ") + what + " belongs to another record already");
    }
    unclaimed_.Clear(cell);
    if (cells_.Room(cell) < size) Fault(cell, std::string("the cell is too short for the ") + what + " in it");
  }

  void RequireTag(std::uint32_t cell, std::uint16_t tag, const char* what) const {
    if (cells_.Tag(cell) != tag) Fault(cell, std::string("the cell does not hold the ") + what + " it should");
  }

  void CheckKey(std::uint32_t key) {
    RequireTag(key, kKeyTag, "key");
    const std::size_t nameLength = cells_.Get16(key, KeyField::kNameLength);
    if (cells_.Room(key) - KeyField::kName < nameLength) Fault(key, "the key's name reaches beyond its cell");
    const std::size_t classLength = cells_.Get16(key, KeyField::kClassLength);
    const std::uint32_t className = cells_.Get32(key, KeyField::kClass);
    if (classLength > 0 && className != kNoCell) Claim(key, className, classLength, "class name");
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
      Claim(owner, security, SecurityField::kDescriptor, "security descriptor");
      RequireTag(security, kSecurityTag, "security descriptor");
      if (cells_.Get32(security, SecurityField::kSize) > cells_.Room(security) - SecurityField::kDescriptor) {
        Fault(security, "the security descriptor reaches beyond its cell");
      }
      if (security != first && cells_.Get32(security, SecurityField::kPrevious) != owner) {
        Fault(security, "the security descriptors are not linked back");
      }
      securityCounts_[security] = 0;
      owner = security;
      security = cells_.Get32(security, SecurityField::kNext);
    } while (security != first);
    if (cells_.Get32(first, SecurityField::kPrevious) != owner) {
      Fault(first, "the security descriptors are not linked back");
    }
    hive_.anySecurity = first;
  }

  void CheckValues(std::uint32_t key) {
    const std::size_t count = cells_.Get32(key, KeyField::kValueCount);
    if (count == 0) return;
    const std::uint32_t list = cells_.Get32(key, KeyField::kValueList);
    Claim(key, list, count * 4, "list of values");
    for (std::size_t at = 0; at < count; ++at) CheckValue(list, cells_.Get32(list, at * 4));
  }

  void CheckValue(std::uint32_t list, std::uint32_t value) {
    Claim(list, value, ValueField::kName, "value");
    RequireTag(value, kValueTag, "value");
    if (cells_.Room(value) - ValueField::kName < cells_.Get16(value, ValueField::kNameLength)) {
      Fault(value, "the value's name reaches beyond its cell");
    }
    const std::uint32_t stored = cells_.Get32(value, ValueField::kDataSize);
    const std::uint32_t size = stored & ~kInlineData;
    if ((stored & kInlineData) != 0) {
      if (size > kMaxInlineData) Fault(value, "a value without a data cell has more than 4 bytes");
    } else if (size > 0) {
      CheckData(value, cells_.Get32(value, ValueField::kData), size);
    }
  }

  void CheckData(std::uint32_t value, std::uint32_t data, std::uint32_t size) {
    Claim(value, data, 0, "data");
    if (!IsBigData(hive_, data, size)) {
      if (cells_.Room(data) < size) Fault(data, "the value's data reach beyond their cell");
      return;
    }
    if (cells_.Room(data) < BigDataField::kEnd) Fault(data, "the cell is too short for big data");
    RequireTag(data, kBigDataTag, "big data");
    const std::size_t count = cells_.Get16(data, BigDataField::kCount);
    if (count != (size + Hive::kBigDataLimit - 1) / Hive::kBigDataLimit) {
      Fault(data, "the number of pieces does not fit the value's size");
    }
    const std::uint32_t list = cells_.Get32(data, BigDataField::kSegments);
    Claim(data, list, count * 4, "list of pieces");
    for (std::size_t at = 0; at < count; ++at) {
      const std::size_t left = size - at * Hive::kBigDataLimit;
      const std::size_t piece = left < Hive::kBigDataLimit ? left : Hive::kBigDataLimit;
      Claim(list, cells_.Get32(list, at * 4), piece, "piece of big data");
    }
  }

  void Enter(std::uint32_t key) {
    if (cells_.Get32(key, KeyField::kSubkeyCount) == 0) return;
    if (path_.size() == Hive::kMaxDepth) Fault(key, "the keys are nested too deeply");
    Level level;
    level.key = key;
    const std::uint32_t list = cells_.Get32(key, KeyField::kSubkeyList);
    Claim(key, list, ListField::kEntries, "list of subkeys");
    if (cells_.Tag(list) == kLeafIndexTag) {
      if (cells_.Room(list) - ListField::kEntries < std::size_t{4} * cells_.Get16(list, ListField::kCount)) {
        Fault(list, "the list of subkeys reaches beyond its cell");
      }
      level.index = list;
    } else {
      CheckLeaf(list);
      level.leaf = list;
    }
    path_.push_back(level);
  }

  void CheckLeaf(std::uint32_t leaf) const {
    const std::uint16_t tag = cells_.Tag(leaf);
    if (!IsLeafTag(tag)) Fault(leaf, "the cell does not hold the list of subkeys it should");
    const std::size_t count = cells_.Get16(leaf, ListField::kCount);
    if (count == 0) Fault(leaf, "the list of subkeys is empty");
    if (cells_.Room(leaf) - ListField::kEntries < count * LeafStride(tag)) {
      Fault(leaf, "the list of subkeys reaches beyond its cell");
    }
  }

  /// The next subkey of a level; kNoCell when all have been seen.
  std::uint32_t Next(Level& level) {
    if (level.leaf == kNoCell || level.nextEntry == cells_.Get16(level.leaf, ListField::kCount)) {
      if (level.index == kNoCell || level.nextLeaf == cells_.Get16(level.index, ListField::kCount)) {
        if (level.seen != cells_.Get32(level.key, KeyField::kSubkeyCount)) {
          Fault(level.key, "the key's number of subkeys is not that of its list");
        }
        return kNoCell;
      }
      level.leaf = cells_.Get32(level.index, ListField::kEntries + 4 * level.nextLeaf++);
      Claim(level.index, level.leaf, ListField::kEntries, "list of subkeys");
      CheckLeaf(level.leaf);
      level.nextEntry = 0;
    }
    const std::size_t stride = LeafStride(cells_.Tag(level.leaf));
    ++level.seen;
    PrefetchAfter(level.leaf, level.nextEntry, stride);
    return cells_.Get32(level.leaf, ListField::kEntries + stride * level.nextEntry++);
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
    Claim(level.leaf, subkey, KeyField::kName, "subkey");
    CheckKey(subkey);
    if (cells_.Get32(subkey, KeyField::kParent) != level.key) Fault(subkey, "the key names another parent");
    if (level.previous != kNoCell && CompareName(KeyName(hive_, level.previous), KeyName(hive_, subkey)) >= 0) {
      hive_.unordered.insert(level.key);
    }
    level.previous = subkey;
    Enter(subkey);
  }

  /// A count that is too low would free a descriptor that is still in use.
  void CorrectSecurityCounts() {
    for (const auto& [security, count] : securityCounts_) {
      if (count > 0) cells_.Put32(security, SecurityField::kCount, count);
    }
  }

  HiveData& hive_;
  HiveCells& cells_;
  CellBits unclaimed_;
  std::vector<Level> path_;
  std::unordered_map<std::uint32_t, std::uint32_t> securityCounts_;
};

}  // namespace

void CheckHive(HiveData& hive) {
  Checker(hive).Run();
}

}  // namespace quillbox
