// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>

#include "registry/hive_data.h"

namespace quillbox {

namespace {

constexpr std::size_t kMaxListEntries = 0xFFFF;

struct ListSpot {
  std::size_t leafIndex = 0;
  ListCell leaf;
  std::size_t entry = 0;
};

ListCell ListOf(const HiveData& hive, KeyCell key) {
  return hive.cells.Get(key, KeyField::kSubkeyList);
}

std::size_t Count(const HiveData& hive, ListCell list) {
  return hive.cells.Get(list, ListField::kCount);
}

void SetCount(HiveData& hive, ListCell list, std::size_t count) {
  hive.cells.Put(list, ListField::kCount, static_cast<std::uint16_t>(count));
}

std::size_t Stride(const HiveData& hive, ListCell list) {
  return EntrySize(hive.cells.Tag(list));
}

KeyCell EntryAt(const HiveData& hive, ListCell leaf, std::size_t entry) {
  return hive.cells.Get(leaf, LeafEntry(hive.cells.Tag(leaf), entry));
}

bool IsIndexed(const HiveData& hive, KeyCell key) {
  return hive.cells.Tag(ListOf(hive, key)) == kLeafIndexTag;
}

std::size_t LeafCount(const HiveData& hive, KeyCell key) {
  if (hive.cells.Get(key, KeyField::kSubkeyCount) == 0) return 0;
  return IsIndexed(hive, key) ? Count(hive, ListOf(hive, key)) : 1;
}

ListCell LeafAt(const HiveData& hive, KeyCell key, std::size_t index) {
  const ListCell list = ListOf(hive, key);
  return IsIndexed(hive, key) ? hive.cells.Get(list, IndexEntry(index)) : list;
}

int CompareEntry(const HiveData& hive, ListCell leaf, std::size_t entry, std::u16string_view upper) {
  return CompareName(KeyName(hive, EntryAt(hive, leaf, entry)), upper);
}

/// The first number below `count` for which `isBefore` is false, given that it is true below and false above.
template <typename Predicate>
std::size_t FirstNot(std::size_t count, Predicate isBefore) {
  std::size_t low = 0;
  while (low < count) {
    const std::size_t middle = low + (count - low) / 2;
    if (isBefore(middle)) {
      low = middle + 1;
    } else {
      count = middle;
    }
  }
  return low;
}

/// The place of the first entry that is not below `upper`; the end of the last leaf when all are. The key has some.
ListSpot Locate(const HiveData& hive, KeyCell key, std::u16string_view upper) {
  const std::size_t leaves = LeafCount(hive, key);
  ListSpot spot;
  spot.leafIndex = FirstNot(leaves - 1, [&](std::size_t index) {
    const ListCell leaf = LeafAt(hive, key, index);
    return CompareEntry(hive, leaf, Count(hive, leaf) - 1, upper) < 0;
  });
  spot.leaf = LeafAt(hive, key, spot.leafIndex);
  spot.entry = FirstNot(Count(hive, spot.leaf),
                        [&](std::size_t entry) { return CompareEntry(hive, spot.leaf, entry, upper) < 0; });
  return spot;
}

/// Looks at every entry, for lists whose order is not ours.
template <typename Predicate>
std::optional<ListSpot> LocateOneByOne(const HiveData& hive, KeyCell key, Predicate matches) {
  ListSpot spot;
  for (spot.leafIndex = 0; spot.leafIndex < LeafCount(hive, key); ++spot.leafIndex) {
    spot.leaf = LeafAt(hive, key, spot.leafIndex);
    for (spot.entry = 0; spot.entry < Count(hive, spot.leaf); ++spot.entry) {
      if (matches(EntryAt(hive, spot.leaf, spot.entry))) return spot;
    }
  }
  return std::nullopt;
}

/// Makes room for one entry at `entry` of a list, which may move, and counts it. Returns the list's cell.
ListCell OpenEntry(HiveData& hive, ListCell list, std::size_t entry) {
  const std::size_t count = Count(hive, list);
  const std::size_t stride = Stride(hive, list);
  if (hive.cells.Room(list) < ListField::kEntries + (count + 1) * stride) {
    const std::size_t most = hive.cells.Tag(list) == kLeafIndexTag ? kMaxListEntries : kMaxLeafEntries;
    const std::size_t capacity = std::max(count + 1, std::min(count + count / 2, most));
    list = ListCell(hive.cells.Grow(list, ListField::kEntries + capacity * stride));
  }
  std::uint8_t* at = hive.cells.At(list) + ListField::kEntries + entry * stride;
  std::memmove(at + stride, at, (count - entry) * stride);
  SetCount(hive, list, count + 1);
  return list;
}

/// Takes one entry out; returns how many are left.
std::size_t CloseEntry(HiveData& hive, ListCell list, std::size_t entry) {
  const std::size_t left = Count(hive, list) - 1;
  const std::size_t stride = Stride(hive, list);
  std::uint8_t* at = hive.cells.At(list) + ListField::kEntries + entry * stride;
  std::memmove(at, at + stride, (left - entry) * stride);
  SetCount(hive, list, left);
  return left;
}

ListCell MakeList(HiveData& hive, RecordTag tag, std::size_t capacity) {
  const ListCell list(hive.cells.Allocate(ListField::kEntries + capacity * EntrySize(tag)));
  hive.cells.PutTag(list, tag);
  return list;
}

void PointToLeaf(HiveData& hive, KeyCell key, std::size_t leafIndex, ListCell leaf) {
  const ListCell list = ListOf(hive, key);
  if (IsIndexed(hive, key)) {
    hive.cells.Put(list, IndexEntry(leafIndex), leaf);
  } else {
    hive.cells.Put(key, KeyField::kSubkeyList, leaf);
  }
}

/// Moves the upper half of a full leaf into a new leaf after it; only the last entry where names are added in their
/// order, so that leaves get full.
void SplitLeaf(HiveData& hive, KeyCell key, const ListSpot& spot) {
  const std::size_t count = Count(hive, spot.leaf);
  const std::size_t kept = spot.entry == count ? count - 1 : count / 2;
  const std::size_t stride = Stride(hive, spot.leaf);
  const ListCell second = MakeList(hive, hive.cells.Tag(spot.leaf), count - kept);
  std::memcpy(hive.cells.At(second) + ListField::kEntries,
              hive.cells.At(spot.leaf) + ListField::kEntries + kept * stride, (count - kept) * stride);
  SetCount(hive, second, count - kept);

  ListCell index = ListOf(hive, key);
  if (!IsIndexed(hive, key)) {
    index = MakeList(hive, kLeafIndexTag, 2);
    hive.cells.Put(index, IndexEntry(0), spot.leaf);
    SetCount(hive, index, 1);
  }
  index = OpenEntry(hive, index, spot.leafIndex + 1);
  hive.cells.Put(index, IndexEntry(spot.leafIndex + 1), second);
  hive.cells.Put(key, KeyField::kSubkeyList, index);
  SetCount(hive, spot.leaf, kept);
}

void WriteEntry(HiveData& hive, ListCell leaf, std::size_t entry, KeyCell subkey) {
  const RecordTag tag = hive.cells.Tag(leaf);
  const StoredName name = KeyName(hive, subkey);
  hive.cells.Put(leaf, LeafEntry(tag, entry), subkey);
  if (tag == kHashLeafTag) hive.cells.Put(leaf, LeafHint(entry), NameHash(UpperName(name)));
  if (tag == kHintLeafTag) hive.cells.Put(leaf, LeafHint(entry), NameHint(name));
}

void RemoveLeaf(HiveData& hive, KeyCell key, const ListSpot& spot) {
  const ListCell list = ListOf(hive, key);
  hive.cells.Free(spot.leaf);
  if (list != spot.leaf) {
    if (CloseEntry(hive, list, spot.leafIndex) > 0) return;
    hive.cells.Free(list);
  }
  hive.cells.Put(key, KeyField::kSubkeyList, ListCell());
}

}  // namespace

std::optional<KeyCell> FindSubkey(const HiveData& hive, KeyCell key, std::u16string_view upper) {
  if (LeafCount(hive, key) == 0) return std::nullopt;
  if (hive.unordered.contains(key)) {
    const auto spot =
        LocateOneByOne(hive, key, [&](KeyCell subkey) { return CompareName(KeyName(hive, subkey), upper) == 0; });
    if (!spot) return std::nullopt;
    return EntryAt(hive, spot->leaf, spot->entry);
  }
  const ListSpot spot = Locate(hive, key, upper);
  if (spot.entry == Count(hive, spot.leaf) || CompareEntry(hive, spot.leaf, spot.entry, upper) != 0) {
    return std::nullopt;
  }
  return EntryAt(hive, spot.leaf, spot.entry);
}

KeyCell SubkeyOf(const HiveData& hive, KeyCell key, std::size_t index) {
  for (std::size_t leafIndex = 0; leafIndex < LeafCount(hive, key); ++leafIndex) {
    const ListCell leaf = LeafAt(hive, key, leafIndex);
    if (index < Count(hive, leaf)) return EntryAt(hive, leaf, index);
    index -= Count(hive, leaf);
  }
  return {};
}

std::vector<KeyCell> SubkeyCells(const HiveData& hive, KeyCell key) {
  std::vector<KeyCell> subkeys;
  subkeys.reserve(hive.cells.Get(key, KeyField::kSubkeyCount));
  for (std::size_t leafIndex = 0; leafIndex < LeafCount(hive, key); ++leafIndex) {
    const ListCell leaf = LeafAt(hive, key, leafIndex);
    for (std::size_t entry = 0; entry < Count(hive, leaf); ++entry) subkeys.push_back(EntryAt(hive, leaf, entry));
  }
  return subkeys;
}

bool CanTakeSubkey(const HiveData& hive, KeyCell key) {
  return LeafCount(hive, key) < kMaxListEntries;
}

void InsertSubkey(HiveData& hive, KeyCell subkey) {
  const KeyCell key = hive.cells.Get(subkey, KeyField::kParent);
  const std::u16string upper = UpperName(KeyName(hive, subkey));
  ListSpot spot;
  if (LeafCount(hive, key) == 0) {
    spot.leaf = MakeList(hive, hive.minor > 4 ? kHashLeafTag : kHintLeafTag, 1);
    hive.cells.Put(key, KeyField::kSubkeyList, spot.leaf);
  } else {
    spot = Locate(hive, key, upper);
    if (Count(hive, spot.leaf) >= kMaxLeafEntries) {
      SplitLeaf(hive, key, spot);
      spot = Locate(hive, key, upper);
    }
    // Equal names, which only a copied key's subkeys can have, keep their order: the first one is found.
    while (spot.entry < Count(hive, spot.leaf) && CompareEntry(hive, spot.leaf, spot.entry, upper) == 0) ++spot.entry;
  }
  const ListCell leaf = OpenEntry(hive, spot.leaf, spot.entry);
  if (leaf != spot.leaf) PointToLeaf(hive, key, spot.leafIndex, leaf);
  WriteEntry(hive, leaf, spot.entry, subkey);

  HiveCells& cells = hive.cells;
  cells.Put(key, KeyField::kSubkeyCount, cells.Get(key, KeyField::kSubkeyCount) + 1);
  const auto longest = std::max<std::size_t>(cells.Get(key, KeyField::kMaxSubkeyName), upper.size() * 2);
  cells.Put(key, KeyField::kMaxSubkeyName, static_cast<std::uint16_t>(longest));
  const std::uint32_t classLength = cells.Get(subkey, KeyField::kClassLength);
  cells.Put(key, KeyField::kMaxClass, std::max(cells.Get(key, KeyField::kMaxClass), classLength));
}

void RemoveSubkey(HiveData& hive, KeyCell subkey) {
  const KeyCell key = hive.cells.Get(subkey, KeyField::kParent);
  ListSpot spot = Locate(hive, key, UpperName(KeyName(hive, subkey)));
  if (spot.entry == Count(hive, spot.leaf) || EntryAt(hive, spot.leaf, spot.entry) != subkey) {
    const auto found = LocateOneByOne(hive, key, [&](KeyCell cell) { return cell == subkey; });
    if (!found) return;
    spot = *found;
  }
  if (CloseEntry(hive, spot.leaf, spot.entry) == 0) RemoveLeaf(hive, key, spot);
  const std::uint32_t left = hive.cells.Get(key, KeyField::kSubkeyCount) - 1;
  hive.cells.Put(key, KeyField::kSubkeyCount, left);
  if (left == 0) {
    hive.cells.Put(key, KeyField::kMaxSubkeyName, 0);
    hive.cells.Put(key, KeyField::kMaxClass, 0);
    hive.unordered.erase(key);
  }
}

void FreeSubkeyLists(HiveData& hive, KeyCell key) {
  const std::size_t leaves = LeafCount(hive, key);
  if (leaves == 0) return;
  const ListCell list = ListOf(hive, key);
  const bool indexed = IsIndexed(hive, key);
  for (std::size_t index = 0; index < leaves; ++index) hive.cells.Free(LeafAt(hive, key, index));
  if (indexed) hive.cells.Free(list);
  hive.cells.Put(key, KeyField::kSubkeyList, ListCell());
  hive.cells.Put(key, KeyField::kSubkeyCount, 0);
  hive.cells.Put(key, KeyField::kMaxSubkeyName, 0);
  hive.cells.Put(key, KeyField::kMaxClass, 0);
  hive.unordered.erase(key);
}

}  // namespace quillbox
