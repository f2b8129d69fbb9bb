// SPDX-License-Identifier: GPL-3.0-or-later
// The cells of a hive by what is in them, and the fields of their records by what they hold: a cell of one kind cannot
// be taken for one of another, nor a number be read in a wrong width.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace quillbox {

/// What a hive has in place of a cell's offset where there is no cell.
inline constexpr std::uint32_t kNoCell = 0xFFFFFFFF;

/// Any cell, by its offset from the start of the bins. One that a file names may have any number.
struct Cell {
  constexpr Cell() = default;
  explicit constexpr Cell(std::uint32_t at) : offset(at) {}

  std::uint32_t offset = kNoCell;
};

/// A cell that holds a record of one kind, or is named where one must be.
template <typename Kind>
struct TypedCell {
  constexpr TypedCell() = default;
  explicit constexpr TypedCell(std::uint32_t at) : offset(at) {}
  explicit constexpr TypedCell(Cell cell) : offset(cell.offset) {}

  constexpr operator Cell() const { return Cell(offset); }
  constexpr bool IsNone() const { return offset == kNoCell; }
  bool operator==(const TypedCell&) const = default;
  bool operator<(const TypedCell& other) const { return offset < other.offset; }

  std::uint32_t offset = kNoCell;
};

using KeyCell = TypedCell<struct KeyKind>;
using ValueCell = TypedCell<struct ValueKind>;
using SecurityCell = TypedCell<struct SecurityKind>;
using ListCell = TypedCell<struct ListKind>;            ///< a list of subkeys, or of such lists
using ValueListCell = TypedCell<struct ValueListKind>;  ///< a list of a key's values; it has no tag
using DataCell = TypedCell<struct DataKind>;  ///< a value's data, pieces of them, a class name; `db` has a tag

/// A field in records of the kind `Record`: the number, or the cell, `at` bytes from the record's start.
template <typename Record, typename T>
struct RecordField {
  std::size_t at;
};

/// The first two bytes of a record.
enum class RecordTag : std::uint16_t {};

}  // namespace quillbox

template <typename Kind>
struct std::hash<quillbox::TypedCell<Kind>> {
  std::size_t operator()(quillbox::TypedCell<Kind> cell) const { return std::hash<std::uint32_t>{}(cell.offset); }
};
