// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>

#include "registry/hive_data.h"

namespace quillbox {

namespace {

/// A key with more values than this is searched by an index.
constexpr std::size_t kIndexFrom = 32;

std::size_t ValueCountOf(const HiveData& hive, KeyCell key) {
  return hive.cells.Get(key, KeyField::kValueCount);
}

std::uint32_t HashOf(const StoredName& name) {
  return NameHash(UpperName(name));
}

void IndexValues(const HiveData& hive, KeyCell key) {
  ValueIndex& index = hive.valueIndex;
  index.key.reset();
  index.cells.clear();
  const std::size_t count = ValueCountOf(hive, key);
  index.cells.reserve(count);
  for (std::size_t at = 0; at < count; ++at) {
    const ValueCell value = ValueOf(hive, key, at);
    index.cells.emplace(HashOf(ValueName(hive, value)), value);
  }
  index.key = key;
}

void ForgetIndex(const HiveData& hive, KeyCell key) {
  if (hive.valueIndex.key == key) hive.valueIndex = {};
}

std::size_t SegmentCount(std::size_t size) {
  return (size + Hive::kBigDataLimit - 1) / Hive::kBigDataLimit;
}

std::size_t SegmentSize(std::size_t size, std::size_t segment) {
  return std::min<std::size_t>(Hive::kBigDataLimit, size - segment * Hive::kBigDataLimit);
}

DataCell StoreBigData(HiveData& hive, ByteView data) {
  HiveCells& cells = hive.cells;
  const std::size_t count = SegmentCount(data.size());
  const DataCell record(cells.Allocate(BigDataField::kEnd));
  const DataCell list(cells.Allocate(count * 4));
  cells.PutTag(record, kBigDataTag);
  cells.Put(record, BigDataField::kCount, static_cast<std::uint16_t>(count));
  cells.Put(record, BigDataField::kSegments, list);
  for (std::size_t segment = 0; segment < count; ++segment) {
    // Windows keeps four spare bytes at the end of each segment.
    const DataCell cell(cells.Allocate(Hive::kBigDataLimit + 4));
    std::memcpy(cells.At(cell), data.data() + segment * Hive::kBigDataLimit, SegmentSize(data.size(), segment));
    cells.Put(list, PieceEntry(segment), cell);
  }
  return record;
}

DataCell StoreData(HiveData& hive, ByteView data) {
  if (hive.minor > 3 && data.size() > Hive::kBigDataLimit) return StoreBigData(hive, data);
  const DataCell cell(hive.cells.Allocate(data.size()));
  std::memcpy(hive.cells.At(cell), data.data(), data.size());
  return cell;
}

void FreeData(HiveData& hive, ValueCell value) {
  HiveCells& cells = hive.cells;
  const std::uint32_t size = cells.Get(value, ValueField::kDataSize);
  const DataCell cell = cells.Get(value, ValueField::kData);
  if (size == 0 || (size & kInlineData) != 0) return;
  if (IsBigData(hive, cell, size)) {
    const DataCell list = cells.Get(cell, BigDataField::kSegments);
    const std::size_t count = cells.Get(cell, BigDataField::kCount);
    for (std::size_t at = 0; at < count; ++at) cells.Free(cells.Get(list, PieceEntry(at)));
    cells.Free(list);
  }
  cells.Free(cell);
}

/// True when the data can be written over those that `value` has, without wasting most of their cell.
bool FitsInPlace(const HiveData& hive, ValueCell value, std::size_t size) {
  const std::uint32_t stored = hive.cells.Get(value, ValueField::kDataSize);
  if (stored == 0 || (stored & kInlineData) != 0 || size <= kMaxInlineData) return false;
  if (hive.minor > 3 && (size > Hive::kBigDataLimit || stored > Hive::kBigDataLimit)) return false;
  const std::size_t room = hive.cells.Room(hive.cells.Get(value, ValueField::kData));
  return size <= room && size * 2 + kCellUnit >= room;
}

void SetData(HiveData& hive, ValueCell value, ByteView data) {
  HiveCells& cells = hive.cells;
  const auto size = static_cast<std::uint32_t>(data.size());
  if (FitsInPlace(hive, value, size)) {
    std::memcpy(cells.At(cells.Get(value, ValueField::kData)), data.data(), size);
    cells.Put(value, ValueField::kDataSize, size);
    return;
  }
  const bool isInline = size <= kMaxInlineData;
  const DataCell cell = isInline ? DataCell(0) : StoreData(hive, data);
  FreeData(hive, value);
  cells.Put(value, ValueField::kDataSize, isInline ? size | kInlineData : size);
  cells.Put(value, ValueField::kData, cell);
  if (isInline && size > 0) std::memcpy(cells.At(value) + ValueField::kData.at, data.data(), size);
}

ValueCell MakeValue(HiveData& hive, const NewName& name) {
  const std::size_t size = name.StoredSize();
  const ValueCell value(hive.cells.Allocate(ValueField::kName + size));
  hive.cells.PutTag(value, kValueTag);
  hive.cells.Put(value, ValueField::kNameLength, static_cast<std::uint16_t>(size));
  hive.cells.Put(value, ValueField::kDataSize, kInlineData);
  if (name.oneByte && size > 0) hive.cells.Put(value, ValueField::kFlags, kOneByteValueName);
  name.Store(hive.cells.At(value) + ValueField::kName);
  return value;
}

void AppendToList(HiveData& hive, KeyCell key, ValueCell value) {
  HiveCells& cells = hive.cells;
  const std::size_t count = ValueCountOf(hive, key);
  ValueListCell list = cells.Get(key, KeyField::kValueList);
  if (count == 0) {
    list = ValueListCell(cells.Allocate(4));
  } else if (cells.Room(list) < (count + 1) * 4) {
    list = ValueListCell(cells.Grow(list, (count + 1 + count / 2) * 4));
  }
  cells.Put(list, ValueEntry(count), value);
  cells.Put(key, KeyField::kValueList, list);
  cells.Put(key, KeyField::kValueCount, static_cast<std::uint32_t>(count + 1));
  if (hive.valueIndex.key == key) hive.valueIndex.cells.emplace(HashOf(ValueName(hive, value)), value);
}

void RaiseLongest(HiveData& hive, KeyCell key, ValueCell value) {
  HiveCells& cells = hive.cells;
  const auto nameBytes = static_cast<std::uint32_t>(ValueName(hive, value).units * 2);
  const std::uint32_t size = ValueSize(hive, value);
  cells.Put(key, KeyField::kMaxValueName, std::max(cells.Get(key, KeyField::kMaxValueName), nameBytes));
  cells.Put(key, KeyField::kMaxValueData, std::max(cells.Get(key, KeyField::kMaxValueData), size));
}

void FreeValue(HiveData& hive, ValueCell value) {
  FreeData(hive, value);
  hive.cells.Free(value);
}

void ForgetList(HiveData& hive, KeyCell key) {
  HiveCells& cells = hive.cells;
  if (ValueCountOf(hive, key) > 0) cells.Free(cells.Get(key, KeyField::kValueList));
  cells.Put(key, KeyField::kValueCount, 0);
  cells.Put(key, KeyField::kValueList, ValueListCell());
  cells.Put(key, KeyField::kMaxValueName, 0);
  cells.Put(key, KeyField::kMaxValueData, 0);
}

}  // namespace

StoredName ValueName(const HiveData& hive, ValueCell value) {
  const HiveCells& cells = hive.cells;
  const bool oneByte = (cells.Get(value, ValueField::kFlags) & kOneByteValueName) != 0;
  const std::size_t size = cells.Get(value, ValueField::kNameLength);
  return {cells.At(value) + ValueField::kName, oneByte ? size : size / 2, oneByte};
}

std::uint32_t ValueSize(const HiveData& hive, ValueCell value) {
  return hive.cells.Get(value, ValueField::kDataSize) & ~kInlineData;
}

bool IsBigData(const HiveData& hive, DataCell data, std::uint32_t size) {
  return hive.minor > 3 && size > Hive::kBigDataLimit && hive.cells.Room(data) < size;
}

Bytes ValueData(const HiveData& hive, ValueCell value) {
  const HiveCells& cells = hive.cells;
  const std::uint32_t size = ValueSize(hive, value);
  if (size == 0) return {};
  if ((cells.Get(value, ValueField::kDataSize) & kInlineData) != 0) {
    const std::uint8_t* at = cells.At(value) + ValueField::kData.at;
    return {at, at + size};
  }
  const DataCell cell = cells.Get(value, ValueField::kData);
  if (!IsBigData(hive, cell, size)) return {cells.At(cell), cells.At(cell) + size};
  Bytes data;
  data.reserve(size);
  const DataCell list = cells.Get(cell, BigDataField::kSegments);
  for (std::size_t segment = 0; segment < SegmentCount(size); ++segment) {
    const std::uint8_t* at = cells.At(cells.Get(list, PieceEntry(segment)));
    data.insert(data.end(), at, at + SegmentSize(size, segment));
  }
  return data;
}

ValueCell ValueOf(const HiveData& hive, KeyCell key, std::size_t index) {
  return hive.cells.Get(hive.cells.Get(key, KeyField::kValueList), ValueEntry(index));
}

std::optional<ValueCell> FindValue(const HiveData& hive, KeyCell key, const NewName& name) {
  const std::size_t count = ValueCountOf(hive, key);
  const auto isNamed = [&](ValueCell value) { return CompareName(ValueName(hive, value), name.upper) == 0; };
  if (count > kIndexFrom) {
    if (hive.valueIndex.key != key) IndexValues(hive, key);
    const auto [first, last] = hive.valueIndex.cells.equal_range(NameHash(name.upper));
    const auto found = std::find_if(first, last, [&](const auto& entry) { return isNamed(entry.second); });
    if (found == last) return std::nullopt;
    return found->second;
  }
  for (std::size_t at = 0; at < count; ++at) {
    const ValueCell value = ValueOf(hive, key, at);
    if (isNamed(value)) return value;
  }
  return std::nullopt;
}

std::string DataFault(const HiveData& hive, std::uint64_t size) {
  const std::uint64_t limit = hive.minor > 3 ? Hive::kMaxData : Hive::kMaxDataWithoutDb;
  if (size <= limit) return {};
  return "its data are " + std::to_string(size) + " bytes long, and a hive of version 1." + std::to_string(hive.minor) +
         " holds no more than " + std::to_string(limit) + " in one value";
}

void WriteValue(HiveData& hive, KeyCell key, const NewName& name, std::uint32_t type, ByteView data) {
  const std::optional<ValueCell> found = FindValue(hive, key, name);
  const ValueCell value = found ? *found : MakeValue(hive, name);
  SetData(hive, value, data);
  hive.cells.Put(value, ValueField::kType, type);
  if (!found) AppendToList(hive, key, value);
  RaiseLongest(hive, key, value);
}

void CopyValue(HiveData& hive, KeyCell key, const HiveData& source, ValueCell from) {
  const HiveCells& theirs = source.cells;
  const std::size_t size = ValueField::kName + theirs.Get(from, ValueField::kNameLength);
  const ValueCell value(hive.cells.Allocate(size));
  std::memcpy(hive.cells.At(value), theirs.At(from), size);
  hive.cells.Put(value, ValueField::kDataSize, kInlineData);
  SetData(hive, value, ValueData(source, from));
  AppendToList(hive, key, value);
  RaiseLongest(hive, key, value);
}

void RemoveValue(HiveData& hive, KeyCell key, ValueCell value) {
  HiveCells& cells = hive.cells;
  const ValueListCell list = cells.Get(key, KeyField::kValueList);
  const std::size_t count = ValueCountOf(hive, key);
  std::size_t at = 0;
  while (at < count && cells.Get(list, ValueEntry(at)) != value) ++at;
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
  cells.Put(key, KeyField::kValueCount, static_cast<std::uint32_t>(count - 1));
}

void FreeValues(HiveData& hive, KeyCell key) {
  ForgetIndex(hive, key);
  for (std::size_t at = 0; at < ValueCountOf(hive, key); ++at) FreeValue(hive, ValueOf(hive, key, at));
  ForgetList(hive, key);
}

}  // namespace quillbox
