// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_log.h"

#include <limits>

#include "registry/hive_log_tools.h"
#include "support/matchers.h"

namespace quillbox {
namespace {

TEST(Marvin, HashesAsPublishedAndAsInLogsOfWindows) {
  constexpr std::uint64_t kPublishedSeed = 0x004FB61A001BDBCC;
  const struct {
    std::uint64_t seed;
    Bytes data;
    std::uint64_t hash;
  } known[] = {{kPublishedSeed, {}, 0x30ED35C100CD3C7D},
               {kPublishedSeed, {0xAF}, 0x48E73FC77D75DDC1},
               {kPublishedSeed, {0x37, 0xF4, 0x95}, 0xF0B07C789B8CF7E8},
               {kLogHashSeed, {'a', 'b', 'c'}, 0xb9cf3dfca41914f7},
               {kLogHashSeed, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, 0xe6b80bbf041cd42b}};
  for (const auto& [seed, data, hash] : known) EXPECT_EQ(Marvin32(seed, data), hash);
}

/// The hive after `step` changes: so many keys. The bins of step 2 are larger than those of the others.
Bytes Image(std::size_t step) {
  Hive hive = EmptyHive(5);
  for (std::size_t number = 0; number < step; ++number) hive.CreateSubkey(hive.Root(), std::to_string(number));
  if (step == 2) hive.SetValue(hive.Root(), "big", 3, Pattern(20000));
  return hive.Image(kMonday);
}

std::size_t StepOf(const Hive& hive) {
  return hive.SubkeyCount(hive.Root());
}

/// A hive that a system which stopped has left: whole, so that it opens without its logs too.
Bytes Dirty(Bytes image, std::uint32_t written = 7) {
  SetBase(image, BaseField::kSequence1, written + 1);
  SetBase(image, BaseField::kSequence2, written);
  return image;
}

Bytes WithBadChecksum(Bytes file) {
  file[BaseField::kRoot] ^= 0x40;
  return file;
}

/// The entry that makes the hive that of a step.
template <std::size_t Step>
Bytes StepEntry(std::uint32_t sequence) {
  const Bytes image = Image(Step);
  return MakeLogEntry(sequence, image.size() - kHivePage, {{0, ByteView(image).subspan(kHivePage)}});
}

Bytes LogFrom(std::uint32_t begin, const std::vector<Bytes>& entries) {
  return MakeEntryLog(Image(0), begin, entries);
}

/// Loads `file` with logs named log 0, log 1, ...
Hive LoadWith(const Bytes& file, const std::vector<Bytes>& logs) {
  return Hive::Load(file, "dirty", [&] {
    std::vector<HiveLogFile> files;
    files.reserve(logs.size());
    for (const Bytes& log : logs) files.push_back({"log " + std::to_string(files.size()), log, {}});
    return files;
  });
}

/// Why `log` is not used for `file`; for one that is, or counts as none, what became of the hive.
std::string Refusal(const Bytes& file, const Bytes& log) {
  const Hive hive = LoadWith(file, {log});
  if (hive.Origin() == HiveOrigin::Recovered) return "recovered";
  EXPECT_EQ(hive.Origin() == HiveOrigin::DirtyNoLog, hive.UnusedLogs().empty());
  return hive.UnusedLogs().empty() ? "no log" : hive.UnusedLogs().at(0).why;
}

template <typename Change>
Bytes Changed(Bytes file, Change change) {
  change(file);
  return file;
}

TEST(HiveLog, OfSectorsBringsAHiveUpToDate) {
  for (const auto& [from, to] : {std::pair(1U, 2U), {2U, 3U}, {3U, 4U}}) {  // larger, smaller and equal bins
    for (const std::uint32_t cluster : {1U, 8U}) {
      const Bytes log = MakeSectorLog(Image(from), Image(to), cluster);
      Hive hive = LoadWith(Dirty(Image(from)), {Bytes(), log});
      EXPECT_EQ(StepOf(hive), to);
      EXPECT_EQ(hive.Origin(), HiveOrigin::Recovered);
      EXPECT_TRUE(hive.Changed());
      EXPECT_THAT(hive.AppliedLogs(), ElementsAre("log 1"));
      const Bytes written = hive.Image(kTuesday);
      EXPECT_EQ(written.size(), Image(to).size());
      EXPECT_EQ(LoadWith(written, {log}).Origin(), HiveOrigin::Clean);
    }
  }
}

TEST(HiveLog, OfSectorsRestoresABaseBlockByEitherTime) {
  const Bytes log = MakeSectorLog(Image(1), Image(2));
  const Bytes noBase = WithBadChecksum(Dirty(Image(1)));
  const auto otherTime = [](std::size_t at) { return [at](Bytes& file) { Store64(&file[at], kTuesday); }; };
  const Bytes byBin = Changed(noBase, otherTime(BaseField::kTime));
  const Bytes byBase = Changed(noBase, otherTime(kHivePage + BinField::kTime));
  EXPECT_EQ(StepOf(LoadWith(byBin, {log})), 2U);
  EXPECT_EQ(StepOf(LoadWith(byBase, {log})), 2U);
  const Bytes foreign = Changed(byBase, otherTime(BaseField::kTime));
  EXPECT_THROW(LoadWith(foreign, {log}), Error);
  Bytes wiped = noBase;
  std::fill(wiped.begin(), wiped.begin() + 2 * kHivePage, std::uint8_t{0});
  const Bytes timeless = Changed(log, [](Bytes& file) {
    Store64(&file[BaseField::kTime], 0);
    SetBase(file, BaseField::kType, 1);
  });
  EXPECT_THROW(LoadWith(wiped, {timeless}), Error) << "the time of a wiped block proves nothing";
}

TEST(HiveLog, SaysWhyItIsNotUsed) {
  const Bytes dirty = Dirty(Image(0));
  const Bytes sectors = MakeSectorLog(Image(0), Image(3));
  const Bytes entries = LogFrom(7, {StepEntry<3>(7)});
  const auto base = [](std::size_t field, std::uint32_t number) {
    return [=](Bytes& log) { SetBase(log, field, number); };
  };
  const auto cut = [](std::size_t size) { return [=](Bytes& log) { log.resize(size); }; };
  const auto entry = [](std::size_t field, std::uint32_t number) {
    return [=](Bytes& log) {
      Bytes changed(log.begin() + kSector, log.end());
      Store32(&changed[field], number);
      PutHashes(changed);
      std::copy(changed.begin(), changed.end(), log.begin() + kSector);
    };
  };
  const Bytes tooLong = Changed(MakeLogEntry(7, 8192, {{0, Bytes(4096)}}), [](Bytes& bytes) {
    Store32(&bytes[44], 8192);
    PutHashes(bytes);
  });
  const struct {
    Bytes log;
    const char* why;
  } cases[] = {
      {{}, "no log"},
      {Bytes(9000), "no log"},
      {{'M', 'Z', 0, 0}, "it does not begin with \"regf\""},
      {Changed(sectors, cut(200)), "it ends at byte 200, within its base block"},
      {Changed(sectors, [](Bytes& log) { log[100] ^= 1; }), "the checksum of its base block is wrong"},
      {Image(3), "it is a hive and not a hive's log"},
      {Changed(sectors, base(BaseField::kType, 5)), "unknown type 5"},
      {Changed(sectors, base(BaseField::kSequence1, 99)), "it was not closed itself"},
      {Changed(sectors, base(BaseField::kTime, 1)), "its time is not the hive's"},
      {Changed(sectors, base(BaseField::kCluster, 0)), "0 sectors long"},
      {Changed(sectors, base(BaseField::kCluster, 0x80000000)), "2147483648 sectors long"},
      {Changed(sectors, base(BaseField::kBinsSize, 5000)), "5000 bytes, is wrong"},
      {Changed(sectors, base(BaseField::kBinsSize, 0x7FFFF000)), "within its map"},
      {Changed(sectors, [](Bytes& log) { log[kSector] = 'X'; }), "no map of sectors"},
      {Changed(sectors, cut(sectors.size() - 1)), "and should be"},
      {Changed(entries, base(BaseField::kSequence1, 6)), "its first entry has the number 7 and its base block names 6"},
      {LogFrom(7, {}), "its first entry is missing"},
      {Changed(entries, cut(entries.size() - kSector)), "its first entry reaches beyond its end"},
      {Changed(entries, [](Bytes& log) { log.back() ^= 1; }), "its first entry has a wrong hash"},
      {Changed(entries, entry(16, 5000)), "a wrong size of the bins"},
      {Changed(entries, entry(16, 0x7FFFF000)), "far more than it and the hive hold"},
      {Changed(entries, entry(20, 0xFFFFFFFF)), "more pages than it can hold"},
      {Changed(entries, entry(40, 0xFFFFF000)), "a page beyond the end of the bins"},
      {LogFrom(7, {tooLong}), "larger pages than it can hold"},
      {LogFrom(7, {MakeLogEntry(7, 0x100000, {}), StepEntry<3>(8)}), "recovered"},
      {LogFrom(6, {StepEntry<3>(6)}), "its entries begin at 6 and the hive needs those from 7 on"},
      {LogFrom(7, {MakeLogEntry(7, 4096, {{0, Bytes(100, 'x')}})}),
       "not a whole hive: dirty, offset 0x1000: there is no bin header"},
  };
  for (const auto& [log, why] : cases) EXPECT_THAT(Refusal(dirty, log), HasSubstr(why));
}

TEST(HiveLog, IsRefusedWhenCutOrChangedAnywhere) {
  const Bytes dirty = Dirty(Image(0));
  for (const Bytes& log : {MakeSectorLog(Image(0), Image(3)), LogFrom(7, {StepEntry<3>(7)})}) {
    ASSERT_EQ(Refusal(dirty, log), "recovered");
    for (std::size_t size = 1; size < log.size(); ++size) {
      const std::string why = Refusal(dirty, Bytes(log.begin(), log.begin() + static_cast<std::ptrdiff_t>(size)));
      ASSERT_THAT(why, HasSubstr("it")) << "cut at " << size;
      ASSERT_NE(why, "recovered") << "cut at " << size;
    }
  }
  const Bytes log = LogFrom(7, {StepEntry<3>(7)});
  for (std::size_t at = 0; at < log.size(); ++at) {
    ASSERT_NE(Refusal(dirty, Changed(log, [&](Bytes& bytes) { bytes[at] ^= 4; })), "recovered") << "byte " << at;
  }
}

TEST(HiveLog, OfEntriesIsAppliedFromItsOwnNumberAsFarAsItGoes) {
  struct Given {
    std::uint32_t begin;
    std::vector<Bytes> entries;
  };
  constexpr std::uint32_t kMax = std::numeric_limits<std::uint32_t>::max();
  const Bytes badHash = Changed(StepEntry<2>(8), [](Bytes& entry) { entry[60] ^= 1; });
  const Bytes badSize = MakeLogEntry(8, 5000, {});
  const struct {
    const char* what;
    std::uint32_t written;
    std::vector<Given> logs;
    std::size_t step;
    std::vector<std::string> applied;
  } cases[] = {
      {"its own number", 7, {{7, {StepEntry<1>(7)}}}, 1, {"log 0"}},
      {"a hive that lags", 2, {{402, {StepEntry<1>(402), StepEntry<2>(403), StepEntry<3>(404)}}}, 3, {"log 0"}},
      {"entries of an earlier round behind the last", 7, {{7, {StepEntry<1>(7), StepEntry<4>(5)}}}, 1, {"log 0"}},
      {"a gap", 7, {{7, {StepEntry<1>(7), StepEntry<4>(9)}}}, 1, {"log 0"}},
      {"a bad hash", 7, {{7, {StepEntry<1>(7), badHash, StepEntry<4>(9)}}}, 1, {"log 0"}},
      {"a bad size", 7, {{7, {StepEntry<1>(7), badSize, StepEntry<4>(9)}}}, 1, {"log 0"}},
      {"number 0 after the last", kMax, {{kMax, {StepEntry<1>(kMax), StepEntry<3>(0)}}}, 3, {"log 0"}},
      {"in order", 7, {{7, {StepEntry<1>(7)}}, {8, {StepEntry<4>(8)}}}, 4, {"log 0", "log 1"}},
      {"swapped", 7, {{8, {StepEntry<4>(8)}}, {7, {StepEntry<1>(7)}}}, 4, {"log 1", "log 0"}},
      {"swapped at the last number", 7, {{0, {StepEntry<4>(0)}}, {kMax, {StepEntry<1>(kMax)}}}, 4, {"log 1", "log 0"}},
      {"one too old", 7, {{6, {StepEntry<5>(6)}}, {7, {StepEntry<1>(7)}}}, 1, {"log 1"}},
      {"none between", 7, {{7, {StepEntry<1>(7)}}, {9, {StepEntry<5>(9)}}}, 1, {"log 0"}},
      {"one damaged", 7, {{7, {StepEntry<1>(7), badHash}}, {9, {StepEntry<5>(9)}}}, 1, {"log 0"}},
  };
  for (const auto& [what, written, given, step, applied] : cases) {
    SCOPED_TRACE(what);
    std::vector<Bytes> logs;
    logs.reserve(given.size());
    for (const Given& log : given) logs.push_back(LogFrom(log.begin, log.entries));
    const Hive hive = LoadWith(Dirty(Image(0), written), logs);
    EXPECT_EQ(hive.Origin(), HiveOrigin::Recovered);
    EXPECT_EQ(StepOf(hive), step);
    EXPECT_EQ(hive.AppliedLogs(), applied);
    EXPECT_TRUE(hive.UnusedLogs().empty());
  }
}

TEST(HiveLog, OfEntriesMayWriteAnyPagesOfTheBins) {
  const Bytes after = Image(2);
  const ByteView bins = ByteView(after).subspan(kHivePage);
  const Bytes junk(kHivePage, 0xEE);
  const Bytes first = MakeLogEntry(7, bins.size(), {{4096, junk}, {0, bins.first(4096)}});
  const Bytes second = MakeLogEntry(8, bins.size(), {{8192, bins.subspan(8192)}, {4096, bins.subspan(4096, 4096)}});
  const Hive hive = LoadWith(Dirty(Image(0)), {LogFrom(7, {first, second})});
  EXPECT_EQ(Lines(hive, true), Lines(Hive::Load(after, "after"), true));
}

TEST(HiveLog, WithTheLatestEntriesRestoresABaseBlockAlone) {
  const Bytes noBase = WithBadChecksum(Dirty(Image(0)));
  const Bytes earlier = LogFrom(400, {StepEntry<1>(400), StepEntry<3>(401)});
  const Bytes later = LogFrom(402, {StepEntry<2>(402), StepEntry<4>(403)});
  Hive hive = LoadWith(noBase, {later, earlier});
  EXPECT_EQ(StepOf(hive), 4U);
  EXPECT_EQ(Load32(&hive.Image(kTuesday)[BaseField::kSequence1]), 404U) << "the number behind the last entry's";
  EXPECT_THAT(hive.AppliedLogs(), ElementsAre("log 0"));
}

TEST(HiveLog, IsNotAppliedToAHiveThatIsCutOffUnlessItHasTheRest) {
  const Bytes whole = Image(2);
  const Bytes cut(whole.begin(), whole.end() - 3 * kHivePage - 100);
  const ByteView bins = ByteView(whole).subspan(kHivePage);
  const auto from = static_cast<std::uint32_t>(bins.size() - 4 * kHivePage);
  const Bytes holds = LogFrom(7, {MakeLogEntry(7, bins.size(), {{from, bins.subspan(from)}})});
  EXPECT_EQ(Lines(LoadWith(Dirty(cut), {holds}), true), Lines(Hive::Load(whole, "whole"), true));
  // The gap, of 100 bytes, is in the data of a value, where nothing but its zeros would show it.
  const Bytes lacks = LogFrom(7, {MakeLogEntry(7, bins.size(), {{from + 4096, bins.subspan(from + 4096)}})});
  EXPECT_THAT(FaultOf([&] {
                LoadWith(Dirty(cut), {Bytes(), lacks});
              }),
              AllOf(HasSubstr("should be"),
                    HasSubstr("log 0 was not used: it is empty; log 1 was not used: the hive's file ends")));
}

TEST(HiveLog, ThatGivesNoWholeHiveMakesWayForTheNext) {
  const Bytes broken = LogFrom(7, {MakeLogEntry(7, 4096, {{0, Bytes(100, 'x')}})});
  const Hive hive = LoadWith(Dirty(Image(0)), {MakeSectorLog(Image(0), Image(3)), broken});
  EXPECT_EQ(StepOf(hive), 3U);
  EXPECT_THAT(hive.AppliedLogs(), ElementsAre("log 0"));
}

}  // namespace
}  // namespace quillbox
