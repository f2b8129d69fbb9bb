// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>
#include <string_view>

#include "registry/hive_data.h"

namespace quillbox {

ByteView Descriptor(const HiveData& hive, SecurityCell security) {
  return {hive.cells.At(security) + SecurityField::kDescriptor, hive.cells.Get(security, SecurityField::kSize)};
}

SecurityCell AddSecurity(HiveData& hive, ByteView descriptor) {
  HiveCells& cells = hive.cells;
  const SecurityCell security(cells.Allocate(SecurityField::kDescriptor + descriptor.size()));
  cells.PutTag(security, kSecurityTag);
  cells.Put(security, SecurityField::kCount, 1);
  cells.Put(security, SecurityField::kSize, static_cast<std::uint32_t>(descriptor.size()));
  std::copy(descriptor.begin(), descriptor.end(), cells.At(security) + SecurityField::kDescriptor);

  const SecurityCell previous = hive.anySecurity.value_or(security);
  const SecurityCell next = previous == security ? security : cells.Get(previous, SecurityField::kNext);
  cells.Put(security, SecurityField::kNext, next);
  cells.Put(security, SecurityField::kPrevious, previous);
  cells.Put(previous, SecurityField::kNext, security);
  cells.Put(next, SecurityField::kPrevious, security);
  hive.anySecurity = previous;
  return security;
}

void ShareSecurity(HiveData& hive, SecurityCell security) {
  if (security.IsNone()) return;
  hive.cells.Put(security, SecurityField::kCount, hive.cells.Get(security, SecurityField::kCount) + 1);
}

void ReleaseSecurity(HiveData& hive, SecurityCell security) {
  if (security.IsNone()) return;
  HiveCells& cells = hive.cells;
  const std::uint32_t left = cells.Get(security, SecurityField::kCount) - 1;
  cells.Put(security, SecurityField::kCount, left);
  if (left > 0) return;
  const SecurityCell next = cells.Get(security, SecurityField::kNext);
  const SecurityCell previous = cells.Get(security, SecurityField::kPrevious);
  cells.Put(previous, SecurityField::kNext, next);
  cells.Put(next, SecurityField::kPrevious, previous);
  if (hive.anySecurity == security) {
    hive.anySecurity = next == security ? std::nullopt : std::optional(next);
  }
  cells.Free(security);
}

Bytes DefaultDescriptor() {
  return {
      1, 0, 0x04, 0x80, 20, 0, 0, 0, 36, 0, 0, 0, 0, 0, 0, 0, 48, 0, 0, 0,  // owner @20, group @36, access list
                                                                            // @48
      1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0,                   // owner: the administrators
      1, 1, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0,                                  // group: the system
      2, 0, 72, 0, 3, 0, 0, 0,                                              // three entries, inherited by subkeys
      0, 2, 24, 0, 0x3F, 0, 0x0F, 0, 1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0,  // administrators: all
      0, 2, 20, 0, 0x3F, 0, 0x0F, 0, 1, 1, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0,                 // system: all
      0, 2, 20, 0, 0x19, 0, 0x02, 0, 1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0,                  // everyone: read
  };
}

std::size_t SecurityPool::Hash(ByteView descriptor) {
  return std::hash<std::string_view>{}(
      std::string_view(reinterpret_cast<const char*>(descriptor.data()), descriptor.size()));
}

SecurityPool::SecurityPool(HiveData& hive) : hive_(hive) {
  if (!hive.anySecurity) return;
  SecurityCell security = *hive.anySecurity;
  do {
    cells_.emplace(Hash(Descriptor(hive, security)), security);
    security = hive.cells.Get(security, SecurityField::kNext);
  } while (security != hive.anySecurity);
}

SecurityCell SecurityPool::Share(ByteView descriptor) {
  const std::size_t hash = Hash(descriptor);
  const auto [first, last] = cells_.equal_range(hash);
  const auto found = std::find_if(first, last, [&](const auto& entry) {
    const ByteView stored = Descriptor(hive_, entry.second);
    return std::equal(stored.begin(), stored.end(), descriptor.begin(), descriptor.end());
  });
  if (found != last) {
    ShareSecurity(hive_, found->second);
    return found->second;
  }
  const SecurityCell security = AddSecurity(hive_, descriptor);
  cells_.emplace(hash, security);
  return security;
}

}  // namespace quillbox
