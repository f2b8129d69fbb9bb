// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/wab_record.h"

#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::uint32_t kTagSize = 4;
constexpr std::uint32_t kLengthSize = 4;

}  // namespace

std::variant<WabRecordHead, BookFaultKind> ReadRecordHead(ByteView file, std::uint64_t offset) {
  if (offset > file.size() || file.size() - offset < kRecordHeadSize) return BookFaultKind::BeyondFile;
  const auto field = [&](std::size_t at) { return Load32(&file[static_cast<std::size_t>(offset) + at]); };
  if (field(0) > 1 || field(4) != 1 || field(0x10) != kRecordHeadSize) return BookFaultKind::NotARecord;
  WabRecordHead head;
  head.inUse = field(0) == 1;
  head.id = field(8);
  head.properties = field(0xC);
  head.start = offset;
  head.tags = offset + kRecordHeadSize;
  head.data = offset + field(0x14);
  head.end = head.data + field(0x1C);
  if (head.properties > kMostProperties) return BookFaultKind::TooMany;
  const std::uint64_t tagsEnd = head.tags + std::uint64_t{head.properties} * kTagSize;
  if (head.data < tagsEnd) return BookFaultKind::WrongLength;
  if (tagsEnd > file.size()) return BookFaultKind::BeyondFile;
  return head;
}

std::optional<std::uint32_t> WabPropertyWalk::Number() {
  if (at_ > End() || End() - at_ < kLengthSize) return std::nullopt;
  const std::uint32_t number = Load32(&file_[static_cast<std::size_t>(at_)]);
  at_ += kLengthSize;
  return number;
}

std::optional<WabProperty> WabPropertyWalk::Next() {
  if (fault_ || next_ == head_.properties) return std::nullopt;
  ++steps_;
  WabProperty property;
  property.tag = Load32(&file_[static_cast<std::size_t>(head_.tags) + std::size_t{next_} * kTagSize]);
  property.offset = at_;
  ++next_;
  if (!ReadData(property)) return std::nullopt;
  position_ = at_;
  return property;
}

bool WabPropertyWalk::ReadData(WabProperty& property) {
  const bool array = (property.Type() & static_cast<std::uint16_t>(WabType::Array)) != 0;
  const std::optional<std::uint32_t> tag = Number();
  if (tag && *tag != property.tag) return Fail(BookFaultKind::WrongTag, property);
  const std::optional<std::uint32_t> elements = array ? Number() : 0;
  const std::optional<std::uint32_t> length = Number();
  if (!tag || !elements || !length) return Fail(BookFaultKind::BeyondRecord, property);
  property.elements = *elements;
  if (array) return ReadElements(property, *length);
  if (*length > End() - at_) return Fail(BookFaultKind::BeyondRecord, property);
  property.data = file_.subspan(static_cast<std::size_t>(at_), *length);
  at_ += *length;
  return true;
}

/// The length of an array is taken with the lengths of its elements or without them: nobody has written down which, and
/// the elements themselves say where the next property is.
bool WabPropertyWalk::ReadElements(WabProperty& property, std::uint32_t length) {
  if (property.elements > kMostElements) return Fail(BookFaultKind::TooMany, property);
  const std::uint64_t begin = at_;
  for (std::uint32_t element = 0; element < property.elements; ++element) {
    ++steps_;
    const std::optional<std::uint32_t> size = Number();
    if (!size || *size > End() - at_) return Fail(BookFaultKind::BeyondRecord, property);
    at_ += *size;
  }
  const std::uint64_t used = at_ - begin;
  if (length != used && length != used - std::uint64_t{property.elements} * kLengthSize) {
    return Fail(BookFaultKind::WrongLength, property);
  }
  property.data = file_.subspan(static_cast<std::size_t>(begin), static_cast<std::size_t>(used));
  return true;
}

bool WabPropertyWalk::Fail(BookFaultKind kind, const WabProperty& property) {
  const bool cutOff = kind == BookFaultKind::BeyondRecord && head_.end > file_.size();
  fault_ = BookFault{.part = BookPart::Property,
                     .kind = cutOff ? BookFaultKind::BeyondFile : kind,
                     .offset = property.offset,
                     .recordId = head_.id,
                     .property = property.Id()};
  return false;
}

std::optional<ByteView> WabElements::Next() {
  if (left_ == 0) return std::nullopt;
  --left_;
  const std::uint32_t size = Load32(rest_.data());
  const ByteView element = rest_.subspan(kLengthSize, size);
  rest_ = rest_.subspan(kLengthSize + std::size_t{size});
  return element;
}

}  // namespace quillbox
