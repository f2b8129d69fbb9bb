// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/export_result.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quillbox {
namespace {

template <class Range, class Get>
std::uint64_t SumOf(const Range& range, const Get& get) {
  return std::accumulate(range.begin(), range.end(), std::uint64_t{0},
                         [&](std::uint64_t sum, const auto& item) { return sum + get(item); });
}

}  // namespace

void StoreResult::Note(MessageTrouble trouble) {
  Note(trouble.end);
  if (troubles.size() < kMaxListed) troubles.push_back(std::move(trouble));
}

bool StoreResult::IsComplete() const {
  return fault.empty() && !changed && inHeader.value_or(inIndex) == inIndex &&
         Of(MessageEnd::Written) + Of(MessageEnd::AlreadyThere) == inIndex;
}

std::uint64_t FolderResult::InIndex() const {
  return SumOf(stores, [](const StoreResult& store) { return store.inIndex; });
}

std::uint64_t FolderResult::Expected() const {
  std::uint64_t extra = 0;
  if (!stores.empty()) {
    const StoreResult& own = stores.front();
    extra = std::max(own.inIndex, inFolderList.value_or(0)) - own.inIndex;
    // A header that was written over may promise anything.
    if (own.inHeader && *own.inHeader <= kMaxStoreEntries) {
      extra = std::max(extra, std::max(own.inIndex, *own.inHeader) - own.inIndex);
    }
  }
  return stores.empty() ? inFolderList.value_or(0) : InIndex() + extra;
}

std::uint64_t FolderResult::Of(MessageEnd end) const {
  return SumOf(stores, [end](const StoreResult& store) { return store.Of(end); });
}

bool FolderResult::IsComplete() const {
  if (!fault.empty() || !recoveredFault.empty()) return false;
  const std::uint64_t inOwnStore = stores.empty() ? 0 : stores.front().inIndex;
  const bool allComplete =
      std::all_of(stores.begin(), stores.end(), [](const auto& store) { return store.IsComplete(); });
  return allComplete && inFolderList.value_or(inOwnStore) == inOwnStore && box.written == Of(MessageEnd::Written) &&
         box.readBack == box.written && recovered.readBack == recovered.written;
}

ExportEnd ExportResult::End() const {
  if (cancelled) return ExportEnd::Cancelled;
  const bool complete =
      fault.empty() && !folders.empty() &&
      std::all_of(folders.begin(), folders.end(), [](const auto& folder) { return folder.IsComplete(); });
  return complete ? ExportEnd::Complete : ExportEnd::Incomplete;
}

std::uint64_t ExportResult::Of(MessageEnd end) const {
  return SumOf(folders, [end](const FolderResult& folder) { return folder.Of(end); });
}

std::uint64_t ExportResult::Expected() const {
  return SumOf(folders, [](const FolderResult& folder) { return folder.Expected(); });
}

}  // namespace quillbox
