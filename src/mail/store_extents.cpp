// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/store_extents.h"

#include <algorithm>
#include <numeric>

namespace quillbox {
namespace {

constexpr std::uint64_t kReach = std::uint64_t{1} << 32;

}  // namespace

std::uint64_t StoreAccount::Total() const {
  return std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
}

void StoreExtents::Claim(FileSpan span, ByteUse use) {
  const std::uint64_t reach = std::min(fileSize_, kReach);
  if (span.start >= reach) return;
  span.length = std::min(span.length, reach - span.start);
  while (span.length != 0 && !full_) {
    const FileSpan piece{span.start, std::min<std::uint64_t>(span.length, Extent::kMaxLength)};
    Append({piece, use});
    span = {piece.End(), span.length - piece.length};
    if (extents_.size() < settleAt_) continue;
    Settle();
    settleAt_ = std::max(settleAt_, extents_.size() * 2);
    if (extents_.size() < kMaxExtents) continue;
    full_ = true;
    damage_.Add({piece.End(), StorePart::Store, DamageReason::TooMany, "its use of space is not known from here on"});
  }
}

bool StoreExtents::Extent::Join(const Extent& next) {
  if (End() != next.start || Use() != next.Use() || std::uint64_t{Length()} + next.Length() > kMaxLength) return false;
  lengthAndUse += next.Length();
  return true;
}

void StoreExtents::Append(const Extent& extent) {
  if (extents_.empty() || !extents_.back().Join(extent)) extents_.push_back(extent);
}

void StoreExtents::Settle() {
  std::sort(extents_.begin(), extents_.end(), [](const Extent& a, const Extent& b) {
    return a.start != b.start ? a.start < b.start : a.Use() < b.Use();
  });
  // In place: no more are kept than were looked at.
  std::size_t kept = 0;
  std::uint64_t end = 0;
  for (Extent extent : extents_) {
    if (extent.start < end) {
      damage_.Add({extent.start, StorePart::Store, DamageReason::UsedTwice});
      if (extent.End() <= end) continue;
      extent = Extent({end, extent.End() - end}, extent.Use());
    }
    end = extent.End();
    if (kept == 0 || !extents_[kept - 1].Join(extent)) extents_[kept++] = extent;
  }
  extents_.erase(extents_.begin() + static_cast<std::ptrdiff_t>(kept), extents_.end());
}

void StoreExtents::ForEachGap(const std::function<void(FileSpan)>& gap) const {
  std::uint64_t end = 0;
  for (const Extent& extent : extents_) {
    if (extent.start > end) gap({end, extent.start - end});
    end = extent.End();
  }
  if (end < fileSize_) gap({end, fileSize_ - end});
}

std::vector<StoreExtents::Extent>::const_iterator StoreExtents::After(std::uint64_t offset) const {
  return std::upper_bound(extents_.begin(), extents_.end(), offset,
                          [](std::uint64_t at, const Extent& extent) { return at < extent.start; });
}

ByteUse StoreExtents::UseAt(std::uint64_t offset) const {
  const auto after = After(offset);
  if (after == extents_.begin()) return ByteUse::Free;
  const Extent& extent = *std::prev(after);
  return offset < extent.End() ? extent.Use() : ByteUse::Free;
}

std::optional<std::uint64_t> StoreExtents::GapEndAt(std::uint64_t offset) const {
  const auto after = After(offset);
  if (offset >= fileSize_ || (after != extents_.begin() && offset < std::prev(after)->End())) return std::nullopt;
  return after == extents_.end() ? fileSize_ : std::uint64_t{after->start};
}

StoreAccount StoreExtents::Account() const {
  StoreAccount account;
  std::uint64_t claimed = 0;
  for (const Extent& extent : extents_) {
    account.Of(extent.Use()) += extent.Length();
    claimed += extent.Length();
  }
  account.Of(ByteUse::Free) += fileSize_ - claimed;
  return account;
}

}  // namespace quillbox
