#include <cstring>

#include "registry/hive_data.h"
#include "text/message_text.h"

namespace quillbox {

namespace {

/// What a copied record needs beside its own bytes: cell header, entries in lists, rounding.
constexpr std::uint64_t kRecordOverhead = 32;

/// Copies keys of one hive into another one, security descriptors once each.
class TreeCopier {
 public:
  TreeCopier(HiveData& hive, const HiveData& source) : hive_(hive), source_(source), pool_(hive) {}

  void Copy(std::uint32_t to, std::uint32_t from) {
    const std::uint32_t oldSecurity = hive_.cells.Get32(to, KeyField::kSecurity);
    CopyFields(to, from);
    CopyContent(to, from);
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pending{{to, from}};
    while (!pending.empty()) {
      const auto [parent, source] = pending.back();
      pending.pop_back();
      for (const std::uint32_t subkey : SubkeyCells(source_, source)) {
        pending.emplace_back(CopyKey(parent, subkey), subkey);
      }
    }
    // At the end, since the pool may give it out again.
    if (source_.cells.Get32(from, KeyField::kSecurity) != kNoCell) {
      ReleaseSecurity(hive_, oldSecurity);
    }
  }

 private:
  /// The flags that do not tell of the key's place or its name's form, and what newer systems keep beside them.
  void CopyFields(std::uint32_t to, std::uint32_t from) {
    constexpr std::uint16_t kOwn = KeyFlag::kRoot | KeyFlag::kNoDelete | KeyFlag::kOneByteName;
    HiveCells& cells = hive_.cells;
    const unsigned flags =
        (cells.Get16(to, KeyField::kFlags) & kOwn) | (source_.cells.Get16(from, KeyField::kFlags) & ~unsigned{kOwn});
    cells.Put16(to, KeyField::kFlags, static_cast<std::uint16_t>(flags));
    cells.Put32(to, KeyField::kAccess, source_.cells.Get32(from, KeyField::kAccess));
    cells.Put16(to, KeyField::kMoreFlags, source_.cells.Get16(from, KeyField::kMoreFlags));
    cells.Put32(to, KeyField::kWork, source_.cells.Get32(from, KeyField::kWork));
  }

  std::uint32_t CopyKey(std::uint32_t parent, std::uint32_t from) {
    const std::uint32_t key = CopyKeyRecord(hive_, parent, source_, from);
    CopyContent(key, from);
    InsertSubkey(hive_, parent, key);
    return key;
  }

  /// Values, class name and security of one key.
  void CopyContent(std::uint32_t to, std::uint32_t from) {
    SetClass(hive_, to, KeyClass(source_, from));
    CopySecurity(to, from);
    const std::size_t count = source_.cells.Get32(from, KeyField::kValueCount);
    for (std::size_t at = 0; at < count; ++at) CopyValue(hive_, to, source_, ValueCell(source_, from, at));
  }

  /// A key without a descriptor keeps the one it has, or gets its parent's.
  void CopySecurity(std::uint32_t to, std::uint32_t from) {
    HiveCells& cells = hive_.cells;
    const std::uint32_t theirs = source_.cells.Get32(from, KeyField::kSecurity);
    if (theirs != kNoCell) {
      cells.Put32(to, KeyField::kSecurity, Shared(theirs));
    } else if (cells.Get32(to, KeyField::kSecurity) == kNoCell && to != hive_.root) {
      const std::uint32_t inherited = cells.Get32(cells.Get32(to, KeyField::kParent), KeyField::kSecurity);
      ShareSecurity(hive_, inherited);
      cells.Put32(to, KeyField::kSecurity, inherited);
    }
  }

  std::uint32_t Shared(std::uint32_t theirs) {
    const auto known = security_.find(theirs);
    if (known == security_.end()) {
      const std::uint32_t security = pool_.Share(Descriptor(source_, theirs));
      security_.emplace(theirs, security);
      return security;
    }
    ShareSecurity(hive_, known->second);
    return known->second;
  }

  HiveData& hive_;
  const HiveData& source_;
  SecurityPool pool_;
  std::unordered_map<std::uint32_t, std::uint32_t> security_;
};

/// Adds up what a tree takes in another hive, and meets the limits on the way.
class TreeMeasure {
 public:
  TreeMeasure(const HiveData& hive, const HiveData& source, std::string doing)
      : hive_(hive), source_(source), doing_(std::move(doing)) {}

  std::uint64_t Measure(std::uint32_t from, std::size_t depth) {
    std::vector<std::pair<std::uint32_t, std::size_t>> pending{{from, depth}};
    while (!pending.empty()) {
      const auto [key, level] = pending.back();
      pending.pop_back();
      if (level > Hive::kMaxDepth) {
        ThrowRefusal(source_, key, HiveLimit::Depth, doing_,
                     "keys can be nested " + std::to_string(Hive::kMaxDepth) + " levels deep and no deeper");
      }
      AddKey(key);
      for (const std::uint32_t subkey : SubkeyCells(source_, key)) pending.emplace_back(subkey, level + 1);
    }
    return size_;
  }

 private:
  void AddKey(std::uint32_t key) {
    const HiveCells& cells = source_.cells;
    size_ += cells.Room(key) + cells.Get16(key, KeyField::kClassLength) + 2 * kRecordOverhead;
    const std::uint32_t security = cells.Get32(key, KeyField::kSecurity);
    if (security != kNoCell && security_.insert(security).second) size_ += cells.Room(security) + kRecordOverhead;
    for (std::size_t at = 0; at < cells.Get32(key, KeyField::kValueCount); ++at) {
      AddValue(key, ValueCell(source_, key, at));
    }
  }

  void AddValue(std::uint32_t key, std::uint32_t value) {
    const std::uint64_t data = ValueSize(source_, value);
    if (const std::string fault = DataFault(hive_, data); !fault.empty()) {
      ThrowRefusal(source_, key, HiveLimit::Data, doing_,
                   "value \"" + ShortName(NameText(ValueName(source_, value))) + "\": " + fault);
    }
    // Big data stand in pieces that do not fill their bins: a quarter more is ample.
    size_ += source_.cells.Room(value) + data + data / 4 + 3 * kRecordOverhead;
    if (data > Hive::kBigDataLimit) size_ += 3 * kHivePage;
  }

  const HiveData& hive_;
  const HiveData& source_;
  std::string doing_;
  std::uint64_t size_ = 0;
  std::unordered_set<std::uint32_t> security_;
};

}  // namespace

void CopyTree(HiveData& hive, std::uint32_t to, const HiveData& source, std::uint32_t from) {
  TreeCopier(hive, source).Copy(to, from);
}

void RequireCopy(const HiveData& hive, std::uint32_t to, const HiveData& source, std::uint32_t from,
                 const std::string& doing) {
  const std::uint64_t size = TreeMeasure(hive, source, doing).Measure(from, KeyDepth(hive, to));
  RequireSpace(hive, to, doing, size);
}

}  // namespace quillbox
