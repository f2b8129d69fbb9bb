#include "registry/hive_log.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "registry/hive_tools.h"
#include "registry/marvin.h"

namespace quillbox {
namespace {

/// The hash of log entries, written from its description and not with the program's own code or numbers, so that logs
/// made with it say something about those that Windows writes.
std::uint64_t HashOfLog(ByteView data) {
  std::uint32_t low = 0x7A4E55C5;
  std::uint32_t high = 0x82EF4D88;
  Bytes padded(data.begin(), data.end());
  padded.push_back(0x80);
  padded.resize((padded.size() + 3) / 4 * 4 + 4);
  for (std::size_t at = 0; at < padded.size(); at += 4) {
    low += padded[at] + padded[at + 1] * 0x100U + padded[at + 2] * 0x10000U + padded[at + 3] * 0x1000000U;
    high ^= low;
    low = std::rotl(low, 20) + high;
    high = std::rotl(high, 9) ^ low;
    low = std::rotl(low, 27) + high;
    high = std::rotl(high, 19);
  }
  return std::uint64_t{high} << 32 | low;
}

TEST(LogHash, IsThatOfWindowsLogs) {
  const struct {
    Bytes data;
    std::uint64_t hash;
  } known[] = {{{}, 0xb39efca403966e08},
               {{'a', 'b', 'c'}, 0xb9cf3dfca41914f7},
               {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, 0xe6b80bbf041cd42b}};
  for (const auto& [data, hash] : known) {
    EXPECT_EQ(Marvin32(kLogHashSeed, data), hash);
    EXPECT_EQ(HashOfLog(data), hash) << "the test's own";
  }
}

/// A hive before and after changes that make it grow, and the file that a system which stopped between them leaves.
struct Interrupted {
  Bytes before;
  Bytes after;
  Bytes file;  ///< dirty, with some of the changes
  std::vector<std::string> lines;

  explicit Interrupted(std::uint32_t minor) {
    Hive hive = EmptyHive(minor);
    for (int number = 0; number < 60; ++number) hive.CreatePath(hive.Root(), "Old\\" + std::to_string(number));
    before = hive.Image(kMonday);
    hive.DeleteTree(*hive.Find(hive.Root(), "Old\\30"));
    for (int number = 0; number < 200; ++number) hive.CreatePath(hive.Root(), "New\\" + std::to_string(number));
    after = hive.Image(kMonday);
    lines = Lines(hive, true);
    file = before;
    std::memcpy(file.data() + 2 * kHivePage, after.data() + 2 * kHivePage, kSector);
    SetBase(file, BaseField::kSequence1, Load32(before.data() + BaseField::kSequence1) + 1);
  }
};

void Append(Bytes& to, const std::uint8_t* from, std::size_t size) {
  to.insert(to.end(), from, from + size);
}

/// The log with changed sectors that belongs to it.
Bytes SectorLog(const Interrupted& hive) {
  Bytes log(hive.after.begin(), hive.after.begin() + kSector);
  SetBase(log, BaseField::kType, 1);
  const std::size_t sectors = (hive.after.size() - kHivePage) / kSector;
  Append(log, reinterpret_cast<const std::uint8_t*>("DIRT"), 4);
  Bytes map(sectors / 8);
  Bytes content;
  for (std::size_t sector = 0; sector < sectors; ++sector) {
    const std::size_t at = kHivePage + sector * kSector;
    if (at < hive.before.size() && std::memcmp(&hive.before[at], &hive.after[at], kSector) == 0) continue;
    map[sector / 8] |= static_cast<std::uint8_t>(1U << (sector % 8));
    Append(content, &hive.after[at], kSector);
  }
  Append(log, map.data(), map.size());
  log.resize((log.size() + kSector - 1) / kSector * kSector);
  Append(log, content.data(), content.size());
  return log;
}

/// An entry of the newer logs that makes the first `size` bytes of the bins what `image` has there.
Bytes Entry(const Bytes& image, std::uint32_t sequence, std::size_t first, std::size_t size) {
  Bytes entry((48 + size + kSector - 1) / kSector * kSector);
  std::memcpy(entry.data(), "HvLE", 4);
  Store32(&entry[12], sequence);
  Store32(&entry[16], static_cast<std::uint32_t>(image.size() - kHivePage));
  Store32(&entry[20], 1);
  Store32(&entry[40], static_cast<std::uint32_t>(first));
  Store32(&entry[44], static_cast<std::uint32_t>(size));
  std::memcpy(&entry[48], &image[kHivePage + first], size);
  Store32(&entry[4], static_cast<std::uint32_t>(entry.size()));
  Store64(&entry[24], HashOfLog(ByteView(entry).subspan(40)));
  Store64(&entry[32], HashOfLog(ByteView(entry).first(32)));
  return entry;
}

Bytes EntryLog(const Bytes& base, const std::vector<Bytes>& entries) {
  Bytes log(base.begin(), base.begin() + kSector);
  SetBase(log, BaseField::kType, 6);
  for (const Bytes& entry : entries) Append(log, entry.data(), entry.size());
  return log;
}

Hive LoadWith(const Bytes& file, const std::vector<Bytes>& logs) {
  return Hive::Load(file, "dirty", [&] {
    std::vector<HiveLogFile> files;
    for (const Bytes& log : logs) files.push_back({"log", log, {}});
    return files;
  });
}

HiveOrigin OriginOf(const Bytes& file, const Bytes& log) {
  return LoadWith(file, {log}).Origin();
}

TEST(HiveLog, BringsAHiveUpToDate) {
  const Interrupted hive(3);
  const Bytes log = SectorLog(hive);
  for (const bool second : {false, true}) {
    const Hive recovered = LoadWith(hive.file, {second ? Bytes() : log, second ? log : Bytes()});
    EXPECT_EQ(recovered.Origin(), HiveOrigin::Recovered);
    EXPECT_TRUE(recovered.Changed());
    EXPECT_EQ(Lines(recovered, true), hive.lines);
  }
  Bytes noBase = hive.file;
  noBase[BaseField::kRoot] ^= 1;
  Hive recovered = LoadWith(noBase, {log});
  EXPECT_EQ(Lines(recovered, true), hive.lines);
  EXPECT_EQ(OriginOf(recovered.Image(kTuesday), log), HiveOrigin::Clean);
}

TEST(HiveLog, IsUsedOnlyWhenItBelongsToTheHive) {
  const Interrupted hive(3);
  const Bytes good = SectorLog(hive);
  EXPECT_EQ(Lines(LoadWith(hive.before, {good})), Lines(LoadWith(hive.before, {})));
  // The hive itself is whole here, so that it opens without its log.
  Bytes dirty = hive.before;
  SetBase(dirty, BaseField::kSequence1, 77);
  ASSERT_EQ(OriginOf(dirty, good), HiveOrigin::Recovered);
  Bytes otherTime = good;
  SetBase(otherTime, BaseField::kTime, 1);
  Bytes interrupted = good;
  SetBase(interrupted, BaseField::kSequence1, 99);
  Bytes badChecksum = good;
  badChecksum[100] ^= 1;
  Bytes noMap = good;
  noMap[kSector] = 'X';
  for (const Bytes& log : {Bytes(), otherTime, interrupted, badChecksum, noMap}) {
    EXPECT_EQ(OriginOf(dirty, log), HiveOrigin::DirtyUnusedLogs);
  }
  for (std::size_t size = 0; size < good.size(); size += 64) {
    ASSERT_EQ(OriginOf(dirty, Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size))),
              HiveOrigin::DirtyUnusedLogs)
        << "cut at " << size;
  }
}

TEST(HiveLog, AppliesEntriesOfBothNewerLogsInOrder) {
  const Interrupted hive(5);
  const std::uint32_t next = Load32(hive.before.data() + BaseField::kSequence2) + 1;
  const std::size_t size = hive.after.size() - kHivePage;
  const std::size_t half = size / 2 / kHivePage * kHivePage;
  const Bytes stale(hive.after.size(), 0xEE);
  const Bytes first = Entry(hive.after, next, 0, half);
  const Bytes second = Entry(hive.after, next + 1, half, size - half);
  const Bytes old = EntryLog(hive.before, {Entry(stale, next - 2, 0, size), Entry(stale, next, 0, half)});
  const auto lines = [&](const Bytes& log, const Bytes& log2) {
    const Hive recovered = LoadWith(hive.file, {log, log2});
    EXPECT_EQ(recovered.Origin(), HiveOrigin::Recovered);
    return Lines(recovered, true);
  };
  EXPECT_EQ(lines(EntryLog(hive.before, {first, second}), {}), hive.lines);
  EXPECT_EQ(lines(EntryLog(hive.before, {second}), EntryLog(hive.before, {first})), hive.lines);
  EXPECT_EQ(lines(old, EntryLog(hive.before, {first, second})), hive.lines) << "what is behind a gap is from before";

  Bytes dirty = hive.before;
  SetBase(dirty, BaseField::kSequence1, next);
  EXPECT_EQ(OriginOf(dirty, EntryLog(hive.before, {second})), HiveOrigin::DirtyUnusedLogs)
      << "the first entry is missing";
  for (std::size_t at = 0; at < first.size(); at += 13) {
    Bytes damaged = first;
    damaged[at] ^= 4;
    ASSERT_EQ(OriginOf(dirty, EntryLog(hive.before, {damaged, second})), HiveOrigin::DirtyUnusedLogs) << "byte " << at;
  }
}

TEST(Marvin, HashesAsPublished) {
  constexpr std::uint64_t kSeed = 0x004FB61A001BDBCC;
  EXPECT_EQ(Marvin32(kSeed, Bytes{}), 0x30ED35C100CD3C7DU);
  EXPECT_EQ(Marvin32(kSeed, Bytes{0xAF}), 0x48E73FC77D75DDC1U);
  EXPECT_EQ(Marvin32(kSeed, (Bytes{0x37, 0xF4, 0x95})), 0xF0B07C789B8CF7E8U);
}

}  // namespace
}  // namespace quillbox
