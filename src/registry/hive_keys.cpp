// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>

#include "registry/hive_data.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {

namespace {

/// What a change may need in addition to its own bytes: cell headers, lists that move, the rest of a new bin.
constexpr std::uint64_t kSpaceForLists = std::uint64_t{1} << 20;

/// Clears the fields of a new record that name lists and the class.
void NameNoCells(HiveCells& cells, KeyCell key) {
  cells.Put(key, KeyField::kSubkeyList, ListCell());
  cells.Put(key, KeyField::kVolatileList, ListCell());
  cells.Put(key, KeyField::kValueList, ValueListCell());
  cells.Put(key, KeyField::kClass, DataCell());
}

void FreeClass(HiveData& hive, KeyCell key) {
  HiveCells& cells = hive.cells;
  const DataCell cell = cells.Get(key, KeyField::kClass);
  if (cells.Get(key, KeyField::kClassLength) > 0 && !cell.IsNone()) cells.Free(cell);
  cells.Put(key, KeyField::kClass, DataCell());
  cells.Put(key, KeyField::kClassLength, 0);
}

/// Frees what the key holds itself: values, class, subkey lists. Not its subkeys.
void FreeContent(HiveData& hive, KeyCell key) {
  FreeValues(hive, key);
  FreeClass(hive, key);
  FreeSubkeyLists(hive, key);
}

void FreeKey(HiveData& hive, KeyCell key) {
  FreeContent(hive, key);
  ReleaseSecurity(hive, hive.cells.Get(key, KeyField::kSecurity));
  hive.cells.Free(key);
}

}  // namespace

void ThrowHiveFault(const std::string& fileName, std::size_t offset, std::string why) {
  throw Error("opening the hive", {.name = fileName, .offset = kHivePage + offset, .line = {}}, std::move(why));
}

void ThrowRefusal(const HiveData& hive, KeyCell key, HiveLimit limit, std::string doing, std::string why) {
  throw HiveRefusal(limit, std::move(doing), {.name = KeyPath(hive, key), .offset = {}, .line = {}}, std::move(why));
}

StoredName KeyName(const HiveData& hive, KeyCell key) {
  const HiveCells& cells = hive.cells;
  const bool oneByte = (cells.Get(key, KeyField::kFlags) & KeyFlag::kOneByteName) != 0;
  const std::size_t size = cells.Get(key, KeyField::kNameLength);
  return {cells.At(key) + KeyField::kName, oneByte ? size : size / 2, oneByte};
}

std::string PathBelowRoot(const HiveData& hive, KeyCell key) {
  std::vector<std::string> names;
  for (; key != hive.root; key = hive.cells.Get(key, KeyField::kParent)) {
    StoredName name = KeyName(hive, key);
    const bool isTooLong = name.units > kLongestName;
    if (isTooLong) name.units = kLongestName;
    names.push_back(NameText(name) + (isTooLong ? "…" : ""));
  }
  std::reverse(names.begin(), names.end());
  std::string path;
  for (const std::string& name : names) path += (path.empty() ? "" : "\\") + name;
  return path;
}

std::string KeyPath(const HiveData& hive, KeyCell key) {
  return key == hive.root ? hive.name : hive.name + "\\" + PathBelowRoot(hive, key);
}

std::size_t KeyDepth(const HiveData& hive, KeyCell key) {
  std::size_t depth = 1;
  for (; key != hive.root; key = hive.cells.Get(key, KeyField::kParent)) ++depth;
  return depth;
}

Bytes KeyClass(const HiveData& hive, KeyCell key) {
  const std::size_t size = hive.cells.Get(key, KeyField::kClassLength);
  const DataCell cell = hive.cells.Get(key, KeyField::kClass);
  if (size == 0 || cell.IsNone()) return {};
  return {hive.cells.At(cell), hive.cells.At(cell) + size};
}

KeyCell MakeKey(HiveData& hive, KeyCell parent, const NewName& name, SecurityCell security) {
  HiveCells& cells = hive.cells;
  const KeyCell key(cells.Allocate(KeyField::kName + name.StoredSize()));
  cells.PutTag(key, kKeyTag);
  cells.Put(key, KeyField::kFlags, name.oneByte ? KeyFlag::kOneByteName : std::uint16_t{0});
  cells.Put(key, KeyField::kTime, hive.now);
  cells.Put(key, KeyField::kParent, parent);
  NameNoCells(cells, key);
  cells.Put(key, KeyField::kSecurity, security);
  ShareSecurity(hive, security);
  cells.Put(key, KeyField::kNameLength, static_cast<std::uint16_t>(name.StoredSize()));
  name.Store(cells.At(key) + KeyField::kName);
  return key;
}

KeyCell CopyKeyRecord(HiveData& hive, KeyCell parent, SourceKey from) {
  const HiveCells& theirs = from.hive.cells;
  const std::size_t size = KeyField::kName + theirs.Get(from.key, KeyField::kNameLength);
  HiveCells& cells = hive.cells;
  const KeyCell key(cells.Allocate(size));
  std::memcpy(cells.At(key), theirs.At(from.key), size);
  cells.Put(key, KeyField::kParent, parent);
  for (const auto field : {KeyField::kSubkeyCount, KeyField::kVolatileCount, KeyField::kValueCount, KeyField::kMaxClass,
                           KeyField::kMaxValueName, KeyField::kMaxValueData}) {
    cells.Put(key, field, 0);
  }
  NameNoCells(cells, key);
  cells.Put(key, KeyField::kSecurity, SecurityCell());
  cells.Put(key, KeyField::kMaxSubkeyName, 0);
  cells.Put(key, KeyField::kClassLength, 0);
  return key;
}

void SetClass(HiveData& hive, KeyCell key, ByteView className) {
  if (className.empty()) return;
  const DataCell cell(hive.cells.Allocate(className.size()));
  std::memcpy(hive.cells.At(cell), className.data(), className.size());
  hive.cells.Put(key, KeyField::kClass, cell);
  hive.cells.Put(key, KeyField::kClassLength, static_cast<std::uint16_t>(className.size()));
}

void RequireSpace(const HiveData& hive, KeyCell key, const std::string& doing, std::uint64_t size) {
  // A list is copied when it grows, by half its size; no list is larger than the bins are now.
  const std::uint64_t lists = std::uint64_t{hive.cells.Get(key, KeyField::kValueCount)} * 8 +
                              std::uint64_t{hive.cells.Get(key, KeyField::kSubkeyCount)} * 2;
  if (hive.cells.BinsSize() + size + lists + kSpaceForLists > kMaxBinsSize) {
    ThrowRefusal(hive, key, HiveLimit::Size, doing, "a hive cannot be larger than 2 GB");
  }
}

void ClearKey(HiveData& hive, KeyCell key) {
  std::vector<KeyCell> below = SubkeyCells(hive, key);
  FreeContent(hive, key);
  while (!below.empty()) {
    const KeyCell subkey = below.back();
    below.pop_back();
    const std::vector<KeyCell> next = SubkeyCells(hive, subkey);
    below.insert(below.end(), next.begin(), next.end());
    FreeKey(hive, subkey);
  }
}

void RemoveKey(HiveData& hive, KeyCell key) {
  const KeyCell parent = hive.cells.Get(key, KeyField::kParent);
  RemoveSubkey(hive, key);
  ClearKey(hive, key);
  FreeKey(hive, key);
  hive.cells.Put(parent, KeyField::kTime, hive.now);
}

}  // namespace quillbox
