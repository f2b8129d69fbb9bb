// The bytes of a hive as a heap of cells: taking, freeing and reusing them. Which cells are free is kept beside the
// bytes, so that neither taking nor freeing a cell ever searches the file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "registry/hive_layout.h"
#include "text/unicode.h"

namespace quillbox {

/// One bit for each 8 bytes of the bins.
class CellBits {
 public:
  void Resize(std::size_t binsSize) { words_.resize((binsSize / kCellUnit + 63) / 64); }
  bool Test(std::size_t offset) const { return (words_[Word(offset)] & Mask(offset)) != 0; }
  void Set(std::size_t offset) { words_[Word(offset)] |= Mask(offset); }
  void Clear(std::size_t offset) { words_[Word(offset)] &= ~Mask(offset); }
  /// The highest offset below `offset` whose bit is set; there must be one.
  std::size_t LastBefore(std::size_t offset) const;

 private:
  static std::size_t Word(std::size_t offset) { return offset / kCellUnit / 64; }
  static std::uint64_t Mask(std::size_t offset) { return std::uint64_t{1} << (offset / kCellUnit % 64); }

  std::vector<std::uint64_t> words_;
};

/// A cell is named by its offset from the start of the bins. What At() returns is good until the next Allocate().
class HiveCells {
 public:
  /// `file`: a base block and as many bytes of bins as it names. Call Scan() unless there are no bins yet.
  explicit HiveCells(Bytes file = {});

  /// What is done with a fault of the bins. It may throw; when it returns, the scan goes on where it can.
  using ReportFault = std::function<void(std::size_t offset, std::string why)>;

  /// Finds all bins and cells. Bins with a fault are suspect from then on: not all of their cells are known.
  void Scan(const ReportFault& report);
  /// Makes a cell in use begin at `cell`, which may be any number, where that is within a suspect bin and what stands
  /// there has the size of one. Such cells may overlap others.
  bool Adopt(std::uint32_t cell) { return LooksUsed(cell, true) && (used_.Set(cell), true); }
  /// The same in any bin for a record that begins with `tag`. The bin is suspect from then on.
  bool Adopt(std::uint32_t cell, std::uint16_t tag);

  const Bytes& File() const { return file_; }
  std::uint8_t* Base() { return file_.data(); }
  const std::uint8_t* Base() const { return file_.data(); }
  std::size_t BinsSize() const { return file_.size() - kHivePage; }

  /// True when a cell in use begins at `cell`.
  bool IsUsed(std::uint32_t cell) const { return cell % kCellUnit == 0 && cell < BinsSize() && used_.Test(cell); }
  const CellBits& Used() const { return used_; }

  /// The record in a cell in use, and the bytes that it may have.
  std::uint8_t* At(std::uint32_t cell) { return file_.data() + kHivePage + cell + kCellHeader; }
  const std::uint8_t* At(std::uint32_t cell) const { return file_.data() + kHivePage + cell + kCellHeader; }
  std::size_t Room(std::uint32_t cell) const { return 0U - Load32(At(cell) - kCellHeader) - kCellHeader; }

  std::uint16_t Get16(std::uint32_t cell, std::size_t field) const { return Load16(At(cell) + field); }
  std::uint32_t Get32(std::uint32_t cell, std::size_t field) const { return Load32(At(cell) + field); }
  std::uint64_t Get64(std::uint32_t cell, std::size_t field) const { return Load64(At(cell) + field); }
  void Put16(std::uint32_t cell, std::size_t field, std::uint16_t number) { Store16(At(cell) + field, number); }
  void Put32(std::uint32_t cell, std::size_t field, std::uint32_t number) { Store32(At(cell) + field, number); }
  void Put64(std::uint32_t cell, std::size_t field, std::uint64_t number) { Store64(At(cell) + field, number); }
  std::uint16_t Tag(std::uint32_t cell) const { return Get16(cell, 0); }

  /// Tells the processor that the record at `cell`, which may be any number, will be read soon.
  void Prefetch(std::uint32_t cell) const {
#if defined(__GNUC__)
    if (cell < BinsSize()) __builtin_prefetch(Base() + kHivePage + cell);
#endif
  }
  /// A number of the record at `cell`, which may be any number; kNoCell where that is outside the bins.
  std::uint32_t Peek(std::uint32_t cell, std::size_t field) const {
    return cell + kCellHeader + field + 4 <= BinsSize() ? Get32(cell, field) : kNoCell;
  }

  /// A cell with room for `size` bytes, all zero. The caller has made sure that the bins stay within kMaxBinsSize.
  std::uint32_t Allocate(std::size_t size);
  void Free(std::uint32_t cell);
  /// `cell` with room for `size` bytes, its content kept: itself, or a new cell in its place.
  std::uint32_t Grow(std::uint32_t cell, std::size_t size);

 private:
  static constexpr std::size_t kExactClasses = 64;  ///< cells of less than 512 bytes: a class for each size
  static constexpr std::size_t kClasses = 160;      ///< above: four classes for each doubling
  static std::size_t ClassOf(std::size_t size);

  std::uint8_t* Header(std::size_t offset) {
    return file_.data() + kHivePage + offset;
  }
  const std::uint8_t* Header(std::size_t offset) const {
    return file_.data() + kHivePage + offset;
  }
  struct Bin {
    std::size_t begin;
    std::size_t end;
    bool isSuspect;
  };

  std::string BinFault(std::size_t bin) const;
  std::size_t BinAfter(std::size_t bin) const;
  bool ScanBin(const ReportFault& report, std::size_t bin, std::size_t end);
  const Bin* BinOf(std::size_t offset) const;
  bool LooksUsed(std::uint32_t cell, bool inSuspect) const;
  void AddFree(std::size_t offset, std::size_t size);
  void RemoveFree(std::size_t offset);
  bool IsFreeOfClass(std::size_t offset, std::size_t sizeClass) const;
  std::uint32_t TakeFree(std::size_t size);
  std::uint32_t TakeFromClass(std::size_t sizeClass, std::size_t size);
  std::uint32_t AddBin(std::size_t cellSize);
  void ResizeBits();

  Bytes file_;
  std::vector<Bin> bins_;  ///< as Scan() found them, in their order
  CellBits used_;          ///< starts of cells in use
  CellBits freeStart_;     ///< starts of free cells
  CellBits freeEnd_;       ///< last units of free cells
  /// Free cells by size. May name cells that are no longer free or have grown: they are dropped when met.
  std::array<std::vector<std::uint32_t>, kClasses> free_;
};

}  // namespace quillbox
