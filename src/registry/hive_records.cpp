#include "registry/hive_records.h"

#include <iterator>

namespace quillbox {

void RecordChecker::ClaimRoot() {
  if (!IsCell(hive_.root)) Fault(0, "the root key's offset leads to no cell in use");
  Claim(hive_.root, hive_.root, KeyField::kName, "root key");
  CheckKey(hive_.root);
}

/// No key can have such a name below the root: a path could not name it, or would name another key.
void RecordChecker::CheckSubkeyName(std::uint32_t key, const std::uint8_t* name, std::size_t size) const {
  const std::size_t unit = (cells_.Get16(key, KeyField::kFlags) & KeyFlag::kOneByteName) != 0 ? 1 : 2;
  if (size < unit) Fault(key, "the key's name is empty");
  for (std::size_t at = 0; at + unit <= size; at += unit) {
    if (name[at] == '\\' && (unit == 1 || name[at + 1] == 0)) Fault(key, "the key's name holds a backslash");
  }
}

void RecordChecker::ClaimDescriptor(std::uint32_t owner, std::uint32_t security) {
  Claim(owner, security, SecurityField::kDescriptor, "security descriptor");
  RequireTag(security, kSecurityTag, "security descriptor");
  Require(security, SecurityField::kDescriptor + std::size_t{cells_.Get32(security, SecurityField::kSize)},
          "the security descriptor reaches beyond its cell");
}

void RecordChecker::ClaimDataCell(std::uint32_t value, std::uint32_t data, std::uint32_t size) {
  Claim(value, data, "data");
  if (!IsBigData(hive_, data, size)) {
    Require(data, size, "the value's data reach beyond their cell");
    return;
  }
  Require(data, BigDataField::kEnd, "the cell is too short for big data");
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

std::optional<std::uint32_t> RecordChecker::FirstSubkey(std::uint32_t list) {
  const auto first = [&](std::uint32_t of) -> std::optional<std::uint32_t> {
    if (!IsCell(of) || cells_.Room(of) < ListField::kEntries + 4) return std::nullopt;
    if (!IsIndex(of) && !IsLeafTag(cells_.Tag(of))) return std::nullopt;
    return Entry(of, 0);
  };
  std::optional<std::uint32_t> key = first(list);
  if (key && IsIndex(list)) key = first(*key);
  if (!key || !IsCell(*key) || cells_.Room(*key) < KeyField::kName || cells_.Tag(*key) != kKeyTag) return std::nullopt;
  return key;
}

bool RecordChecker::HasUncountedSubkeys(std::uint32_t key) {
  const std::uint32_t list = cells_.Get32(key, KeyField::kSubkeyList);
  if (cells_.Get32(key, KeyField::kSubkeyCount) != 0 || list == kNoCell) return false;
  const auto subkey = FirstSubkey(list);
  return subkey && cells_.Get32(*subkey, KeyField::kParent) == key;
}

bool RecordChecker::HasUncountedValues(std::uint32_t key) {
  const std::uint32_t list = cells_.Get32(key, KeyField::kValueList);
  if (cells_.Get32(key, KeyField::kValueCount) != 0 || !IsCell(list) || !unclaimed_.Test(list)) return false;
  return IsFree(cells_.Get32(list, 0), kValueTag, ValueField::kName);
}

bool RecordChecker::Adopt(std::uint32_t cell) {
  if (!cells_.Adopt(cell)) return false;
  unclaimed_.Set(cell);
  return true;
}

bool RecordChecker::AdoptTagged(std::uint32_t cell, std::uint16_t tag) {
  if (!allowsLikely_ || cells_.IsUsed(cell) || !cells_.Adopt(cell, tag)) return false;
  unclaimed_.Set(cell);
  return true;
}

void RecordChecker::TakeBytes(std::uint32_t cell, std::size_t size) {
  const std::size_t end = cell + kCellHeader + size;
  const auto next = taken_.upper_bound(cell);
  if (next != taken_.end() && next->first < end) Fault(cell, "the cell overlaps another record");
  if (next != taken_.begin()) {
    const auto before = std::prev(next);
    if (before->first != cell && before->second > cell) Fault(cell, "the cell overlaps another record");
  }
  taken_[cell] = end;
}

}  // namespace quillbox
