// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/store_record.h"

#include <algorithm>

#include "mail/store_layout.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::size_t kEntrySize = 4;
constexpr std::uint32_t kFieldMask = 0x7F;
constexpr std::uint32_t kDirect = 0x80;

}  // namespace

std::size_t StoreRecord::FieldsEnd(std::size_t count) {
  return kRecordHeadSize + count * kEntrySize;
}

std::variant<StoreRecord, ReadFault> StoreRecord::Read(StoreInput& input, std::uint64_t offset, std::int64_t shift) {
  const auto head = input.Read(offset, kRecordHeadSize);
  if (const auto* fault = std::get_if<ReadFault>(&head)) return *fault;
  const ByteView bytes = std::get<ByteView>(head);
  if (static_cast<std::int64_t>(Load32(bytes.data())) != static_cast<std::int64_t>(offset) + shift) {
    return ReadFault{DamageReason::WrongOwnOffset};
  }
  const std::uint32_t length = Load32(&bytes[kRecordLengthAt]);
  const std::size_t count = bytes[kRecordFieldsAt];
  if (length > kMaxLength || count * kEntrySize > length) return ReadFault{DamageReason::BadLength};
  const auto whole = input.Read(offset, kRecordHeadSize + length);
  if (const auto* fault = std::get_if<ReadFault>(&whole)) return *fault;

  StoreRecord record;
  record.bytes_.assign(std::get<ByteView>(whole).begin(), std::get<ByteView>(whole).end());
  record.count_ = count;
  for (std::size_t i = 0; i < count && !record.fieldFault_; ++i) {
    const std::uint32_t entry = record.Entry(i);
    if ((entry & kDirect) == 0 && record.Data(entry).empty()) record.fieldFault_ = offset + FieldsEnd(i);
  }
  return record;
}

std::optional<std::uint32_t> StoreRecord::Number(RecordField field) const {
  const auto entry = Find(field);
  if (!entry) return std::nullopt;
  if ((*entry & kDirect) != 0) return *entry >> 8;
  const ByteView data = Data(*entry);
  return data.size() < 4 ? std::nullopt : std::optional(Load32(data.data()));
}

std::optional<FileTime> StoreRecord::Time(RecordField field) const {
  const auto entry = Find(field);
  if (!entry || (*entry & kDirect) != 0) return std::nullopt;
  const ByteView data = Data(*entry);
  return data.size() < 8 ? std::nullopt : std::optional(Load64(data.data()));
}

std::optional<std::string> StoreRecord::Text(RecordField field) const {
  const auto entry = Find(field);
  if (!entry) return std::nullopt;
  if ((*entry & kDirect) != 0) {
    // Three characters would fit into the table, so a text there ends with its first NUL or with the entry.
    std::string text;
    for (std::uint32_t rest = *entry >> 8; (rest & 0xFF) != 0; rest >>= 8) text += static_cast<char>(rest & 0xFF);
    return text;
  }
  const ByteView data = Data(*entry);
  if (data.empty()) return std::nullopt;
  return std::string(data.begin(), std::find(data.begin(), data.end(), 0));
}

std::optional<std::uint32_t> StoreRecord::Find(RecordField field) const {
  for (std::size_t i = 0; i < count_; ++i) {
    const std::uint32_t entry = Entry(i);
    if ((entry & kFieldMask) == static_cast<std::uint32_t>(field)) return entry;
  }
  return std::nullopt;
}

std::uint32_t StoreRecord::Entry(std::size_t index) const {
  return Load32(&bytes_[FieldsEnd(index)]);
}

ByteView StoreRecord::Data(std::uint32_t entry) const {
  const std::size_t place = entry >> 8;
  const ByteView data = ByteView(bytes_).subspan(DataStart());
  return place < data.size() ? data.subspan(place) : ByteView();
}

}  // namespace quillbox
