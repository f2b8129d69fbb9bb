// SPDX-License-Identifier: GPL-3.0-or-later
// Address book files as Outlook Express lays them out: a header, the index of the records, the lists of names, and the
// records. It shares nothing with the code that reads them, so that each is a witness of the other.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "text/file_time.h"
#include "text/unicode.h"

namespace quillbox {

/// How a book keeps its texts: in code page 1252, as those of Outlook Express 4, or in UTF-16.
enum class WabTextForm { Narrow, Wide };
/// How much room a book's tables have: what Outlook Express gives them, or what is in them, for a small file.
enum class WabRoom { Usual, Least };

struct WabTime {
  FileTime value;
};

/// One record. Properties are in the file in the order of the calls; an empty text makes none. Properties are named by
/// their numbers, the upper halves of their tags.
class WabRecord {
 public:
  WabRecord(std::uint32_t id, WabTextForm form) : id_(id), form_(form) {}

  WabRecord& Text(std::uint16_t property, std::string_view text);
  WabRecord& Texts(std::uint16_t property, std::span<const std::string_view> texts);
  WabRecord& Number(std::uint16_t property, std::uint32_t number);
  WabRecord& Time(std::uint16_t property, WabTime time);
  WabRecord& Binary(std::uint16_t property, const Bytes& bytes);
  WabRecord& Binaries(std::uint16_t property, std::span<const Bytes> all);
  /// A property of any type.
  WabRecord& Raw(std::uint32_t tag, const Bytes& bytes);
  WabRecord& Delete();

  std::uint32_t Id() const { return id_; }
  bool IsDeleted() const { return deleted_; }
  /// The text of a property, for the lists of names.
  std::u16string TextOf(std::uint16_t property) const;
  Bytes Image() const;

 private:
  Bytes TextBytes(std::string_view text) const;
  std::uint32_t TextTag(std::uint16_t property) const;
  void Array(std::uint32_t tag, std::span<const Bytes> elements);

  struct NamedText {
    std::uint16_t property;
    std::u16string text;
  };
  std::uint32_t id_;
  WabTextForm form_;
  bool deleted_ = false;
  std::vector<std::uint32_t> tags_;
  Bytes data_;
  std::vector<NamedText> texts_;
};

/// The file of `records`. Deleted ones are in the file and not in its index.
Bytes WabFile(std::span<const WabRecord> records, WabRoom room = WabRoom::Usual);

}  // namespace quillbox
