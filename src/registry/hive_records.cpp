// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_records.h"

#include <iterator>

namespace quillbox {

void RecordChecker::ClaimRoot() {
  if (!IsCell(hive_.root)) Fault(Cell(0), "the root key's offset leads to no cell in use");
  Claim(Owner(hive_.root), hive_.root, KeyField::kName, "root key");
  CheckKey(hive_.root);
}

/// A key below the root with such a name could not be named by a path, or its path would name another key.
void RecordChecker::CheckSubkeyName(KeyCell key, const std::uint8_t* name, std::size_t size) const {
  const std::size_t unit = (cells_.Get(key, KeyField::kFlags) & KeyFlag::kOneByteName) != 0 ? 1 : 2;
  if (size < unit) Fault(key, "the key's name is empty");
  for (std::size_t at = 0; at + unit <= size; at += unit) {
    if (name[at] == '\\' && (unit == 1 || name[at + 1] == 0)) Fault(key, "the key's name holds a backslash");
  }
}

void RecordChecker::ClaimDescriptor(Owner owner, SecurityCell security) {
  Claim(owner, security, SecurityField::kDescriptor, "security descriptor");
  RequireTag(security, kSecurityTag, "security descriptor");
  Require(security, SecurityField::kDescriptor + std::size_t{cells_.Get(security, SecurityField::kSize)},
          "the security descriptor reaches beyond its cell");
}

void RecordChecker::ClaimDataCell(ValueCell value, DataCell data, std::uint32_t size) {
  Claim(Owner(value), data, "data");
  if (!IsBigData(hive_, data, size)) {
    Require(data, size, "the value's data reach beyond their cell");
    return;
  }
  Require(data, BigDataField::kEnd, "the cell is too short for big data");
  RequireTag(data, kBigDataTag, "big data");
  const std::size_t count = cells_.Get(data, BigDataField::kCount);
  if (count != (size + Hive::kBigDataLimit - 1) / Hive::kBigDataLimit) {
    Fault(data, "the number of pieces does not fit the value's size");
  }
  const DataCell list = cells_.Get(data, BigDataField::kSegments);
  Claim(Owner(data), list, count * 4, "list of pieces");
  for (std::size_t at = 0; at < count; ++at) {
    const std::size_t left = size - at * Hive::kBigDataLimit;
    const std::size_t piece = left < Hive::kBigDataLimit ? left : Hive::kBigDataLimit;
    Claim(Owner(list), cells_.Get(list, PieceEntry(at)), piece, "piece of big data");
  }
}

std::optional<KeyCell> RecordChecker::FirstSubkey(ListCell list) {
  const auto hasEntry = [&](ListCell of) { return IsCell(of) && cells_.Room(of) >= ListField::kEntries + 4; };
  if (!hasEntry(list)) return std::nullopt;
  ListCell leaf = list;
  if (IsIndex(list)) {
    leaf = Leaf(list, 0);
    if (!hasEntry(leaf)) return std::nullopt;
  }
  if (!IsIndex(leaf) && !IsLeafTag(cells_.Tag(leaf))) return std::nullopt;
  const KeyCell key = Subkey(leaf, 0);
  if (!IsCell(key) || cells_.Room(key) < KeyField::kName || cells_.Tag(key) != kKeyTag) return std::nullopt;
  return key;
}

bool RecordChecker::HasUncountedSubkeys(KeyCell key) {
  const ListCell list = cells_.Get(key, KeyField::kSubkeyList);
  if (cells_.Get(key, KeyField::kSubkeyCount) != 0 || list.IsNone()) return false;
  const auto subkey = FirstSubkey(list);
  return subkey && cells_.Get(*subkey, KeyField::kParent) == key;
}

bool RecordChecker::HasUncountedValues(KeyCell key) {
  const ValueListCell list = cells_.Get(key, KeyField::kValueList);
  if (cells_.Get(key, KeyField::kValueCount) != 0 || !IsCell(list) || !unclaimed_.Test(list.offset)) return false;
  return IsFree(cells_.Get(list, ValueEntry(0)), kValueTag, ValueField::kName);
}

bool RecordChecker::Adopt(Cell cell) {
  if (!cells_.Adopt(cell)) return false;
  unclaimed_.Set(cell.offset);
  return true;
}

bool RecordChecker::AdoptTagged(Cell cell, RecordTag tag) {
  if (!allowsLikely_ || cells_.IsUsed(cell) || !cells_.Adopt(cell, tag)) return false;
  unclaimed_.Set(cell.offset);
  return true;
}

void RecordChecker::TakeBytes(Cell cell, std::size_t size) {
  const std::size_t begin = cell.offset;
  const std::size_t end = begin + kCellHeader + size;
  const auto next = taken_.upper_bound(begin);
  if (next != taken_.end() && next->first < end) Fault(cell, "the cell overlaps another record");
  if (next != taken_.begin()) {
    const auto before = std::prev(next);
    if (before->first != begin && before->second > begin) Fault(cell, "the cell overlaps another record");
  }
  taken_[begin] = end;
}

}  // namespace quillbox
