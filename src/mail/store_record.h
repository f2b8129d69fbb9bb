// SPDX-License-Identifier: GPL-3.0-or-later
// A record of a store: a table of numbered fields, which describes one message or one folder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "mail/store_input.h"
#include "text/file_time.h"

namespace quillbox {

/// A field's number. What a number means depends on the kind of store.
enum class RecordField : std::uint8_t {};

class StoreRecord {
 public:
  /// Longer records are not read: real ones have some hundred bytes, the longest field is a line of a header.
  static constexpr std::uint32_t kMaxLength = 256 * 1024;

  /// Reads the record at `offset`. It must begin with its own offset, or with `offset` + `shift`: deleted pages of
  /// another store have all offsets too high by the same number.
  static std::variant<StoreRecord, ReadFault> Read(StoreInput& input, std::uint64_t offset, std::int64_t shift = 0);

  /// The bytes of the file that the record takes.
  std::size_t Size() const { return bytes_.size(); }
  bool Has(RecordField field) const { return Find(field).has_value(); }
  /// Values of a field; nothing where the record has none or where its place in the record cannot be (FieldFault).
  std::optional<std::uint32_t> Number(RecordField field) const;
  std::optional<FileTime> Time(RecordField field) const;
  /// In the 8-bit code page of the system that wrote the store.
  std::optional<std::string> Text(RecordField field) const;
  /// The offset in the file of the first entry of the table that points out of the record.
  std::optional<std::uint64_t> FieldFault() const { return fieldFault_; }

 private:
  std::optional<std::uint32_t> Find(RecordField field) const;
  std::uint32_t Entry(std::size_t index) const;
  std::size_t DataStart() const { return FieldsEnd(count_); }
  static std::size_t FieldsEnd(std::size_t count);
  /// The data at a field's place; empty for a field with a number in the table.
  ByteView Data(std::uint32_t entry) const;

  Bytes bytes_;
  std::size_t count_ = 0;
  std::optional<std::uint64_t> fieldFault_;
};

}  // namespace quillbox
