// SPDX-License-Identifier: GPL-3.0-or-later
// The checks of single records of a hive, with their messages. Both the check of a whole hive and the salvage of a
// damaged one use them, so that the two agree on what is a fault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "registry/hive_data.h"

namespace quillbox {

inline constexpr const char* kWrongSubkeyCount = "the key's number of subkeys is not that of its list";
inline constexpr const char* kWrongValueCount = "the key's number of values is not that of its list";
inline constexpr const char* kNestedTooDeeply = "the keys are nested too deeply";
inline constexpr const char* kUnlinkedSecurity = "the security descriptors are not linked back";

/// Checks records and remembers which cells have an owner. Each cell may have one owner only, so that a walk ends and
/// nothing that is freed later is still in use elsewhere. Every offset that was read from the file goes through Claim()
/// before it is followed.
///
/// A fault is thrown as an Error of the hive's file. What was claimed before it stays claimed.
class RecordChecker {
 public:
  enum class Cells {
    Known,   ///< only the cells that the scan of the bins found
    Likely,  ///< those, and what looks like a cell in damaged bins
  };

  /// `hive`: with its cells scanned.
  explicit RecordChecker(HiveData& hive, Cells allowed = Cells::Known)
      : hive_(hive), cells_(hive.cells), unclaimed_(hive.cells.Used()), allowsLikely_(allowed == Cells::Likely) {}

  [[noreturn]] void Fault(Cell cell, std::string why) const { ThrowHiveFault(hive_.name, cell.offset, std::move(why)); }

  /// The cell whose record names another one.
  struct Owner {
    explicit Owner(Cell naming) : cell(naming) {}
    Cell cell;
  };

  /// Makes `cell`, which the record in `owner` names, the owner's.
  void Claim(Owner owner, Cell cell, const char* what) {
    if (!IsCell(cell)) Fault(owner.cell, std::string("the offset of its ") + what + " leads to no cell in use");
    if (!unclaimed_.Test(cell.offset)) {
      Fault(owner.cell, std::string("the cell of its ") + what + " belongs to another record already");
    }
    unclaimed_.Clear(cell.offset);
  }
  void Claim(Owner owner, Cell cell, std::size_t size, const char* what) {
    Claim(owner, cell, what);
    if (cells_.Room(cell) < size) Fault(cell, TooShortFor(what));
    Take(cell, size);
  }
  /// The message of Claim() for a cell that is too small for the record.
  static std::string TooShortFor(const char* what) {
    return std::string("the cell is too short for the ") + what + " in it";
  }

  /// Where cells may overlap, claims the first `size` bytes of a claimed record too.
  void Take(Cell cell, std::size_t size) {
    if (allowsLikely_) TakeBytes(cell, size);
  }

  /// True when a cell in use begins at `cell`, which may have any number.
  bool IsCell(Cell cell) { return cells_.IsUsed(cell) || (allowsLikely_ && Adopt(cell)); }
  /// True when the cell at `cell` belongs to no record yet and holds a record of this kind.
  bool IsFree(Cell cell, RecordTag tag, std::size_t size) {
    return (IsCell(cell) || AdoptTagged(cell, tag)) && unclaimed_.Test(cell.offset) && cells_.Room(cell) >= size &&
           cells_.Tag(cell) == tag;
  }

  /// The root key's record. Nothing of a hive can be read without it.
  void ClaimRoot();
  /// A key's record: its name and fields, and nothing that they lead to.
  void ClaimSubkey(Owner owner, KeyCell key) {
    AdoptTagged(key, kKeyTag);
    Claim(owner, key, KeyField::kName, "subkey");
    CheckKey(key);
    const std::size_t size = cells_.Get(key, KeyField::kNameLength);
    CheckSubkeyName(key, cells_.At(key) + KeyField::kName, size);
  }
  void ClaimClass(KeyCell key) {
    const std::size_t length = cells_.Get(key, KeyField::kClassLength);
    const DataCell className = cells_.Get(key, KeyField::kClass);
    if (length > 0 && !className.IsNone()) Claim(Owner(key), className, length, "class name");
  }
  void ClaimDescriptor(Owner owner, SecurityCell security);

  /// A value's record.
  void ClaimValue(ValueListCell list, ValueCell value) {
    AdoptTagged(value, kValueTag);
    Claim(Owner(list), value, ValueField::kName, "value");
    RequireTag(value, kValueTag, "value");
    Require(value, ValueField::kName + cells_.Get(value, ValueField::kNameLength),
            "the value's name reaches beyond its cell");
  }
  /// The data of a value whose record was claimed.
  void ClaimData(ValueCell value) {
    const std::uint32_t stored = cells_.Get(value, ValueField::kDataSize);
    const std::uint32_t size = stored & ~kInlineData;
    if ((stored & kInlineData) != 0) {
      if (size > kMaxInlineData) Fault(value, "a value without a data cell has more than 4 bytes");
    } else if (size > 0) {
      ClaimDataCell(value, cells_.Get(value, ValueField::kData), size);
    }
  }

  /// A list of subkeys, or one of its leaves. CheckEntries() checks that its entries are within its cell.
  void ClaimList(Owner owner, ListCell list) { Claim(owner, list, ListField::kEntries, "list of subkeys"); }
  bool IsIndex(ListCell list) const { return cells_.Tag(list) == kLeafIndexTag; }
  void CheckLeaf(ListCell leaf) const {
    if (!IsLeafTag(cells_.Tag(leaf))) Fault(leaf, "the cell does not hold the list of subkeys it should");
    if (EntryCount(leaf) == 0) Fault(leaf, "the list of subkeys is empty");
  }
  void CheckEntries(ListCell list) {
    Require(list, ListField::kEntries + EntryCount(list) * EntrySize(list),
            "the list of subkeys reaches beyond its cell");
  }
  std::size_t EntryCount(ListCell list) const { return cells_.Get(list, ListField::kCount); }
  std::size_t EntrySize(ListCell list) const { return quillbox::EntrySize(cells_.Tag(list)); }
  KeyCell Subkey(ListCell leaf, std::size_t entry) const {
    return cells_.Get(leaf, LeafEntry(cells_.Tag(leaf), entry));
  }
  ListCell Leaf(ListCell index, std::size_t entry) const { return cells_.Get(index, IndexEntry(entry)); }

  /// True when the key's number of subkeys is 0 although its list holds some, which would be lost.
  bool HasUncountedSubkeys(KeyCell key);
  /// The same of values. Only valid at the end of a walk: values have no field that names their key, so they are the
  /// key's if nobody else has claimed them.
  bool HasUncountedValues(KeyCell key);
  /// The first key that a list names, whatever is wrong with the list.
  std::optional<KeyCell> FirstSubkey(ListCell list);

 private:
  void RequireTag(Cell cell, RecordTag tag, const char* what) const {
    if (cells_.Tag(cell) != tag) Fault(cell, std::string("the cell does not hold the ") + what + " it should");
  }
  void Require(Cell cell, std::size_t size, const char* why) {
    if (cells_.Room(cell) < size) Fault(cell, why);
    Take(cell, size);
  }
  void CheckKey(KeyCell key) {
    RequireTag(key, kKeyTag, "key");
    Require(key, KeyField::kName + cells_.Get(key, KeyField::kNameLength), "the key's name reaches beyond its cell");
  }
  void CheckSubkeyName(KeyCell key, const std::uint8_t* name, std::size_t size) const;
  void ClaimDataCell(ValueCell value, DataCell data, std::uint32_t size);

  bool Adopt(Cell cell);
  bool AdoptTagged(Cell cell, RecordTag tag);
  void TakeBytes(Cell cell, std::size_t size);

  HiveData& hive_;
  HiveCells& cells_;
  CellBits unclaimed_;
  bool allowsLikely_;
  /// The bytes of records, from and to, where cells may overlap: no byte is read twice.
  std::map<std::size_t, std::size_t> taken_;
};

}  // namespace quillbox
