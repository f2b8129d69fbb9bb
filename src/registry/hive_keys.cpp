#include <algorithm>
#include <cstring>

#include "registry/hive_data.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {

namespace {

/// What a change may need beside its own bytes: cell headers, lists that move, the rest of a new bin.
constexpr std::uint64_t kSpaceForLists = std::uint64_t{1} << 20;

void FreeClass(HiveData& hive, std::uint32_t key) {
  HiveCells& cells = hive.cells;
  const std::uint32_t cell = cells.Get32(key, KeyField::kClass);
  if (cells.Get16(key, KeyField::kClassLength) > 0 && cell != kNoCell) cells.Free(cell);
  cells.Put32(key, KeyField::kClass, kNoCell);
  cells.Put16(key, KeyField::kClassLength, 0);
}

/// Frees what the key holds itself: values, class, subkey lists. Not its subkeys.
void FreeContent(HiveData& hive, std::uint32_t key) {
  FreeValues(hive, key);
  FreeClass(hive, key);
  FreeSubkeyLists(hive, key);
}

void FreeKey(HiveData& hive, std::uint32_t key) {
  FreeContent(hive, key);
  ReleaseSecurity(hive, hive.cells.Get32(key, KeyField::kSecurity));
  hive.cells.Free(key);
}

}  // namespace

void ThrowHiveFault(const std::string& fileName, std::size_t offset, std::string why) {
  throw Error("opening the hive", {.name = fileName, .offset = kHivePage + offset, .line = {}}, std::move(why));
}

void ThrowRefusal(const HiveData& hive, std::uint32_t key, HiveLimit limit, std::string doing, std::string why) {
  throw HiveRefusal(limit, std::move(doing), {.name = KeyPath(hive, key), .offset = {}, .line = {}}, std::move(why));
}

StoredName KeyName(const HiveData& hive, std::uint32_t key) {
  const HiveCells& cells = hive.cells;
  const bool oneByte = (cells.Get16(key, KeyField::kFlags) & KeyFlag::kOneByteName) != 0;
  const std::size_t size = cells.Get16(key, KeyField::kNameLength);
  return {cells.At(key) + KeyField::kName, oneByte ? size : size / 2, oneByte};
}

std::string PathBelowRoot(const HiveData& hive, std::uint32_t key) {
  std::vector<std::string> names;
  for (; key != hive.root; key = hive.cells.Get32(key, KeyField::kParent)) {
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

std::string KeyPath(const HiveData& hive, std::uint32_t key) {
  return key == hive.root ? hive.name : hive.name + "\\" + PathBelowRoot(hive, key);
}

std::size_t KeyDepth(const HiveData& hive, std::uint32_t key) {
  std::size_t depth = 1;
  for (; key != hive.root; key = hive.cells.Get32(key, KeyField::kParent)) ++depth;
  return depth;
}

Bytes KeyClass(const HiveData& hive, std::uint32_t key) {
  const std::size_t size = hive.cells.Get16(key, KeyField::kClassLength);
  const std::uint32_t cell = hive.cells.Get32(key, KeyField::kClass);
  if (size == 0 || cell == kNoCell) return {};
  return {hive.cells.At(cell), hive.cells.At(cell) + size};
}

std::uint32_t MakeKey(HiveData& hive, std::uint32_t parent, const NewName& name, std::uint32_t security) {
  HiveCells& cells = hive.cells;
  const std::uint32_t key = cells.Allocate(KeyField::kName + name.StoredSize());
  cells.Put16(key, 0, kKeyTag);
  cells.Put16(key, KeyField::kFlags, name.oneByte ? KeyFlag::kOneByteName : std::uint16_t{0});
  cells.Put64(key, KeyField::kTime, hive.now);
  cells.Put32(key, KeyField::kParent, parent);
  for (const std::size_t field :
       {KeyField::kSubkeyList, KeyField::kVolatileList, KeyField::kValueList, KeyField::kClass}) {
    cells.Put32(key, field, kNoCell);
  }
  cells.Put32(key, KeyField::kSecurity, security);
  ShareSecurity(hive, security);
  cells.Put16(key, KeyField::kNameLength, static_cast<std::uint16_t>(name.StoredSize()));
  name.Store(cells.At(key) + KeyField::kName);
  return key;
}

std::uint32_t CopyKeyRecord(HiveData& hive, std::uint32_t parent, const HiveData& source, std::uint32_t from) {
  const std::size_t size = KeyField::kName + source.cells.Get16(from, KeyField::kNameLength);
  const std::uint32_t key = hive.cells.Allocate(size);
  HiveCells& cells = hive.cells;
  std::memcpy(cells.At(key), source.cells.At(from), size);
  cells.Put32(key, KeyField::kParent, parent);
  for (const std::size_t field : {KeyField::kSubkeyCount, KeyField::kVolatileCount, KeyField::kValueCount,
                                  KeyField::kMaxClass, KeyField::kMaxValueName, KeyField::kMaxValueData}) {
    cells.Put32(key, field, 0);
  }
  for (const std::size_t field :
       {KeyField::kSubkeyList, KeyField::kVolatileList, KeyField::kValueList, KeyField::kClass, KeyField::kSecurity}) {
    cells.Put32(key, field, kNoCell);
  }
  cells.Put16(key, KeyField::kMaxSubkeyName, 0);
  cells.Put16(key, KeyField::kClassLength, 0);
  return key;
}

void SetClass(HiveData& hive, std::uint32_t key, ByteView className) {
  if (className.empty()) return;
  const std::uint32_t cell = hive.cells.Allocate(className.size());
  std::memcpy(hive.cells.At(cell), className.data(), className.size());
  hive.cells.Put32(key, KeyField::kClass, cell);
  hive.cells.Put16(key, KeyField::kClassLength, static_cast<std::uint16_t>(className.size()));
}

void RequireSpace(const HiveData& hive, std::uint32_t key, const std::string& doing, std::uint64_t size) {
  // A list is copied when it grows, by half its size; no list is larger than the bins are now.
  const std::uint64_t lists = std::uint64_t{hive.cells.Get32(key, KeyField::kValueCount)} * 8 +
                              std::uint64_t{hive.cells.Get32(key, KeyField::kSubkeyCount)} * 2;
  if (hive.cells.BinsSize() + size + lists + kSpaceForLists > kMaxBinsSize) {
    ThrowRefusal(hive, key, HiveLimit::Size, doing, "a hive cannot be larger than 2 GB");
  }
}

void ClearKey(HiveData& hive, std::uint32_t key) {
  std::vector<std::uint32_t> below = SubkeyCells(hive, key);
  FreeContent(hive, key);
  while (!below.empty()) {
    const std::uint32_t subkey = below.back();
    below.pop_back();
    const std::vector<std::uint32_t> next = SubkeyCells(hive, subkey);
    below.insert(below.end(), next.begin(), next.end());
    FreeKey(hive, subkey);
  }
}

void RemoveKey(HiveData& hive, std::uint32_t key) {
  const std::uint32_t parent = hive.cells.Get32(key, KeyField::kParent);
  RemoveSubkey(hive, parent, key);
  ClearKey(hive, key);
  FreeKey(hive, key);
  hive.cells.Put64(parent, KeyField::kTime, hive.now);
}

}  // namespace quillbox
