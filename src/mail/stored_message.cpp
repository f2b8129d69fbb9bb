// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/stored_message.h"

namespace quillbox {
namespace {

struct TextRow {
  RecordField field;
  std::string StoredMessage::*to;
};

constexpr TextRow kTexts[] = {
    {RecordField{0x07}, &StoredMessage::messageId},    {RecordField{0x0A}, &StoredMessage::answeredId},
    {RecordField{0x0B}, &StoredMessage::newsPlace},    {RecordField{0x0C}, &StoredMessage::server},
    {RecordField{0x0D}, &StoredMessage::senderName},   {RecordField{0x0E}, &StoredMessage::senderAddress},
    {RecordField{0x13}, &StoredMessage::receiverName}, {RecordField{0x14}, &StoredMessage::receiverAddress},
    {RecordField{0x16}, &StoredMessage::uidl},         {RecordField{0x1A}, &StoredMessage::account},
    {RecordField{0x1B}, &StoredMessage::accountKey},
};

struct NumberRow {
  RecordField field;
  std::optional<std::uint32_t> StoredMessage::*to;
};

constexpr NumberRow kNumbers[] = {
    {RecordField{0x00}, &StoredMessage::number}, {RecordField{0x03}, &StoredMessage::lines},
    {RecordField{0x04}, &StoredMessage::text},   {RecordField{0x10}, &StoredMessage::priority},
    {RecordField{0x11}, &StoredMessage::size},
};

struct TimeRow {
  RecordField field;
  std::optional<FileTime> StoredMessage::*to;
};

constexpr TimeRow kTimes[] = {
    {RecordField{0x02}, &StoredMessage::sent},
    {RecordField{0x06}, &StoredMessage::saved},
    {RecordField{0x12}, &StoredMessage::received},
};

constexpr RecordField kFlags{0x01};
constexpr RecordField kSubject{0x08};
constexpr RecordField kSubjectAlone{0x05};

}  // namespace

StoredMessage MessageOf(const StoreRecord& record, std::uint64_t offset) {
  StoredMessage message;
  message.offset = offset;
  for (const TextRow& row : kTexts) message.*row.to = record.Text(row.field).value_or("");
  for (const NumberRow& row : kNumbers) message.*row.to = record.Number(row.field);
  for (const TimeRow& row : kTimes) message.*row.to = record.Time(row.field);
  message.flags.bits = record.Number(kFlags).value_or(0);
  message.subject = record.Text(record.Has(kSubject) ? kSubject : kSubjectAlone).value_or("");
  if (message.text == 0u) message.text.reset();
  message.fieldFault = record.FieldFault();
  return message;
}

}  // namespace quillbox
