// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/old_store.h"

#include <algorithm>

#include "mail/store_layout.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::size_t kNumberAt = 4;
constexpr std::size_t kLengthAt = 8;
constexpr std::size_t kTextLengthAt = 12;
constexpr std::size_t kPieceSize = std::size_t{32} * 1024;

/// The next place from `offset` on with a message's mark; the end of the file without one.
std::uint64_t FindMark(StoreInput& input, std::uint64_t offset) {
  const Bytes mark = NumberBytes(kOldMessageMark);
  while (offset + mark.size() <= input.Size()) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kPieceSize, input.Size() - offset));
    const auto piece = input.Read(offset, size);
    if (const auto* bytes = std::get_if<ByteView>(&piece)) {
      const auto found = std::search(bytes->begin(), bytes->end(), mark.begin(), mark.end());
      if (found != bytes->end()) return offset + static_cast<std::uint64_t>(found - bytes->begin());
    }
    offset += size - (mark.size() - 1);
  }
  return input.Size();
}

}  // namespace

std::variant<OldMessage, ReadFault> ReadOldMessage(StoreInput& input, std::uint64_t offset) {
  const auto head = input.Read(offset, kOldMessageHeadSize);
  if (const auto* fault = std::get_if<ReadFault>(&head)) return *fault;
  const std::uint8_t* at = std::get<ByteView>(head).data();
  if (Load32(at) != kOldMessageMark) return ReadFault{DamageReason::UnknownForm};
  const OldMessage message{Load32(at + kNumberAt), Load32(at + kLengthAt), Load32(at + kTextLengthAt)};
  if (message.length < kOldMessageHeadSize || message.textLength > message.length - kOldMessageHeadSize) {
    return ReadFault{DamageReason::BadLength};
  }
  return message;
}

StoreTree WalkOldStore(StoreInput& input) {
  StoreTree found;
  std::uint64_t offset = kOldHeaderSize;
  while (offset < std::min<std::uint64_t>(input.Size(), UINT32_MAX)) {
    const auto read = ReadOldMessage(input, offset);
    if (const auto* message = std::get_if<OldMessage>(&read)) {
      if (found.records.size() == kMaxStoreEntries) {
        found.damage.Add({offset, StorePart::Message, DamageReason::TooMany});
        break;
      }
      found.records.push_back(static_cast<std::uint32_t>(offset));
      offset += message->length;
      continue;
    }
    found.damage.Add(std::get<ReadFault>(read).At(offset, StorePart::Message));
    offset = FindMark(input, offset + 1);
  }
  return found;
}

std::variant<StoredMessage, StoreDamage> ReadOldRecord(StoreInput& input, std::uint64_t offset) {
  const auto read = ReadOldMessage(input, offset);
  if (const auto* fault = std::get_if<ReadFault>(&read)) return fault->At(offset, StorePart::Message);
  StoredMessage message;
  message.offset = offset;
  message.number = std::get<OldMessage>(read).number;
  message.size = std::get<OldMessage>(read).textLength;
  message.text = static_cast<std::uint32_t>(offset);
  return message;
}

TextResult ReadOldText(StoreInput& input, std::uint64_t offset, const TextSink& sink) {
  TextResult result;
  const auto head = ReadOldMessage(input, offset);
  if (const auto* fault = std::get_if<ReadFault>(&head)) {
    result.damage = fault->At(offset, StorePart::Message);
    return result;
  }
  std::uint64_t at = offset + kOldMessageHeadSize;
  std::uint64_t left = std::get<OldMessage>(head).textLength;
  const std::uint64_t inFile = at < input.Size() ? input.Size() - at : 0;
  if (left > inFile) {
    result.damage = StoreDamage{offset, StorePart::Message, DamageReason::CutOff};
    left = inFile;
  }
  while (left != 0) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left, kPieceSize));
    const auto piece = input.Read(at, size);
    if (const auto* fault = std::get_if<ReadFault>(&piece)) {
      result.damage = fault->At(at, StorePart::Message);
      break;
    }
    const ByteView bytes = std::get<ByteView>(piece);
    sink({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    result.length += size;
    at += size;
    left -= size;
  }
  return result;
}

}  // namespace quillbox
