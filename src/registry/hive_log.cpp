// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_log.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "registry/hive_layout.h"

namespace quillbox {

namespace {

using LogChain = std::vector<LogBeside*>;

/// Bytes of a hive that may be neither in its file nor in its logs: what Windows added and left free. It limits the
/// memory that a log with made-up sizes can ask for.
constexpr std::size_t kFreeAllowed = std::size_t{1} << 20;

void Refuse(LogBeside& log, std::string why) {
  log.content = LogRefusal{std::move(why)};
}

EntryLog& Entries(LogBeside& log) {
  return std::get<EntryLog>(log.content);
}

template <typename Form>
LogChain LogsOf(std::vector<LogBeside>& logs) {
  LogChain found;
  for (LogBeside& log : logs) {
    if (std::holds_alternative<Form>(log.content)) found.push_back(&log);
  }
  return found;
}

/// The hive's file while logs are written over it.
class Replay {
 public:
  /// `binsSize`: the most that any of the pages needs. `oldBinsSize`: of the hive as its base block has it.
  Replay(const Bytes& file, std::size_t binsSize, std::size_t oldBinsSize)
      : fileSize_(file.size()), oldEnd_(kHivePage + std::min(oldBinsSize, binsSize)) {
    bytes_.reserve(kHivePage + binsSize);
    bytes_.assign(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(std::min(fileSize_, kHivePage + binsSize)));
    bytes_.resize(kHivePage + binsSize);
    if (fileSize_ < oldEnd_) restored_.resize(oldEnd_ / kSector);
  }

  std::uint8_t* Base() { return bytes_.data(); }

  void Write(std::size_t offset, ByteView content) {
    if (content.empty()) return;
    const std::size_t at = kHivePage + offset;
    std::memcpy(bytes_.data() + at, content.data(), content.size());
    const std::size_t end = std::min((at + content.size()) / kSector, restored_.size());
    for (std::size_t sector = (at + kSector - 1) / kSector; sector < end; ++sector) restored_[sector] = true;
  }

  /// The recovered file; or why it would hold bytes that are neither in the file nor in its logs. What the logs add
  /// after the hive's former end may have gaps: new bins are logged without what is free in them.
  std::variant<LogRefusal, Bytes> Finish(std::size_t binsSize) {
    const std::size_t end = std::min(restored_.size(), (kHivePage + binsSize) / kSector);
    for (std::size_t sector = std::max(fileSize_, kHivePage) / kSector; sector < end; ++sector) {
      if (!restored_[sector]) {
        return LogRefusal{"the hive's file ends at byte " + std::to_string(fileSize_) +
                          ", and the log does not hold all that is missing"};
      }
    }
    bytes_.resize(kHivePage + binsSize);
    return std::move(bytes_);
  }

 private:
  std::size_t fileSize_;
  std::size_t oldEnd_;
  Bytes bytes_;
  std::vector<bool> restored_;  ///< sectors of a file that is too short
};

/// Puts a log's base block in place of the hive's.
void TakeBase(std::uint8_t* to, ByteView base) {
  std::memcpy(to, base.data(), kSector);
  Store32(to + BaseField::kType, 0);
}

bool IsTooLarge(std::size_t binsSize, std::size_t hiveAndLogs) {
  return binsSize > 2 * hiveAndLogs + kFreeAllowed;
}

std::string TooLarge(std::size_t binsSize) {
  return "it makes the hive " + std::to_string(binsSize) + " bytes long, far more than it and the hive hold";
}

/// Whether a log of the older form with the time `time` was written for this hive. Windows compares with the base
/// block; where that is damaged, the first bin may have the time of the write that the log is of, or the base block's
/// time may be right still. A time of 0 is that of a wiped block, and proves nothing.
bool IsTimeOf(const Bytes& file, std::uint64_t time) {
  const auto has = [&](std::size_t at) { return file.size() >= at + 8 && Load64(file.data() + at) == time; };
  if (IsGoodBase(file)) return has(BaseField::kTime);
  return time != 0 && (has(BaseField::kTime) || has(kHivePage + BinField::kTime));
}

std::variant<LogRefusal, Bytes> ApplySectorLog(const Bytes& file, const SectorLog& log, std::size_t logSize) {
  if (!IsTimeOf(file, Load64(log.base.data() + BaseField::kTime))) return LogRefusal{"its time is not the hive's"};
  if (IsTooLarge(log.binsSize, file.size() + logSize)) return LogRefusal{TooLarge(log.binsSize)};
  const std::uint8_t* base = IsGoodBase(file) ? file.data() : log.base.data();
  Replay replay(file, log.binsSize, Load32(base + BaseField::kBinsSize));
  TakeBase(replay.Base(), log.base);
  log.ForEachPage([&](std::size_t offset, ByteView content) { replay.Write(offset, content); });
  return replay.Finish(log.binsSize);
}

std::optional<RecoveredFile> ApplySectorLogs(const Bytes& file, const LogChain& logs) {
  for (LogBeside* log : logs) {
    const auto& content = std::get<SectorLog>(log->content);
    auto result = ApplySectorLog(file, content, content.map.size() + content.sectors.size());
    if (auto* bytes = std::get_if<Bytes>(&result)) return RecoveredFile{std::move(*bytes), {log}};
    log->content = std::get<LogRefusal>(std::move(result));
  }
  return std::nullopt;
}

/// The start of a refusal that concerns the numbers of a log's entries.
std::string Begins(LogBeside& log) {
  return "its entries begin at " + std::to_string(Entries(log).First());
}

/// The logs that bring a hive with the number `written` up to date: the one with the earliest entries that the hive
/// does not have, and after it those that go on where it ends. The hive's number may be far behind, since Windows
/// often writes to the logs only; so the first entry's may be any that is not less.
LogChain ChainFrom(std::uint32_t written, LogChain logs) {
  const auto isOlder = [&](LogBeside* log) { return Entries(*log).First() < written; };
  const auto firstOfAll = [&](LogBeside* a, LogBeside* b) {
    return isOlder(a) != isOlder(b) ? isOlder(b) : Entries(*a).First() < Entries(*b).First();
  };
  LogChain chain;
  auto next = std::min_element(logs.begin(), logs.end(), firstOfAll);
  if (isOlder(*next)) next = logs.end();
  while (next != logs.end()) {
    chain.push_back(*next);
    logs.erase(next);
    const std::uint32_t expected = Entries(*chain.back()).Last() + 1;  // goes on from 0 at 2^32
    next = std::find_if(logs.begin(), logs.end(), [&](LogBeside* log) { return Entries(*log).First() == expected; });
  }
  for (LogBeside* log : logs) {
    Refuse(*log, isOlder(log)
                     ? Begins(*log) + " and the hive needs those from " + std::to_string(written) + " on"
                     : Begins(*log) + " and the other log ends at " + std::to_string(Entries(*chain.back()).Last()));
  }
  return chain;
}

/// For a hive without a number to begin at: the log whose base block was written last.
LogChain LatestOf(const LogChain& logs) {
  const LogChain::const_iterator latest = std::max_element(logs.begin(), logs.end(), [](LogBeside* a, LogBeside* b) {
    return static_cast<std::int32_t>(Entries(*a).Last() - Entries(*b).Last()) < 0;  // also where they go on from 0
  });
  for (LogBeside* log : logs) {
    if (log != *latest)
      Refuse(*log, Begins(*log) + "; the hive's base block is damaged, so only the latest log counts");
  }
  return {*latest};
}

void StampBase(std::uint8_t* base, const LogEntry& entry) {
  Store32(base + BaseField::kBinsSize, static_cast<std::uint32_t>(entry.binsSize));
  Store32(base + BaseField::kFlags, entry.flags);
  Store32(base + BaseField::kSequence1, entry.sequence);
  Store32(base + BaseField::kSequence2, entry.sequence);
}

std::variant<LogRefusal, Bytes> ApplyChain(const Bytes& file, const LogChain& chain) {
  std::size_t size = file.size();
  std::size_t largest = 0;
  for (LogBeside* log : chain) {
    for (const LogEntry& entry : Entries(*log).entries) {
      size += entry.references.size() + entry.pages.size();
      largest = std::max(largest, entry.binsSize);
    }
  }
  if (IsTooLarge(largest, size)) return LogRefusal{TooLarge(largest)};
  const bool goodBase = IsGoodBase(file);
  const ByteView logBase = Entries(*chain.front()).base;
  // One buffer of the largest size that any entry needs, so that the work does not grow with every change of size.
  Replay replay(file, largest, Load32((goodBase ? file.data() : logBase.data()) + BaseField::kBinsSize));
  if (!goodBase) TakeBase(replay.Base(), logBase);
  for (LogBeside* log : chain) {
    for (const LogEntry& entry : Entries(*log).entries) {
      entry.ForEachPage([&](std::size_t offset, ByteView content) { replay.Write(offset, content); });
    }
  }
  const LogEntry& last = Entries(*chain.back()).entries.back();
  StampBase(replay.Base(), last);
  return replay.Finish(last.binsSize);
}

std::optional<RecoveredFile> ApplyEntryLogs(const Bytes& file, const LogChain& logs) {
  if (logs.empty()) return std::nullopt;
  LogChain chain = IsGoodBase(file) ? ChainFrom(Load32(file.data() + BaseField::kSequence2), logs) : LatestOf(logs);
  if (chain.empty()) return std::nullopt;
  auto result = ApplyChain(file, chain);
  if (auto* bytes = std::get_if<Bytes>(&result)) return RecoveredFile{std::move(*bytes), std::move(chain)};
  for (LogBeside* log : chain) log->content = std::get<LogRefusal>(result);
  return std::nullopt;
}

}  // namespace

bool IsClosedCleanly(const Bytes& file) {
  return IsGoodBase(file) && Load32(file.data() + BaseField::kSequence1) == Load32(file.data() + BaseField::kSequence2);
}

std::vector<LogBeside> ReadLogs(const std::vector<HiveLogFile>& files) {
  std::vector<LogBeside> logs;
  logs.reserve(files.size());
  for (const HiveLogFile& file : files) {
    logs.push_back({file.name, file.unreadable ? LogRefusal{"it could not be read: " + *file.unreadable}
                                               : ReadHiveLog(file.bytes)});
  }
  return logs;
}

std::optional<RecoveredFile> ApplyLogs(const Bytes& file, std::vector<LogBeside>& logs) {
  if (auto recovered = ApplyEntryLogs(file, LogsOf<EntryLog>(logs))) return recovered;
  return ApplySectorLogs(file, LogsOf<SectorLog>(logs));
}

}  // namespace quillbox
