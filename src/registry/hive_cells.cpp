// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_cells.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <utility>

#include "registry/hive_data.h"

namespace quillbox {

namespace {

/// How many free cells of a class are looked at before a cell of a larger class is split.
constexpr std::size_t kCandidates = 8;

}  // namespace

std::uint32_t BaseChecksum(const std::uint8_t* base) {
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < BaseField::kChecksum; at += 4) sum ^= Load32(base + at);
  if (sum == 0xFFFFFFFF) return 0xFFFFFFFE;
  return sum == 0 ? 1 : sum;
}

std::size_t CellBits::LastBefore(std::size_t offset) const {
  std::size_t word = Word(offset);
  std::uint64_t bits = words_[word] & (Mask(offset) - 1);
  while (bits == 0) bits = words_[--word];
  return (word * 64 + static_cast<std::size_t>(std::bit_width(bits)) - 1) * kCellUnit;
}

HiveCells::HiveCells(Bytes file) : file_(std::move(file)) {
  if (file_.size() < kHivePage) file_.resize(kHivePage);
  ResizeBits();
}

void HiveCells::ResizeBits() {
  for (CellBits* bits : {&used_, &freeStart_, &freeEnd_}) bits->Resize(BinsSize());
}

/// What is wrong with the header of the bin at `bin`; empty when nothing is.
std::string HiveCells::BinFault(std::size_t bin) const {
  if (BinsSize() - bin < kBinHeader || Load32(Header(bin) + BinField::kTag) != kBinTag) {
    return "there is no bin header (\"hbin\")";
  }
  if (Load32(Header(bin) + BinField::kOffset) != bin) return "the bin names another offset";
  const std::size_t size = Load32(Header(bin) + BinField::kSize);
  if (size != 0 && size % kHivePage == 0 && size <= BinsSize() - bin) return {};
  return "the bin's size, " + std::to_string(size) + " bytes, is wrong";
}

/// The next bin behind a damaged one, by its header; the end of the bins when there is none.
std::size_t HiveCells::BinAfter(std::size_t bin) const {
  for (bin += kHivePage; bin + kBinHeader <= BinsSize(); bin += kHivePage) {
    if (Load32(Header(bin) + BinField::kTag) == kBinTag && Load32(Header(bin) + BinField::kOffset) == bin) return bin;
  }
  return BinsSize();
}

void HiveCells::Scan(const ReportFault& report) {
  for (std::size_t bin = 0; bin < BinsSize();) {
    std::string fault = BinFault(bin);
    if (fault.empty()) {
      const std::size_t end = bin + Load32(Header(bin) + BinField::kSize);
      const bool isWhole = ScanBin(report, bin, end);
      bins_.push_back({bin, end, !isWhole});
    } else {
      report(bin, std::move(fault));
      bins_.push_back({bin, BinAfter(bin), true});
    }
    bin = bins_.back().end;
  }
}

/// False when a fault was met and reported.
bool HiveCells::ScanBin(const ReportFault& report, std::size_t bin, std::size_t end) {
  for (std::size_t cell = bin + kBinHeader; cell < end;) {
    const std::uint32_t length = Load32(Header(cell));
    const bool inUse = length >> 31 != 0;
    const std::size_t size = inUse ? 0U - length : length;
    if (size == 0 || size % kCellUnit != 0 || size > end - cell) {
      report(cell, "the cell's size, " + std::to_string(size) + " bytes, is wrong");
      return false;
    }
    if (inUse) {
      used_.Set(cell);
    } else {
      AddFree(cell, size);
    }
    cell += size;
  }
  return true;
}

const HiveCells::Bin* HiveCells::BinOf(std::size_t offset) const {
  const auto after = std::upper_bound(bins_.begin(), bins_.end(), offset,
                                      [](std::size_t at, const Bin& bin) { return at < bin.begin; });
  return after == bins_.begin() || offset >= std::prev(after)->end ? nullptr : &*std::prev(after);
}

bool HiveCells::LooksUsed(Cell cell, bool inSuspect) const {
  if (cell.offset % kCellUnit != 0) return false;
  const Bin* bin = BinOf(cell.offset);
  if (bin == nullptr || bin->end - cell.offset < kCellUnit || (inSuspect && !bin->isSuspect)) return false;
  const std::uint32_t length = Load32(Header(cell.offset));
  const std::size_t size = 0U - length;
  return length >> 31 != 0 && size % kCellUnit == 0 && size <= bin->end - cell.offset;
}

bool HiveCells::Adopt(Cell cell, RecordTag tag) {
  if (!LooksUsed(cell, false) || Tag(cell) != tag) return false;
  bins_[static_cast<std::size_t>(BinOf(cell.offset) - bins_.data())].isSuspect = true;
  used_.Set(cell.offset);
  return true;
}

HiveCells::SizeClass HiveCells::ClassOf(std::size_t size) {
  const std::size_t units = size / kCellUnit;
  if (units < kExactClasses) return {units};
  const auto width = static_cast<std::size_t>(std::bit_width(units));
  return {kExactClasses + (width - 7) * 4 + (units >> (width - 3)) % 4};
}

void HiveCells::AddFree(std::size_t offset, std::size_t size) {
  Store32(Header(offset), static_cast<std::uint32_t>(size));
  freeStart_.Set(offset);
  freeEnd_.Set(offset + size - kCellUnit);
  free_[ClassOf(size).number].push_back(static_cast<std::uint32_t>(offset));
}

void HiveCells::RemoveFree(std::size_t offset) {
  freeStart_.Clear(offset);
  freeEnd_.Clear(offset + Load32(Header(offset)) - kCellUnit);
}

bool HiveCells::IsFreeOfClass(std::size_t offset, SizeClass sizeClass) const {
  return freeStart_.Test(offset) && ClassOf(Load32(Header(offset))) == sizeClass;
}

std::optional<Cell> HiveCells::TakeFromClass(SizeClass sizeClass, std::size_t size) {
  std::vector<std::uint32_t>& list = free_[sizeClass.number];
  std::size_t fits = 0;
  for (std::size_t at = list.size(); at > 0 && fits < kCandidates; --at) {
    const std::uint32_t offset = list[at - 1];
    const bool isFree = IsFreeOfClass(offset, sizeClass);
    if (isFree && Load32(Header(offset)) < size) {
      ++fits;
      continue;
    }
    list[at - 1] = list.back();
    list.pop_back();
    if (isFree) return Cell(offset);
  }
  return std::nullopt;
}

std::optional<Cell> HiveCells::TakeFree(std::size_t size) {
  for (SizeClass sizeClass = ClassOf(size); sizeClass.number < kClasses; ++sizeClass.number) {
    if (free_[sizeClass.number].empty()) continue;
    if (const std::optional<Cell> found = TakeFromClass(sizeClass, size)) return found;
  }
  return std::nullopt;
}

Cell HiveCells::AddBin(std::size_t cellSize) {
  const std::size_t bin = BinsSize();
  const std::size_t size = (cellSize + kBinHeader + kHivePage - 1) / kHivePage * kHivePage;
  if (file_.capacity() < file_.size() + size) file_.reserve(file_.size() * 2 + size);
  file_.resize(file_.size() + size);
  ResizeBits();
  std::uint8_t* header = Header(bin);
  Store32(header + BinField::kTag, kBinTag);
  Store32(header + BinField::kOffset, static_cast<std::uint32_t>(bin));
  Store32(header + BinField::kSize, static_cast<std::uint32_t>(size));
  Store32(Base() + BaseField::kBinsSize, static_cast<std::uint32_t>(BinsSize()));
  const Cell cell(static_cast<std::uint32_t>(bin + kBinHeader));
  Store32(Header(cell.offset), static_cast<std::uint32_t>(size - kBinHeader));
  freeStart_.Set(cell.offset);
  freeEnd_.Set(bin + size - kCellUnit);
  return cell;
}

Cell HiveCells::Allocate(std::size_t size) {
  const std::size_t need = (size + kCellHeader + kCellUnit - 1) / kCellUnit * kCellUnit;
  const std::optional<Cell> taken = TakeFree(need);
  const Cell cell = taken ? *taken : AddBin(need);
  const std::size_t found = Load32(Header(cell.offset));
  RemoveFree(cell.offset);
  if (found > need) AddFree(cell.offset + need, found - need);
  used_.Set(cell.offset);
  Store32(Header(cell.offset), 0U - static_cast<std::uint32_t>(need));
  std::memset(At(cell), 0, need - kCellHeader);
  return cell;
}

void HiveCells::Free(Cell cell) {
  std::size_t start = cell.offset;
  std::size_t end = start + kCellHeader + Room(cell);
  used_.Clear(start);
  if (end < BinsSize() && freeStart_.Test(end)) {
    const std::size_t next = end;
    end += Load32(Header(next));
    RemoveFree(next);
  }
  if (freeEnd_.Test(start - kCellUnit)) {
    start = freeStart_.LastBefore(start);
    RemoveFree(start);
  }
  AddFree(start, end - start);
}

Cell HiveCells::Grow(Cell cell, std::size_t size) {
  if (Room(cell) >= size) return cell;
  const Cell larger = Allocate(size);
  std::memcpy(At(larger), At(cell), Room(cell));
  Free(cell);
  return larger;
}

}  // namespace quillbox
