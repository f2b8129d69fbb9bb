#include "registry/hive_log.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <utility>

#include "registry/hive_layout.h"
#include "registry/marvin.h"

namespace quillbox {

namespace {

constexpr std::uint32_t kDirtyTag = Tag32('D', 'I', 'R', 'T');
constexpr std::uint32_t kEntryTag = Tag32('H', 'v', 'L', 'E');
constexpr std::uint32_t kEntryLogType = 6;
constexpr std::uint32_t kMaxCluster = 8;

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

struct LogEntry {
  std::uint32_t sequence = 0;
  ByteView bytes;
};

struct EntryLog {
  ByteView base;
  std::vector<LogEntry> entries;
};

bool IsGoodBase(ByteView base) {
  return base.size() >= kSector && Load32(base.data()) == kHiveTag &&
         Load32(base.data() + BaseField::kChecksum) == BaseChecksum(base.data());
}

bool IsGoodBinsSize(std::size_t size) {
  return size > 0 && size % kHivePage == 0 && size <= kMaxBinsSize;
}

std::size_t ToSector(std::size_t size) {
  return (size + kSector - 1) / kSector * kSector;
}

std::uint64_t TimeOf(const Bytes& file) {
  if (IsGoodBase(file)) return Load64(file.data() + BaseField::kTime);
  return file.size() < kHivePage + kBinHeader ? 0 : Load64(file.data() + kHivePage + BinField::kTime);
}

/// Puts a log's base block in place of the hive's.
void TakeBase(Bytes& file, ByteView base) {
  std::memcpy(file.data(), base.data(), kSector);
  Store32(file.data() + BaseField::kType, 0);
}

/// The map of a log of the old form: one bit for each sector of the bins.
struct SectorLog {
  ByteView base;
  std::size_t binsSize = 0;
  ByteView map;
  ByteView sectors;  ///< one after the other, for each bit that is set
};

std::optional<SectorLog> ReadSectorLog(ByteView log) {
  if (!IsGoodBase(log)) return std::nullopt;
  const std::uint32_t type = Load32(log.data() + BaseField::kType);
  const std::uint32_t cluster = Load32(log.data() + BaseField::kCluster);
  SectorLog found{log.first(kSector), Load32(log.data() + BaseField::kBinsSize), {}, {}};
  if ((type != 1 && type != 2) || cluster == 0 || cluster > kMaxCluster || !IsGoodBinsSize(found.binsSize) ||
      Load32(log.data() + BaseField::kSequence1) != Load32(log.data() + BaseField::kSequence2)) {
    return std::nullopt;
  }
  const std::size_t mapAt = cluster * kSector + 4;
  const std::size_t mapSize = found.binsSize / kSector / 8;
  const std::size_t sectorsAt = ToSector(mapAt + mapSize);
  if (log.size() < sectorsAt || Load32(log.data() + mapAt - 4) != kDirtyTag) return std::nullopt;
  found.map = log.subspan(mapAt, mapSize);
  found.sectors = log.subspan(sectorsAt);
  std::size_t count = 0;
  for (const std::uint8_t bits : found.map) count += static_cast<std::size_t>(std::popcount(bits));
  if (found.sectors.size() / kSector < count) return std::nullopt;
  return found;
}

bool ApplySectorLog(Bytes& file, ByteView log) {
  const std::optional<SectorLog> found = ReadSectorLog(log);
  if (!found || Load64(found->base.data() + BaseField::kTime) != TimeOf(file)) return false;
  file.resize(kHivePage + found->binsSize);
  TakeBase(file, found->base);
  std::size_t next = 0;
  for (std::size_t bit = 0; bit < found->map.size() * 8; ++bit) {
    if ((found->map[bit / 8] >> (bit % 8) & 1) == 0) continue;
    std::memcpy(file.data() + kHivePage + bit * kSector, found->sectors.data() + next, kSector);
    next += kSector;
  }
  return true;
}

/// The entry at the start of `log`, or nothing where its chain ends.
std::optional<LogEntry> ReadEntry(ByteView log) {
  if (log.size() < EntryField::kEnd || Load32(log.data() + EntryField::kTag) != kEntryTag) return std::nullopt;
  const std::size_t size = Load32(log.data() + EntryField::kSize);
  if (size < kSector || size % kSector != 0 || size > log.size()) return std::nullopt;
  const ByteView entry = log.first(size);
  if (Load64(entry.data() + EntryField::kBodyHash) != Marvin32(kLogHashSeed, entry.subspan(EntryField::kEnd)) ||
      Load64(entry.data() + EntryField::kHeadHash) != Marvin32(kLogHashSeed, entry.first(EntryField::kHeadHash))) {
    return std::nullopt;
  }
  const std::size_t binsSize = Load32(entry.data() + EntryField::kBinsSize);
  const std::uint64_t pages = Load32(entry.data() + EntryField::kPages);
  std::uint64_t end = EntryField::kEnd + pages * kPageReference;
  if (!IsGoodBinsSize(binsSize) || end > size) return std::nullopt;
  for (std::uint64_t page = 0; page < pages; ++page) {
    const std::uint8_t* reference = entry.data() + EntryField::kEnd + page * kPageReference;
    const std::uint64_t length = Load32(reference + 4);
    if (Load32(reference) + length > binsSize) return std::nullopt;
    end += length;
  }
  if (end > size) return std::nullopt;
  return LogEntry{Load32(entry.data() + EntryField::kSequence), entry};
}

/// Entries follow one another with rising numbers; what stands behind the last of them is from an earlier round.
std::optional<EntryLog> ReadEntryLog(ByteView log) {
  if (!IsGoodBase(log) || Load32(log.data() + BaseField::kType) != kEntryLogType) return std::nullopt;
  EntryLog found{log.first(kSector), {}};
  for (std::size_t at = kSector; at < log.size();) {
    const std::optional<LogEntry> entry = ReadEntry(log.subspan(at));
    if (!entry || (!found.entries.empty() && entry->sequence != found.entries.back().sequence + 1)) break;
    found.entries.push_back(*entry);
    at += entry->bytes.size();
  }
  if (found.entries.empty()) return std::nullopt;
  return found;
}

void ApplyEntry(Bytes& file, const LogEntry& entry) {
  const std::uint8_t* at = entry.bytes.data();
  const std::uint32_t binsSize = Load32(at + EntryField::kBinsSize);
  const std::size_t pages = Load32(at + EntryField::kPages);
  file.resize(kHivePage + binsSize);
  const std::uint8_t* content = at + EntryField::kEnd + pages * kPageReference;
  for (std::size_t page = 0; page < pages; ++page) {
    const std::uint8_t* reference = at + EntryField::kEnd + page * kPageReference;
    const std::size_t length = Load32(reference + 4);
    std::memcpy(file.data() + kHivePage + Load32(reference), content, length);
    content += length;
  }
  Store32(file.data() + BaseField::kBinsSize, binsSize);
  Store32(file.data() + BaseField::kFlags, Load32(at + EntryField::kFlags));
  Store32(file.data() + BaseField::kSequence1, entry.sequence);
  Store32(file.data() + BaseField::kSequence2, entry.sequence);
}

/// The entries that the hive lacks, in order; empty when one between them and the hive is missing.
std::vector<LogEntry> MissingEntries(const std::vector<EntryLog>& logs, std::uint32_t written) {
  std::vector<LogEntry> entries;
  for (const EntryLog& log : logs) {
    std::copy_if(log.entries.begin(), log.entries.end(), std::back_inserter(entries),
                 [&](const LogEntry& entry) { return entry.sequence >= written; });
  }
  std::stable_sort(entries.begin(), entries.end(),
                   [](const LogEntry& a, const LogEntry& b) { return a.sequence < b.sequence; });
  std::uint64_t expected = std::uint64_t{written} + 1;
  std::size_t usable = 0;
  while (usable < entries.size() && entries[usable].sequence <= expected) {
    expected = std::uint64_t{entries[usable].sequence} + 1;
    ++usable;
  }
  entries.resize(usable);
  return entries;
}

bool ApplyEntryLogs(Bytes& file, const std::vector<HiveLogFile>& given) {
  std::vector<EntryLog> logs;
  for (const HiveLogFile& log : given) {
    if (auto found = ReadEntryLog(log.bytes)) logs.push_back(std::move(*found));
  }
  if (logs.empty()) return false;
  const bool goodBase = IsGoodBase(file);
  if (!goodBase) {
    // Without the hive's own number, only a log whose base block was written last tells where to begin.
    const auto latest = std::max_element(logs.begin(), logs.end(), [](const EntryLog& a, const EntryLog& b) {
      return a.entries.back().sequence < b.entries.back().sequence;
    });
    logs = {*latest};
  }
  const std::vector<LogEntry> entries =
      MissingEntries(logs, goodBase ? Load32(file.data() + BaseField::kSequence2) : logs[0].entries[0].sequence);
  if (entries.empty()) return false;
  if (file.size() < kHivePage) file.resize(kHivePage);
  if (!goodBase) TakeBase(file, logs[0].base);
  for (const LogEntry& entry : entries) ApplyEntry(file, entry);
  return true;
}

}  // namespace

bool IsClosedCleanly(const Bytes& file) {
  return IsGoodBase(file) && Load32(file.data() + BaseField::kSequence1) == Load32(file.data() + BaseField::kSequence2);
}

bool ApplyLogs(Bytes& file, const std::vector<HiveLogFile>& logs) {
  return ApplyEntryLogs(file, logs) ||
         std::any_of(logs.begin(), logs.end(), [&](const HiveLogFile& log) { return ApplySectorLog(file, log.bytes); });
}

}  // namespace quillbox
