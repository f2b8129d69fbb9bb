#include <algorithm>
#include <cstring>

#include "registry/hive_data.h"

namespace quillbox {

namespace {

/// A key with more values than this is searched by an index.
constexpr std::size_t kIndexFrom = 32;

std::size_t ValueCountOf(const HiveData& hive, std::uint32_t key) {
  return hive.cells.Get32(key, KeyField::kValueCount);
}

std::uint32_t HashOf(const StoredName& name) {
  return NameHash(UpperName(name));
}

void IndexValues(const HiveData& hive, std::uint32_t key) {
  ValueIndex& index = hive.valueIndex;
  index.key = kNoCell;
  index.cells.clear();
  const std::size_t count = ValueCountOf(hive, key);
  index.cells.reserve(count);
  for (std::size_t at = 0; at < count; ++at) {
    const std::uint32_t value = ValueCell(hive, key, at);
    index.cells.emplace(HashOf(ValueName(hive, value)), value);
  }
  index.key = key;
}

void ForgetIndex(const HiveData& hive, std::uint32_t key) {
  if (hive.valueIndex.key == key) hive.valueIndex = {};
}

std::size_t SegmentCount(std::size_t size) {
  return (size + Hive::kBigDataLimit - 1) / Hive::kBigDataLimit;
}

std::size_t SegmentSize(std::size_t size, std::size_t segment) {
  return std::min<std::size_t>(Hive::kBigDataLimit, size - segment * Hive::kBigDataLimit);
}

std::uint32_t StoreBigData(HiveData& hive, ByteView data) {
  HiveCells& cells = hive.cells;
  const std::size_t count = SegmentCount(data.size());
  const std::uint32_t record = cells.Allocate(BigDataField::kEnd);
  const std::uint32_t list = cells.Allocate(count * 4);
  cells.Put16(record, 0, kBigDataTag);
  cells.Put16(record, BigDataField::kCount, static_cast<std::uint16_t>(count));
  cells.Put32(record, BigDataField::kSegments, list);
  for (std::size_t segment = 0; segment < count; ++segment) {
    // Windows keeps four spare bytes at the end of each segment.
    const std::uint32_t cell = cells.Allocate(Hive::kBigDataLimit + 4);
    std::memcpy(cells.At(cell), data.data() + segment * Hive::kBigDataLimit, SegmentSize(data.size(), segment));
    cells.Put32(list, segment * 4, cell);
  }
  return record;
}

std::uint32_t StoreData(HiveData& hive, ByteView data) {
  if (hive.minor > 3 && data.size() > Hive::kBigDataLimit) return StoreBigData(hive, data);
  const std::uint32_t cell = hive.cells.Allocate(data.size());
  std::memcpy(hive.cells.At(cell), data.data(), data.size());
  return cell;
}

void FreeData(HiveData& hive, std::uint32_t value) {
  HiveCells& cells = hive.cells;
  const std::uint32_t size = cells.Get32(value, ValueField::kDataSize);
  const std::uint32_t cell = cells.Get32(value, ValueField::kData);
  if (size == 0 || (size & kInlineData) != 0) return;
  if (IsBigData(hive, cell, size)) {
    const std::uint32_t list = cells.Get32(cell, BigDataField::kSegments);
    const std::size_t count = cells.Get16(cell, BigDataField::kCount);
    for (std::size_t at = 0; at < count; ++at) cells.Free(cells.Get32(list, at * 4));
    cells.Free(list);
  }
  cells.Free(cell);
}

/// True when the data can be written over those that `value` has, without wasting most of their cell.
bool FitsInPlace(const HiveData& hive, std::uint32_t value, std::size_t size) {
  const std::uint32_t stored = hive.cells.Get32(value, ValueField::kDataSize);
  if (stored == 0 || (stored & kInlineData) != 0 || size <= kMaxInlineData) return false;
  if (hive.minor > 3 && (size > Hive::kBigDataLimit || stored > Hive::kBigDataLimit)) return false;
  const std::size_t room = hive.cells.Room(hive.cells.Get32(value, ValueField::kData));
  return size <= room && size * 2 + kCellUnit >= room;
}

void SetData(HiveData& hive, std::uint32_t value, ByteView data) {
  HiveCells& cells = hive.cells;
  const auto size = static_cast<std::uint32_t>(data.size());
  if (FitsInPlace(hive, value, size)) {
    std::memcpy(cells.At(cells.Get32(value, ValueField::kData)), data.data(), size);
    cells.Put32(value, ValueField::kDataSize, size);
    return;
  }
  const bool isInline = size <= kMaxInlineData;
  const std::uint32_t cell = isInline ? 0 : StoreData(hive, data);
  FreeData(hive, value);
  cells.Put32(value, ValueField::kDataSize, isInline ? size | kInlineData : size);
  cells.Put32(value, ValueField::kData, cell);
  if (isInline && size > 0) std::memcpy(cells.At(value) + ValueField::kData, data.data(), size);
}

std::uint32_t MakeValue(HiveData& hive, const NewName& name) {
  const std::size_t size = name.StoredSize();
  const std::uint32_t value = hive.cells.Allocate(ValueField::kName + size);
  hive.cells.Put16(value, 0, kValueTag);
  hive.cells.Put16(value, ValueField::kNameLength, static_cast<std::uint16_t>(size));
  hive.cells.Put32(value, ValueField::kDataSize, kInlineData);
  if (name.oneByte && size > 0) hive.cells.Put16(value, ValueField::kFlags, kOneByteValueName);
  name.Store(hive.cells.At(value) + ValueField::kName);
  return value;
}

void AppendToList(HiveData& hive, std::uint32_t key, std::uint32_t value) {
  HiveCells& cells = hive.cells;
  const std::size_t count = ValueCountOf(hive, key);
  std::uint32_t list = cells.Get32(key, KeyField::kValueList);
  if (count == 0) {
    list = cells.Allocate(4);
  } else if (cells.Room(list) < (count + 1) * 4) {
    list = cells.Grow(list, (count + 1 + count / 2) * 4);
  }
  cells.Put32(list, count * 4, value);
  cells.Put32(key, KeyField::kValueList, list);
  cells.Put32(key, KeyField::kValueCount, static_cast<std::uint32_t>(count + 1));
  if (hive.valueIndex.key == key) hive.valueIndex.cells.emplace(HashOf(ValueName(hive, value)), value);
}

void RaiseLongest(HiveData& hive, std::uint32_t key, std::uint32_t value) {
  HiveCells& cells = hive.cells;
  const auto nameBytes = static_cast<std::uint32_t>(ValueName(hive, value).units * 2);
  const std::uint32_t size = ValueSize(hive, value);
  cells.Put32(key, KeyField::kMaxValueName, std::max(cells.Get32(key, KeyField::kMaxValueName), nameBytes));
  cells.Put32(key, KeyField::kMaxValueData, std::max(cells.Get32(key, KeyField::kMaxValueData), size));
}

void FreeValue(HiveData& hive, std::uint32_t value) {
  FreeData(hive, value);
  hive.cells.Free(value);
}

void ForgetList(HiveData& hive, std::uint32_t key) {
  HiveCells& cells = hive.cells;
  if (ValueCountOf(hive, key) > 0) cells.Free(cells.Get32(key, KeyField::kValueList));
  cells.Put32(key, KeyField::kValueCount, 0);
  cells.Put32(key, KeyField::kValueList, kNoCell);
  cells.Put32(key, KeyField::kMaxValueName, 0);
  cells.Put32(key, KeyField::kMaxValueData, 0);
}

}  // namespace

StoredName ValueName(const HiveData& hive, std::uint32_t value) {
  const HiveCells& cells = hive.cells;
  const bool oneByte = (cells.Get16(value, ValueField::kFlags) & kOneByteValueName) != 0;
  const std::size_t size = cells.Get16(value, ValueField::kNameLength);
  return {cells.At(value) + ValueField::kName, oneByte ? size : size / 2, oneByte};
}

std::uint32_t ValueSize(const HiveData& hive, std::uint32_t value) {
  return hive.cells.Get32(value, ValueField::kDataSize) & ~kInlineData;
}

bool IsBigData(const HiveData& hive, std::uint32_t dataCell, std::uint32_t size) {
  return hive.minor > 3 && size > Hive::kBigDataLimit && hive.cells.Room(dataCell) < size;
}

Bytes ValueData(const HiveData& hive, std::uint32_t value) {
  const HiveCells& cells = hive.cells;
  const std::uint32_t size = ValueSize(hive, value);
  if (size == 0) return {};
  if ((cells.Get32(value, ValueField::kDataSize) & kInlineData) != 0) {
    const std::uint8_t* at = cells.At(value) + ValueField::kData;
    return {at, at + size};
  }
  const std::uint32_t cell = cells.Get32(value, ValueField::kData);
  if (!IsBigData(hive, cell, size)) return {cells.At(cell), cells.At(cell) + size};
  Bytes data;
  data.reserve(size);
  const std::uint32_t list = cells.Get32(cell, BigDataField::kSegments);
  for (std::size_t segment = 0; segment < SegmentCount(size); ++segment) {
    const std::uint8_t* at = cells.At(cells.Get32(list, segment * 4));
    data.insert(data.end(), at, at + SegmentSize(size, segment));
  }
  return data;
}

std::uint32_t ValueCell(const HiveData& hive, std::uint32_t key, std::size_t index) {
  return hive.cells.Get32(hive.cells.Get32(key, KeyField::kValueList), index * 4);
}

std::uint32_t FindValue(const HiveData& hive, std::uint32_t key, const NewName& name) {
  const std::size_t count = ValueCountOf(hive, key);
  const auto isNamed = [&](std::uint32_t value) { return CompareName(ValueName(hive, value), name.upper) == 0; };
  if (count > kIndexFrom) {
    if (hive.valueIndex.key != key) IndexValues(hive, key);
    const auto [first, last] = hive.valueIndex.cells.equal_range(NameHash(name.upper));
    const auto found = std::find_if(first, last, [&](const auto& entry) { return isNamed(entry.second); });
    return found == last ? kNoCell : found->second;
  }
  for (std::size_t at = 0; at < count; ++at) {
    const std::uint32_t value = ValueCell(hive, key, at);
    if (isNamed(value)) return value;
  }
  return kNoCell;
}

std::string DataFault(const HiveData& hive, std::uint64_t size) {
  const std::uint64_t limit = hive.minor > 3 ? Hive::kMaxData : Hive::kMaxDataWithoutDb;
  if (size <= limit) return {};
  return "its data are " + std::to_string(size) + " bytes long, and a hive of version 1." + std::to_string(hive.minor) +
         " holds no more than " + std::to_string(limit) + " in one value";
}

void WriteValue(HiveData& hive, std::uint32_t key, const NewName& name, std::uint32_t type, ByteView data) {
  std::uint32_t value = FindValue(hive, key, name);
  const bool isNew = value == kNoCell;
  if (isNew) value = MakeValue(hive, name);
  SetData(hive, value, data);
  hive.cells.Put32(value, ValueField::kType, type);
  if (isNew) AppendToList(hive, key, value);
  RaiseLongest(hive, key, value);
}

void CopyValue(HiveData& hive, std::uint32_t key, const HiveData& source, std::uint32_t from) {
  const HiveCells& theirs = source.cells;
  const std::size_t size = ValueField::kName + theirs.Get16(from, ValueField::kNameLength);
  const std::uint32_t value = hive.cells.Allocate(size);
  std::memcpy(hive.cells.At(value), theirs.At(from), size);
  hive.cells.Put32(value, ValueField::kDataSize, kInlineData);
  SetData(hive, value, ValueData(source, from));
  AppendToList(hive, key, value);
  RaiseLongest(hive, key, value);
}

void RemoveValue(HiveData& hive, std::uint32_t key, std::uint32_t value) {
  HiveCells& cells = hive.cells;
  const std::uint32_t list = cells.Get32(key, KeyField::kValueList);
  const std::size_t count = ValueCountOf(hive, key);
  std::size_t at = 0;
  while (at < count && cells.Get32(list, at * 4) != value) ++at;
  if (at == count) return;
  if (hive.valueIndex.key == key) {
    const auto [first, last] = hive.valueIndex.cells.equal_range(HashOf(ValueName(hive, value)));
    const auto found = std::find_if(first, last, [&](const auto& entry) { return entry.second == value; });
    if (found != last) hive.valueIndex.cells.erase(found);
  }
  FreeValue(hive, value);
  if (count == 1) {
    ForgetList(hive, key);
    return;
  }
  std::uint8_t* entry = cells.At(list) + at * 4;
  std::memmove(entry, entry + 4, (count - at - 1) * 4);
  cells.Put32(key, KeyField::kValueCount, static_cast<std::uint32_t>(count - 1));
}

void FreeValues(HiveData& hive, std::uint32_t key) {
  ForgetIndex(hive, key);
  for (std::size_t at = 0; at < ValueCountOf(hive, key); ++at) FreeValue(hive, ValueCell(hive, key, at));
  ForgetList(hive, key);
}

}  // namespace quillbox
