// SPDX-License-Identifier: GPL-3.0-or-later
#include "hive_mutation.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "registry/hive_layout.h"

namespace quillbox {
namespace {

constexpr std::size_t kLeastHive = 2 * kHivePage;
constexpr std::array kTags = {kKeyTag,      kValueTag,    kSecurityTag,  kBigDataTag,
                              kHintLeafTag, kHashLeafTag, kPlainLeafTag, kLeafIndexTag};

struct UsedCell {
  std::size_t at = 0;    ///< of the record, from the start of the file
  std::size_t room = 0;  ///< of the record
  std::uint32_t offset = 0;
};

/// The cells in use, as far as the bins can be followed.
std::vector<UsedCell> CellsOf(const Bytes& file) {
  std::vector<UsedCell> cells;
  for (std::size_t bin = kHivePage; bin + kHivePage <= file.size();) {
    const std::size_t size = Load32(&file[bin + BinField::kSize]);
    if (size == 0 || size % kHivePage != 0 || size > file.size() - bin) break;
    for (std::size_t at = bin + kBinHeader; at + kCellUnit <= bin + size;) {
      const std::uint32_t length = Load32(&file[at]);
      const std::size_t cell = length >> 31 != 0 ? 0U - length : length;
      if (cell < kCellUnit || cell > bin + size - at) break;
      if (length >> 31 != 0) {
        cells.push_back({at + kCellHeader, cell - kCellHeader, static_cast<std::uint32_t>(at - kHivePage)});
      }
      at += cell;
    }
    bin += size;
  }
  return cells;
}

std::uint32_t NewNumber(std::uint32_t old, const std::vector<UsedCell>& cells, Mutation& mutation) {
  const UsedCell& other = cells[mutation.Below(cells.size())];
  switch (mutation.Below(10)) {
    case 0:
      return kNoCell;
    case 1:
      return 0;
    case 2:
      return old + 1;
    case 3:
      return old - 1;
    case 4:
      return old ^ 1U << mutation.Below(32);
    case 5:
      return static_cast<std::uint32_t>(other.room);
    case 6:
      return other.offset + static_cast<std::uint32_t>(mutation.Below(4) * 4);
    case 7:
      return static_cast<std::uint32_t>(mutation.Below(0x10000));
    default:
      return other.offset;
  }
}

void ChangeField(Bytes& file, const UsedCell& cell, const std::vector<UsedCell>& cells, Mutation& mutation) {
  const std::size_t reach = std::min<std::size_t>(cell.room, mutation.OneIn(4) ? cell.room : KeyField::kName);
  if (mutation.OneIn(3)) {
    if (reach < 2) return;
    std::uint8_t* at = &file[cell.at + mutation.Below(reach / 2) * 2];
    const bool tag = mutation.OneIn(3);
    const auto small = static_cast<std::uint16_t>(Load16(at) + mutation.Below(5) - 2);
    Store16(tag ? &file[cell.at] : at, tag ? static_cast<std::uint16_t>(kTags[mutation.Below(kTags.size())]) : small);
  } else if (reach >= 4) {
    std::uint8_t* at = &file[cell.at + mutation.Below(reach / 4) * 4];
    Store32(at, NewNumber(Load32(at), cells, mutation));
  }
}

void CopyRecord(Bytes& file, const UsedCell& from, const UsedCell& to) {
  std::memmove(&file[to.at], &file[from.at], std::min(from.room, to.room));
}

/// Splits a cell, or frees it; the sizes still form a chain.
void ResizeCell(Bytes& file, const UsedCell& cell, Mutation& mutation) {
  std::uint8_t* header = &file[cell.at - kCellHeader];
  if (mutation.OneIn(4)) {
    Store32(header, 0U - Load32(header));
    return;
  }
  const std::size_t size = cell.room + kCellHeader;
  if (size < 2 * kCellUnit) return;
  const std::size_t first = kCellUnit * (1 + mutation.Below(size / kCellUnit - 1));
  Store32(header, 0U - static_cast<std::uint32_t>(first));
  const auto second = static_cast<std::uint32_t>(size - first);
  Store32(header + first, mutation.OneIn(2) ? second : 0U - second);
}

void ChangeRecord(Bytes& file, const UsedCell& cell, Mutation& mutation) {
  const auto begin = file.begin() + static_cast<std::ptrdiff_t>(cell.at);
  Bytes record(begin, begin + static_cast<std::ptrdiff_t>(cell.room));
  mutation.ByEngine(record, record.size());
  std::copy(record.begin(), record.end(), begin);
}

void AppendBin(Bytes& file, std::size_t limit) {
  if (file.size() + kHivePage > limit) return;
  const std::size_t bin = file.size() / kHivePage * kHivePage;
  file.resize(bin + kHivePage);
  Store32(&file[bin + BinField::kTag], kBinTag);
  Store32(&file[bin + BinField::kOffset], static_cast<std::uint32_t>(bin - kHivePage));
  Store32(&file[bin + BinField::kSize], kHivePage);
  Store32(&file[bin + kBinHeader], 0U - static_cast<std::uint32_t>(kHivePage - kBinHeader));
}

void MutateOnce(Bytes& file, std::size_t limit, Mutation& mutation) {
  const std::vector<UsedCell> cells = CellsOf(file);
  if (cells.empty() || mutation.OneIn(40)) return mutation.ByEngine(file, limit);
  const UsedCell& cell = cells[mutation.Below(cells.size())];
  switch (mutation.Below(12)) {
    case 0:
      return CopyRecord(file, cells[mutation.Below(cells.size())], cell);
    case 1:
      return ResizeCell(file, cell, mutation);
    case 2:
    case 3:
      return ChangeRecord(file, cell, mutation);
    case 4:
      if (mutation.OneIn(8)) return AppendBin(file, limit);
      [[fallthrough]];
    default:
      return ChangeField(file, cell, cells, mutation);
  }
}

}  // namespace

void MutateHive(Bytes& file, std::size_t limit, Mutation& mutation) {
  for (std::size_t count = 1 + mutation.Below(3); count > 0; --count) MutateOnce(file, limit, mutation);
  if (!mutation.OneIn(32)) MendHiveBase(file);
  if (file.size() > limit) file.resize(limit);
}

void MendHiveBase(Bytes& file) {
  file.resize(std::max(kLeastHive, (file.size() + kHivePage - 1) / kHivePage * kHivePage));
  const auto put = [&](std::size_t field, std::uint32_t number) { Store32(&file[field], number); };
  put(BaseField::kTag, kHiveTag);
  put(BaseField::kSequence2, Load32(&file[BaseField::kSequence1]));
  put(BaseField::kMajor, 1);
  put(BaseField::kMinor, 3 + Load32(&file[BaseField::kMinor]) % 4);
  put(BaseField::kType, 0);
  put(BaseField::kFormat, 1);
  put(BaseField::kBinsSize, static_cast<std::uint32_t>(file.size() - kHivePage));
  MendBaseChecksum(file);
}

void MendBaseChecksum(Bytes& file) {
  if (file.size() >= kSector) Store32(&file[BaseField::kChecksum], BaseChecksum(file.data()));
}

}  // namespace quillbox
