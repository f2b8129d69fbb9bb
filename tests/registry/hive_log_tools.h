// SPDX-License-Identifier: GPL-3.0-or-later
// Log files beside hives, in both forms, as systems that stopped leave them.
#pragma once

#include <cstring>
#include <vector>

#include "registry/hive_tools.h"
#include "registry/marvin.h"

namespace quillbox {

inline void Append(Bytes& to, ByteView more) {
  to.insert(to.end(), more.begin(), more.end());
}

/// The log of the older form that makes `after` of `before`.
inline Bytes MakeSectorLog(const Bytes& before, const Bytes& after, std::uint32_t cluster = 1) {
  Bytes log(after.begin(), after.begin() + kSector);
  SetBase(log, BaseField::kType, 1);
  SetBase(log, BaseField::kCluster, cluster);
  log.resize(cluster * kSector);
  Append(log, Bytes{'D', 'I', 'R', 'T'});
  const std::size_t sectors = (after.size() - kHivePage) / kSector;
  Bytes map(sectors / 8);
  Bytes content;
  for (std::size_t sector = 0; sector < sectors; ++sector) {
    const std::size_t at = kHivePage + sector * kSector;
    if (at < before.size() && std::memcmp(&before[at], &after[at], kSector) == 0) continue;
    map[sector / 8] |= static_cast<std::uint8_t>(1U << (sector % 8));
    Append(content, ByteView(after).subspan(at, kSector));
  }
  Append(log, map);
  log.resize((log.size() + kSector - 1) / kSector * kSector);
  Append(log, content);
  return log;
}

/// What an entry writes: bytes of the bins.
struct LogPage {
  std::uint32_t offset;
  ByteView content;
};

/// Sets the hashes of an entry right.
inline void PutHashes(Bytes& entry) {
  Store64(&entry[24], Marvin32(kLogHashSeed, ByteView(entry).subspan(40)));
  Store64(&entry[32], Marvin32(kLogHashSeed, ByteView(entry).first(32)));
}

/// An entry of a log of the newer form.
inline Bytes MakeLogEntry(std::uint32_t sequence, std::size_t binsSize, const std::vector<LogPage>& pages) {
  Bytes entry(40 + pages.size() * 8);
  std::memcpy(entry.data(), "HvLE", 4);
  Store32(&entry[12], sequence);
  Store32(&entry[16], static_cast<std::uint32_t>(binsSize));
  Store32(&entry[20], static_cast<std::uint32_t>(pages.size()));
  for (std::size_t at = 0; at < pages.size(); ++at) {
    Store32(&entry[40 + 8 * at], pages[at].offset);
    Store32(&entry[44 + 8 * at], static_cast<std::uint32_t>(pages[at].content.size()));
    Append(entry, pages[at].content);
  }
  entry.resize((entry.size() + kSector - 1) / kSector * kSector);
  Store32(&entry[4], static_cast<std::uint32_t>(entry.size()));
  PutHashes(entry);
  return entry;
}

/// A log of the newer form beside the hive `image`, whose base block names `begin`.
inline Bytes MakeEntryLog(const Bytes& image, std::uint32_t begin, const std::vector<Bytes>& entries) {
  Bytes log(image.begin(), image.begin() + kSector);
  SetBase(log, BaseField::kType, 6);
  SetBase(log, BaseField::kSequence1, begin);
  for (const Bytes& entry : entries) Append(log, entry);
  return log;
}

}  // namespace quillbox
