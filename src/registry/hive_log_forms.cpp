// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_log_forms.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "registry/hive_layout.h"
#include "registry/marvin.h"

namespace quillbox {

namespace {

constexpr std::uint32_t kDirtyTag = Tag32('D', 'I', 'R', 'T');
constexpr std::uint32_t kEntryTag = Tag32('H', 'v', 'L', 'E');
constexpr std::uint32_t kMaxCluster = 8;

struct LogType {
  static constexpr std::uint32_t kHive = 0;
  static constexpr std::uint32_t kSectors = 1;
  static constexpr std::uint32_t kOlderSectors = 2;  ///< Windows 2000
  static constexpr std::uint32_t kEntries = 6;
};

struct EntryField {
  static constexpr std::size_t kTag = 0;
  static constexpr std::size_t kSize = 4;  ///< of the whole entry, a multiple of a sector
  static constexpr std::size_t kFlags = 8;
  static constexpr std::size_t kSequence = 12;
  static constexpr std::size_t kBinsSize = 16;
  static constexpr std::size_t kPages = 20;
  static constexpr std::size_t kBodyHash = 24;  ///< of all that follows the header
  static constexpr std::size_t kHeadHash = 32;  ///< of the 32 bytes before it
  static constexpr std::size_t kEnd = 40;
};

/// The pages that an entry holds: offset and size of each, then their bytes.
constexpr std::size_t kPageReference = 8;

bool IsGoodBinsSize(std::size_t size) {
  return size > 0 && size % kHivePage == 0 && size <= kMaxBinsSize;
}

std::size_t ToSector(std::size_t size) {
  return (size + kSector - 1) / kSector * kSector;
}

std::string SizeFault(std::size_t binsSize) {
  return "the size of the bins in it, " + std::to_string(binsSize) + " bytes, is wrong";
}

HiveLog ReadSectorLog(ByteView log) {
  const auto get = [&](std::size_t field) { return Load32(log.data() + field); };
  if (get(BaseField::kSequence1) != get(BaseField::kSequence2)) {
    return LogRefusal{"it was not closed itself: its sequence numbers are " +
                      std::to_string(get(BaseField::kSequence1)) + " and " +
                      std::to_string(get(BaseField::kSequence2))};
  }
  const std::size_t cluster = get(BaseField::kCluster);
  if (cluster == 0 || cluster > kMaxCluster) {
    return LogRefusal{"its base block is " + std::to_string(cluster) + " sectors long, which is wrong"};
  }
  SectorLog found{log.first(kSector), get(BaseField::kBinsSize), {}, {}};
  if (!IsGoodBinsSize(found.binsSize)) return LogRefusal{SizeFault(found.binsSize)};
  // The bins are whole pages of eight sectors, so the map is whole bytes.
  const std::size_t tagAt = cluster * kSector;
  const std::size_t mapAt = tagAt + 4;
  const std::size_t mapSize = found.binsSize / kSector / 8;
  const std::size_t sectorsAt = ToSector(mapAt + mapSize);
  if (log.size() < sectorsAt) {
    return LogRefusal{"it ends at byte " + std::to_string(log.size()) + ", within its map of sectors"};
  }
  if (get(tagAt) != kDirtyTag) return LogRefusal{"it has no map of sectors (\"DIRT\")"};
  found.map = log.subspan(mapAt, mapSize);
  found.sectors = log.subspan(sectorsAt);
  std::size_t count = 0;
  for (const std::uint8_t bits : found.map) count += static_cast<std::size_t>(std::popcount(bits));
  if (found.sectors.size() / kSector < count) {
    return LogRefusal{"it ends at byte " + std::to_string(log.size()) + " and should be " +
                      std::to_string(sectorsAt + count * kSector) + " bytes long"};
  }
  return found;
}

/// The entry at the start of `log`; `why` of a refusal continues "its first entry ".
std::variant<LogRefusal, LogEntry> ReadEntry(ByteView log) {
  const auto get = [&](std::size_t field) { return Load32(log.data() + field); };
  if (log.size() < EntryField::kEnd) return LogRefusal{"is missing"};
  if (get(EntryField::kTag) != kEntryTag) return LogRefusal{"is missing (\"HvLE\")"};
  const std::size_t size = get(EntryField::kSize);
  if (size < kSector || size % kSector != 0) return LogRefusal{"has a wrong size"};
  if (size > log.size()) return LogRefusal{"reaches beyond its end"};
  const ByteView entry = log.first(size);
  if (Load64(entry.data() + EntryField::kHeadHash) != Marvin32(kLogHashSeed, entry.first(EntryField::kHeadHash)) ||
      Load64(entry.data() + EntryField::kBodyHash) != Marvin32(kLogHashSeed, entry.subspan(EntryField::kEnd))) {
    return LogRefusal{"has a wrong hash"};
  }
  LogEntry found{get(EntryField::kSequence), get(EntryField::kFlags), get(EntryField::kBinsSize), {}, {}};
  if (!IsGoodBinsSize(found.binsSize)) return LogRefusal{"has a wrong size of the bins"};
  const ByteView body = entry.subspan(EntryField::kEnd);
  const std::size_t count = get(EntryField::kPages);
  if (count > body.size() / kPageReference) return LogRefusal{"has more pages than it can hold"};
  found.references = body.first(count * kPageReference);
  found.pages = body.subspan(count * kPageReference);
  std::uint64_t needed = 0;
  for (std::size_t at = 0; at < found.references.size(); at += kPageReference) {
    const std::uint8_t* reference = found.references.data() + at;
    const std::uint64_t length = Load32(reference + 4);
    if (Load32(reference) + length > found.binsSize) return LogRefusal{"has a page beyond the end of the bins"};
    needed += length;
  }
  if (needed > found.pages.size()) return LogRefusal{"has larger pages than it can hold"};
  return found;
}

/// A log counts from its base block's number. Its entries follow each other by one; what follows the first that
/// does not, or that is damaged, is from an earlier round or was never completed.
HiveLog ReadEntryLog(ByteView log) {
  EntryLog found{log.first(kSector), {}};
  const std::uint32_t begin = Load32(found.base.data() + BaseField::kSequence1);
  for (ByteView rest = log.subspan(kSector);;) {
    const auto read = ReadEntry(rest);
    const LogEntry* entry = std::get_if<LogEntry>(&read);
    if (entry == nullptr) {
      if (found.entries.empty()) return LogRefusal{"its first entry " + std::get<LogRefusal>(read).why};
      break;
    }
    const std::uint32_t expected = begin + static_cast<std::uint32_t>(found.entries.size());  // goes on from 0 at 2^32
    if (entry->sequence != expected) {
      if (found.entries.empty()) {
        return LogRefusal{"its first entry has the number " + std::to_string(entry->sequence) +
                          " and its base block names " + std::to_string(begin)};
      }
      break;
    }
    found.entries.push_back(*entry);
    rest = rest.subspan(Load32(rest.data() + EntryField::kSize));
  }
  return found;
}

}  // namespace

void SectorLog::ForEachPage(const LogPageVisitor& visit) const {
  std::size_t next = 0;
  for (std::size_t sector = 0; sector < map.size() * 8; ++sector) {
    if ((map[sector / 8] >> (sector % 8) & 1) == 0) continue;
    visit(sector * kSector, sectors.subspan(next, kSector));
    next += kSector;
  }
}

void LogEntry::ForEachPage(const LogPageVisitor& visit) const {
  std::size_t next = 0;
  for (std::size_t at = 0; at < references.size(); at += kPageReference) {
    const std::size_t length = Load32(references.data() + at + 4);
    visit(Load32(references.data() + at), pages.subspan(next, length));
    next += length;
  }
}

HiveLog ReadHiveLog(ByteView file) {
  if (file.empty()) return LogRefusal{"it is empty", true};
  if (std::all_of(file.begin(), file.end(), [](std::uint8_t byte) { return byte == 0; })) {
    return LogRefusal{"it holds nothing but zeros", true};
  }
  if (file.size() < 4 || Load32(file.data()) != kHiveTag) {
    return LogRefusal{"it does not begin with \"regf\", so it is not a registry log"};
  }
  if (file.size() < kSector) {
    return LogRefusal{"it ends at byte " + std::to_string(file.size()) + ", within its base block"};
  }
  if (!IsGoodBase(file)) return LogRefusal{"the checksum of its base block is wrong"};
  const std::uint32_t type = Load32(file.data() + BaseField::kType);
  if (type == LogType::kEntries) return ReadEntryLog(file);
  if (type == LogType::kSectors || type == LogType::kOlderSectors) return ReadSectorLog(file);
  if (type == LogType::kHive) return LogRefusal{"it is a hive and not a hive's log"};
  return LogRefusal{"it is a log of the unknown type " + std::to_string(type)};
}

bool IsGoodBase(ByteView file) {
  return file.size() >= kSector && Load32(file.data()) == kHiveTag &&
         Load32(file.data() + BaseField::kChecksum) == BaseChecksum(file.data());
}

}  // namespace quillbox
