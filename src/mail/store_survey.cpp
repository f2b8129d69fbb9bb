// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/store_survey.h"

#include <algorithm>

#include "mail/old_store.h"
#include "mail/store_layout.h"

namespace quillbox {
namespace {

bool IsOld(const StoreReader& store) {
  return store.Kind() == StoreKind::OutlookExpress4;
}

/// How much of the file a damaged part is taken to have, where nothing else is there.
std::uint64_t SizeOfDamaged(const StoreDamage& damage) {
  if (damage.reason == DamageReason::CutOff) return UINT64_MAX;
  switch (damage.part) {
    case StorePart::TreeNode:
      return kNodeSize;
    case StorePart::Segment:
      return kSegmentHeadSize;
    case StorePart::Record:
      return kRecordHeadSize;
    default:
      return 0;
  }
}

}  // namespace

StoreSurvey::StoreSurvey(StoreReader& store) : store_(store), extents_(store.FileSize()) {
  store_.Entries();
  damage_.Append(store_.Damage());
  ClaimIndex();
}

void StoreSurvey::ClaimIndex() {
  if (store_.Kind() == StoreKind::NotAStore) return extents_.Claim({0, store_.FileSize()}, ByteUse::Damage);
  if (store_.Kind() == StoreKind::Other) return extents_.Claim({0, store_.FileSize()}, ByteUse::Index);
  const std::size_t header = IsOld(store_) ? kOldHeaderSize : kStoreHeaderSize;
  extents_.Claim({0, header}, store_.FileSize() < header ? ByteUse::Damage : ByteUse::Index);
  for (const std::uint32_t node : store_.Nodes()) extents_.Claim({node, kNodeSize}, ByteUse::Index);
  if (store_.Kind() != StoreKind::FolderList) return;
  for (std::size_t tree = 1; tree < kTreeRoots; ++tree) {
    const StoreTree other = WalkTree(store_.Input(), store_.TreeRoot(tree));
    for (const std::uint32_t node : other.nodes) extents_.Claim({node, kNodeSize}, ByteUse::Index);
  }
}

std::variant<StoredMessage, StoreDamage> StoreSurvey::ReadMessage(std::uint32_t entry) {
  if (IsOld(store_)) {
    auto read = store_.ReadMessage(entry);
    if (const auto* message = std::get_if<StoredMessage>(&read)) ClaimOldMessage(*message);
    return read;
  }
  const auto read = store_.ReadRecord(entry);
  if (const auto* damage = std::get_if<StoreDamage>(&read)) {
    damage_.Add(*damage);
    return *damage;
  }
  const auto& record = std::get<StoreRecord>(read);
  extents_.Claim({entry, record.Size()}, ByteUse::Index);
  if (const auto field = record.FieldFault()) damage_.Add({*field, StorePart::Field, DamageReason::BadLength});
  return MessageOf(record, entry);
}

void StoreSurvey::ClaimOldMessage(const StoredMessage& message) {
  extents_.Claim({message.offset, kOldMessageHeadSize}, ByteUse::Index);
  extents_.Claim({message.offset + kOldMessageHeadSize, message.size.value_or(0)}, ByteUse::Messages);
}

TextResult StoreSurvey::ReadText(const StoredMessage& message, const TextSink& sink) {
  TextResult result;
  if (textLength_ / kMaxTextPerFile > store_.FileSize()) {
    result.damage = StoreDamage{message.offset, StorePart::Message, DamageReason::UsedTwice};
  } else if (IsOld(store_) || !message.text) {
    result = store_.ReadText(message, sink);
  } else {
    SegmentChain chain(store_.Input(), *message.text);
    while (const auto segment = chain.Next()) {
      extents_.Claim({segment->offset, segment->End() - segment->offset}, ByteUse::Messages);
      result.length += segment->text.size();
      sink(segment->text);
    }
    result.damage = chain.Damage();
  }
  textLength_ += result.length;
  // A message that was never downloaded is not damaged.
  if (result.damage && result.damage->reason != DamageReason::NoText) damage_.Add(*result.damage);
  return result;
}

void StoreSurvey::ReadAll() {
  const bool hasText = store_.Kind() == StoreKind::Messages || IsOld(store_);
  for (const std::uint32_t entry : store_.Entries()) {
    const auto read = ReadMessage(entry);
    const auto* message = std::get_if<StoredMessage>(&read);
    if (hasText && message != nullptr) ReadText(*message, [](std::string_view) {});
  }
}

/// Damaged parts get the bytes that nobody else has.
void StoreSurvey::ClaimDamage() {
  extents_.Settle();
  std::vector<FileSpan> claims;
  for (const StoreDamage& damage : damage_.Listed()) {
    const auto gapEnd = extents_.GapEndAt(damage.offset);
    if (!gapEnd) continue;
    const std::uint64_t size = IsOld(store_) ? UINT64_MAX : SizeOfDamaged(damage);
    claims.push_back({damage.offset, std::min(size, *gapEnd - damage.offset)});
  }
  std::sort(claims.begin(), claims.end(), [](FileSpan a, FileSpan b) { return a.start < b.start; });
  std::uint64_t end = 0;
  for (const FileSpan& claim : claims) {
    const std::uint64_t from = std::max(claim.start, end);
    if (claim.End() <= from) continue;
    extents_.Claim({from, claim.End() - from}, ByteUse::Damage);
    end = claim.End();
  }
  extents_.Settle();
}

void StoreSurvey::Finish() {
  ClaimDamage();
  if (store_.Kind() == StoreKind::Messages || store_.Kind() == StoreKind::FolderList) {
    DeletedPieces pieces = FindDeletedPieces(store_.Input(), extents_, store_.Kind() == StoreKind::FolderList);
    recovered_ = std::move(pieces.messages);
    damage_.Append(pieces.damage);
  }
  damage_.Append(extents_.Damage());
}

StoreAccount StoreSurvey::Account() const {
  return extents_.Account();
}

StoredMessage StoreSurvey::ReadRecovered(const RecoveredMessage& message) {
  StoredMessage stored;
  stored.offset = message.firstSegment;
  if (message.record) {
    const auto read = StoreRecord::Read(store_.Input(), *message.record, message.shift);
    if (const auto* record = std::get_if<StoreRecord>(&read)) stored = MessageOf(*record, *message.record);
  }
  stored.text = message.firstSegment;
  return stored;
}

TextResult StoreSurvey::ReadRecoveredText(const RecoveredMessage& message, const TextSink& sink) {
  return ReadChain(store_.Input(), {message.firstSegment, message.shift, message.segments}, sink);
}

}  // namespace quillbox
