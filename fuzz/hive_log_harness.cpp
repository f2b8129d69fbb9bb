// SPDX-License-Identifier: GPL-3.0-or-later
// A hive that was not closed cleanly, with its logs. The harness corrects checksums, hashes and sequences, as the
// input's flags say, because a fuzzer cannot guess them.
#include <array>
#include <cstring>
#include <optional>

#include "harness.h"
#include "hive_mutation.h"
#include "hive_reading.h"
#include "hive_seeds.h"
#include "registry/hive_log_tools.h"
#include "registry/marvin.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kFiles = 4;  ///< the hive, the log of the old form, the two of the new form
constexpr std::array<const char*, kFiles - 1> kLogNames = {"LOG", "LOG1", "LOG2"};
constexpr std::size_t kHead = 4 * kFiles;

/// What the harness corrects before it tries the input.
struct Mend {
  static constexpr std::uint32_t kHiveBase = 1;
  static constexpr std::uint32_t kLogBases = 2;
  static constexpr std::uint32_t kEntries = 4;    ///< sizes and hashes of entries
  static constexpr std::uint32_t kSequences = 8;  ///< entries count up from what their log's base block says
  static constexpr std::uint32_t kDirty = 16;     ///< the hive's sequences differ
  static constexpr std::uint32_t kTimes = 32;     ///< the logs have the hive's time
  static constexpr std::uint32_t kLeaveOut = 64;  ///< not mended: damaged parts of the hive are left out
  static constexpr std::uint32_t kAll = 63;
};

// Offsets in an entry of a newer log.
constexpr std::size_t kEntrySize = 4, kEntrySequence = 12, kEntryBodyHash = 24, kEntryHeadHash = 32, kEntryBody = 40;

/// The files of an input: its flags, the lengths of all files but the last, then the files.
struct Files {
  std::uint32_t flags = Mend::kAll;
  std::array<Bytes, kFiles> file;

  static Files Of(ByteView input) {
    Files files;
    if (input.size() < kHead) return files;
    files.flags = Load32(input.data());
    InputReader reader(input.subspan(kHead));
    for (std::size_t at = 0; at < kFiles; ++at) {
      const bool last = at + 1 == kFiles;
      const ByteView bytes = reader.Take(last ? input.size() : Load32(input.data() + 4 * (at + 1)));
      files.file[at].assign(bytes.begin(), bytes.end());
    }
    return files;
  }

  Bytes Joined() const {
    Bytes input(kHead);
    Store32(input.data(), flags);
    for (std::size_t at = 0; at < kFiles; ++at) {
      if (at + 1 < kFiles) Store32(&input[4 * (at + 1)], static_cast<std::uint32_t>(file[at].size()));
      input.insert(input.end(), file[at].begin(), file[at].end());
    }
    return input;
  }
};

void MendEntries(Bytes& log, std::uint32_t flags) {
  std::uint32_t sequence = Load32(&log[BaseField::kSequence1]);
  for (std::size_t at = kSector; at + kSector <= log.size();) {
    std::uint8_t* entry = &log[at];
    if (std::memcmp(entry, "HvLE", 4) != 0) return;
    std::size_t size = Load32(entry + kEntrySize);
    if (size < kSector || size % kSector != 0 || size > log.size() - at) {
      size = (log.size() - at) / kSector * kSector;
      Store32(entry + kEntrySize, static_cast<std::uint32_t>(size));
    }
    if ((flags & Mend::kSequences) != 0) Store32(entry + kEntrySequence, sequence++);
    const ByteView all(entry, size);
    Store64(entry + kEntryBodyHash, Marvin32(kLogHashSeed, all.subspan(kEntryBody)));
    Store64(entry + kEntryHeadHash, Marvin32(kLogHashSeed, all.first(kEntryHeadHash)));
    at += size;
  }
}

void MendLog(Bytes& log, const Bytes& hive, bool entries, std::uint32_t flags) {
  if (log.size() < kSector) return;
  if (!entries && (flags & Mend::kTimes) != 0 && hive.size() >= kSector) {
    Store64(&log[BaseField::kTime], Load64(&hive[BaseField::kTime]));
    Store32(&log[BaseField::kSequence2], Load32(&log[BaseField::kSequence1]));
  }
  if ((flags & Mend::kLogBases) != 0) MendBaseChecksum(log);
  if (entries && (flags & Mend::kEntries) != 0) MendEntries(log, flags);
}

void MendAll(Files& files) {
  Bytes& hive = files.file[0];
  if (hive.size() >= kSector && (files.flags & Mend::kDirty) != 0) {
    Store32(&hive[BaseField::kSequence2], Load32(&hive[BaseField::kSequence1]) - 1);
  }
  if ((files.flags & Mend::kHiveBase) != 0) MendBaseChecksum(hive);
  for (std::size_t at = 1; at < kFiles; ++at) MendLog(files.file[at], hive, at > 1, files.flags);
}

void RunHiveLog(ByteView input) {
  Files files = Files::Of(input);
  MendAll(files);
  bool read = false;
  const auto logs = [&] {
    read = true;
    std::vector<HiveLogFile> given;
    for (std::size_t at = 1; at < kFiles; ++at) {
      if (!files.file[at].empty()) given.push_back({kLogNames[at - 1], files.file[at], {}});
    }
    return given;
  };
  const bool leaveOut = (files.flags & Mend::kLeaveOut) != 0;
  std::optional<Hive> hive;
  try {
    hive = Hive::Load(files.file[0], "fuzzed", logs, leaveOut ? DamagedParts::LeaveOut : DamagedParts::Refuse);
  } catch (const Error&) {
    return;
  }
  Require(read == (hive->Origin() != HiveOrigin::Clean), "logs are read when the hive is not clean, and only then");
  Require(hive->Origin() != HiveOrigin::DirtyUnusedLogs || !hive->UnusedLogs().empty(), "unused logs are listed");
  RequireReloads(*hive);
}

void MutateHiveLog(Bytes& input, std::size_t limit, Mutation& mutation) {
  Files files = Files::Of(input);
  const std::size_t others = input.size() - std::min(input.size(), files.file[0].size());
  if (mutation.OneIn(16)) files.flags = static_cast<std::uint32_t>(mutation.Below(128));
  if (mutation.OneIn(3)) {
    if (limit > others) MutateHive(files.file[0], limit - others, mutation);
  } else {
    Bytes& log = files.file[1 + mutation.Below(kFiles - 1)];
    if (log.empty()) log = files.file[1 + mutation.Below(kFiles - 1)];
    const std::size_t rest = input.size() - std::min(input.size(), log.size());
    // Mostly the head, which describes what the log holds.
    Bytes head(log.begin(), log.begin() + static_cast<std::ptrdiff_t>(std::min(log.size(), 2 * kSector)));
    if (mutation.OneIn(4) || head.empty()) {
      mutation.ByEngine(log, std::max(limit - std::min(limit, rest), std::size_t{1}));
    } else {
      mutation.ByEngine(head, head.size());
      std::copy(head.begin(), head.end(), log.begin());
    }
  }
  input = files.Joined();
}

std::vector<Seed> HiveLogSeeds() {
  Hive hive = SeedHive(5);
  const Bytes before = hive.Image(kMonday);
  hive.SetValue(hive.CreatePath(hive.Root(), "New\\key"), "value", 3, Pattern(3000));
  hive.DeleteTree(*hive.Find(hive.Root(), "Four"));
  const Bytes after = hive.Image(kMonday);
  const std::size_t size = after.size() - kHivePage;
  const std::uint32_t next = Load32(&before[BaseField::kSequence1]);
  const ByteView bins = ByteView(after).subspan(kHivePage);
  const Bytes first = MakeLogEntry(next, size, {{0, bins.first(kHivePage)}});
  const Bytes second = MakeLogEntry(next + 1, size, {{kHivePage, bins.subspan(kHivePage)}});
  const auto seed = [&](const char* name, std::array<Bytes, 3> logs) {
    return Seed{name, Files{Mend::kAll, {before, logs[0], logs[1], logs[2]}}.Joined()};
  };
  return {seed("no-log", {}), seed("sectors", {MakeSectorLog(before, after), {}, {}}),
          seed("entries", {Bytes(), MakeEntryLog(before, next, {first, second}), {}}),
          seed("two-logs", {Bytes(), MakeEntryLog(before, next + 1, {second}), MakeEntryLog(before, next, {first})})};
}

}  // namespace

const Harness kHiveLogHarness = {"hive_log", 96 * 1024, RunHiveLog, HiveLogSeeds, MutateHiveLog};

}  // namespace quillbox
