// SPDX-License-Identifier: GPL-3.0-or-later
// The bytes of a hive as a heap of cells: allocating, freeing and reusing them. Which cells are free is kept outside
// the bytes, so that neither allocating nor freeing searches the file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
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

/// What At() returns is valid until the next Allocate().
class HiveCells {
 public:
  /// `file`: a base block and as many bytes of bins as it says. Call Scan() unless there are no bins yet.
  explicit HiveCells(Bytes file = {});

  /// Takes a fault of the bins. It may throw; when it returns, the scan goes on where it can.
  using ReportFault = std::function<void(std::size_t offset, std::string why)>;

  /// Finds all bins and cells. Bins with a fault become suspect: not all of their cells are known.
  void Scan(const ReportFault& report);
  /// Counts `cell`, which may have any number, as a cell in use if it is in a suspect bin and has a possible size. Such
  /// cells may overlap others.
  bool Adopt(Cell cell) { return LooksUsed(cell, true) && (used_.Set(cell.offset), true); }
  /// The same in any bin for a record that begins with `tag`. The bin becomes suspect.
  bool Adopt(Cell cell, RecordTag tag);

  const Bytes& File() const { return file_; }
  std::uint8_t* Base() { return file_.data(); }
  const std::uint8_t* Base() const { return file_.data(); }
  std::size_t BinsSize() const { return file_.size() - kHivePage; }

  /// True when a cell in use begins at `cell`.
  bool IsUsed(Cell cell) const {
    return cell.offset % kCellUnit == 0 && cell.offset < BinsSize() && used_.Test(cell.offset);
  }
  const CellBits& Used() const { return used_; }

  /// The record in a cell in use, and the bytes that it may have.
  std::uint8_t* At(Cell cell) { return file_.data() + kHivePage + cell.offset + kCellHeader; }
  const std::uint8_t* At(Cell cell) const { return file_.data() + kHivePage + cell.offset + kCellHeader; }
  std::size_t Room(Cell cell) const { return 0U - Load32(At(cell) - kCellHeader) - kCellHeader; }

  template <typename Record, typename T>
  T Get(std::type_identity_t<Record> cell, RecordField<Record, T> field) const {
    return LoadField(At(cell), field);
  }
  template <typename Record, typename T>
  void Put(std::type_identity_t<Record> cell, RecordField<Record, T> field, std::type_identity_t<T> content) {
    StoreField(At(cell), field, content);
  }
  RecordTag Tag(Cell cell) const { return LoadTag(At(cell)); }
  void PutTag(Cell cell, RecordTag tag) { StoreTag(At(cell), tag); }

  /// Has the processor fetch the record at `cell`, which may have any number, because it will be read soon.
  void Prefetch(Cell cell) const {
#if defined(__GNUC__)
    if (cell.offset < BinsSize()) __builtin_prefetch(Base() + kHivePage + cell.offset);
#endif
  }
  /// The cell that a field of the record at `cell`, which may be any number, names; none where that is outside the
  /// bins.
  template <typename Record, typename T>
  T Peek(std::type_identity_t<Record> cell, RecordField<Record, T> field) const {
    return cell.offset + kCellHeader + field.at + 4 <= BinsSize() ? Get(cell, field) : T();
  }

  /// A cell with room for `size` bytes, all zero. The caller makes sure that the bins stay within kMaxBinsSize.
  Cell Allocate(std::size_t size);
  void Free(Cell cell);
  /// `cell` with room for `size` bytes, its content kept: itself, or a new cell in its place.
  Cell Grow(Cell cell, std::size_t size);

 private:
  static constexpr std::size_t kExactClasses = 64;  ///< cells of less than 512 bytes: a class for each size
  static constexpr std::size_t kClasses = 160;      ///< above: four classes for each doubling
  struct SizeClass {
    std::size_t number;
    bool operator==(const SizeClass&) const = default;
  };
  static SizeClass ClassOf(std::size_t size);

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
  bool LooksUsed(Cell cell, bool inSuspect) const;
  void AddFree(std::size_t offset, std::size_t size);
  void RemoveFree(std::size_t offset);
  bool IsFreeOfClass(std::size_t offset, SizeClass sizeClass) const;
  std::optional<Cell> TakeFree(std::size_t size);
  std::optional<Cell> TakeFromClass(SizeClass sizeClass, std::size_t size);
  Cell AddBin(std::size_t cellSize);
  void ResizeBits();

  Bytes file_;
  std::vector<Bin> bins_;  ///< as Scan() found them, in their order
  CellBits used_;          ///< starts of cells in use
  CellBits freeStart_;     ///< starts of free cells
  CellBits freeEnd_;       ///< last units of free cells
  /// Free cells by size. May hold cells that are no longer free or have grown; TakeFromClass() drops them.
  std::array<std::vector<std::uint32_t>, kClasses> free_;
};

}  // namespace quillbox
