// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/registry_data.h"

#include <algorithm>
#include <string>

namespace quillbox {
namespace {

bool IsText(ValueType type) {
  return type == ValueType::Sz || type == ValueType::ExpandSz || type == ValueType::MultiSz;
}

}  // namespace

Bytes FromStored(ValueType type, Bytes stored) {
  if (!IsText(type)) return stored;
  const std::string text = ToUtf8(Utf16FromBytes(stored));
  return {text.begin(), text.end()};
}

Bytes ToStored(ValueType type, ByteView data) {
  if (!IsText(type)) return {data.begin(), data.end()};
  return Utf16Bytes(ToUtf16(std::string(data.begin(), data.end())));
}

QueryResult AnswerQuery(ValueType type, ByteView data, std::optional<std::span<std::uint8_t>> buffer) {
  QueryResult result = {Status::Success, type, static_cast<std::uint32_t>(data.size())};
  if (!buffer) return result;
  if (buffer->size() < data.size()) {
    result.status = Status::MoreData;
  } else {
    std::copy(data.begin(), data.end(), buffer->begin());
  }
  return result;
}

}  // namespace quillbox
