// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/store_reader.h"

#include <algorithm>

#include "mail/old_store.h"
#include "mail/store_layout.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

bool BeginsWith(ByteView bytes, const std::array<std::uint8_t, 4>& signature) {
  return std::equal(signature.begin(), signature.end(), bytes.begin());
}

StoreKind KindOf(StoreInput& input) {
  constexpr std::size_t kEnough = 8;
  const auto head = input.Read(0, kEnough);
  const auto* bytes = std::get_if<ByteView>(&head);
  if (bytes == nullptr) return StoreKind::NotAStore;
  if (BeginsWith(*bytes, kOldSignature)) return StoreKind::OutlookExpress4;
  if (!BeginsWith(*bytes, kStoreSignature)) return StoreKind::NotAStore;
  switch (Load32(&(*bytes)[kStoreClassAt])) {
    case kMessagesClass:
      return StoreKind::Messages;
    case kFolderListClass:
      return StoreKind::FolderList;
    default:
      return StoreKind::Other;
  }
}

}  // namespace

StoreReader::StoreReader(PositionedSource& source) : input_(source), kind_(KindOf(input_)) {
  if (kind_ == StoreKind::NotAStore) {
    damage_.Add({0, StorePart::Store, DamageReason::UnknownForm});
    return;
  }
  const bool isOld = kind_ == StoreKind::OutlookExpress4;
  const auto header = input_.Read(0, isOld ? kOldHeaderSize : kStoreHeaderSize);
  if (const auto* fault = std::get_if<ReadFault>(&header)) damage_.Add(fault->At(0, StorePart::Header));
  countInHeader_ = HeaderNumber(isOld ? kOldCountAt : kEntryCountAt);
  const std::uint32_t inUse = HeaderNumber(isOld ? kOldFileSizeAt : kBytesInUseAt).value_or(0);
  if (inUse > FileSize()) {
    damage_.Add({FileSize(), StorePart::Store, DamageReason::CutOff, std::to_string(inUse) + " bytes were in use"});
  }
}

std::optional<std::uint32_t> StoreReader::HeaderNumber(std::size_t offset) {
  const auto read = input_.Read(offset, 4);
  if (const auto* bytes = std::get_if<ByteView>(&read)) return Load32(bytes->data());
  return std::nullopt;
}

std::uint32_t StoreReader::TreeRoot(std::size_t tree) {
  return HeaderNumber(kTreeRootsAt + tree * 4).value_or(0);
}

const std::vector<std::uint32_t>& StoreReader::Entries() {
  if (walked_) return entries_;
  walked_ = true;
  StoreTree tree;
  if (kind_ == StoreKind::OutlookExpress4) tree = WalkOldStore(input_);
  if (kind_ == StoreKind::Messages || kind_ == StoreKind::FolderList) tree = WalkTree(input_, TreeRoot(0));
  entries_ = std::move(tree.records);
  nodes_ = std::move(tree.nodes);
  damage_.Append(tree.damage);
  return entries_;
}

std::variant<StoreRecord, StoreDamage> StoreReader::ReadRecord(std::uint32_t entry) {
  auto read = StoreRecord::Read(input_, entry);
  if (const auto* fault = std::get_if<ReadFault>(&read)) return fault->At(entry, StorePart::Record);
  return std::get<StoreRecord>(std::move(read));
}

std::variant<StoredMessage, StoreDamage> StoreReader::ReadMessage(std::uint32_t entry) {
  if (kind_ == StoreKind::OutlookExpress4) return ReadOldRecord(input_, entry);
  const auto read = ReadRecord(entry);
  if (const auto* damage = std::get_if<StoreDamage>(&read)) return *damage;
  return MessageOf(std::get<StoreRecord>(read), entry);
}

TextResult StoreReader::ReadText(const StoredMessage& message, const TextSink& sink) {
  if (!message.text) {
    return {0, StoreDamage{message.offset, StorePart::Message, DamageReason::NoText}};
  }
  if (kind_ == StoreKind::OutlookExpress4) return ReadOldText(input_, *message.text, sink);
  return ReadChain(input_, {.first = *message.text}, sink);
}

}  // namespace quillbox
