// What can be read of a damaged hive: all that is not damaged, as a hive that passes the check.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "registry/hive_tools.h"
#include "text/error.h"

namespace quillbox {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Change = std::function<void(Bytes&)>;

bool IsWhole(const Bytes& file) {
  try {
    (void)Hive::Load(file, "whole");
    return true;
  } catch (const Error&) {
    return false;
  }
}

/// What can be read of `file`, which must pass the check when it is written; nothing when it has no tree. A file that
/// passes the check as it is must not lose a thing.
std::optional<Hive> Salvage(const Bytes& file) {
  try {
    Hive hive = Hive::Load(file, "damaged.dat", {}, DamagedParts::LeaveOut);
    EXPECT_EQ(hive.Damage().empty(), IsWhole(file));
    EXPECT_FALSE(hive.Changed());
    const std::vector<std::string> lines = Lines(hive, true);
    EXPECT_EQ(Lines(Hive::Load(hive.Image(kMonday), "written"), true), lines);
    return hive;
  } catch (const Error& error) {
    EXPECT_FALSE(IsWhole(file)) << Describe(error);
    return std::nullopt;
  }
}

/// The file with a page behind its bins that is not a bin. It cannot be opened, and nothing of it is lost.
Bytes WithBadPage(Bytes file) {
  SetBase(file, BaseField::kBinsSize, static_cast<std::uint32_t>(file.size()));
  file.resize(file.size() + kHivePage);
  return file;
}

std::vector<std::string> Notes(const Hive& hive) {
  std::vector<std::string> notes;
  for (const HiveDamage& damage : hive.Damage()) notes.push_back(damage.part + ": " + damage.fault);
  return notes;
}

/// The lines of `all` that `some` does not have.
std::vector<std::string> Missing(std::vector<std::string> all, std::vector<std::string> some) {
  std::sort(all.begin(), all.end());
  std::sort(some.begin(), some.end());
  std::vector<std::string> missing;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(missing));
  return missing;
}

TEST(SalvagedHive, KeepsAKeyThatNamesAnotherParent) {
  Hive hive = EmptyHive(3);
  for (int number = 0; number < 5000; ++number) {
    hive.SetValue(hive.CreatePath(hive.Root(), "Software\\Identities\\" + std::to_string(number)), "Username", 1,
                  Pattern(12));
  }
  Bytes file = hive.Image(kMonday);
  const KeyCell key = CellOf(hive, "Software\\Identities\\2500");
  Put(file, key, KeyField::kParent, KeyCell(0x20));
  EXPECT_THROW((void)Hive::Load(file, "damaged.dat"), Error);
  const std::optional<Hive> salvaged = Salvage(file);
  ASSERT_TRUE(salvaged);
  EXPECT_EQ(Lines(*salvaged, true), Lines(hive, true));
  EXPECT_THAT(Notes(*salvaged), ElementsAre("Software\\Identities\\2500: its parent offset is wrong; corrected"));
  EXPECT_EQ(salvaged->Damage()[0].offset, 4096 + key.offset);
  EXPECT_EQ(salvaged->DamageCount(), 1U);
}

TEST(SalvagedHive, LeavesOutWhatIsDamagedAndNothingElse) {
  Hive hive = SmallHive();
  const Bytes good = hive.Image(kMonday);
  const KeyCell one = CellOf(hive, "One");
  const KeyCell two = CellOf(hive, "One\\Two");
  const KeyCell three = CellOf(hive, "One\\Three");
  const KeyCell deepest = CellOf(hive, "One\\Two\\\xD0\x96");
  const auto list = [](Bytes& file, KeyCell key) { return Get(file, key, KeyField::kSubkeyList); };
  const auto values = [&](Bytes& file) { return Get(file, deepest, KeyField::kValueList); };
  const auto text = [&](Bytes& file) { return Get(file, values(file), ValueEntry(0)); };
  const std::string path = "\\One\\Two\\\xD0\x96";
  const std::string textLine = ValueLine(path, {"text", 1, Pattern(20)});
  const std::string defaultLine = ValueLine(path, {"", 4, Pattern(4)});
  const std::vector<std::string> belowTwo = {"\\One\\Two", path, defaultLine, textLine};
  struct Case {
    std::vector<std::string> notes;
    std::vector<std::string> missing;
    Change apply;
  };
  const std::vector<Case> cases = {
      {{"One: the cell does not hold the key it should"}, belowTwo, [&](Bytes& file) { Record(file, two)[0] = 'x'; }},
      {{"One: the key's name reaches beyond its cell"},
       belowTwo,
       [&](Bytes& file) { Put(file, two, KeyField::kNameLength, 900); }},
      {{"One: the offset of its subkey leads to no cell in use"},
       {},
       [&](Bytes& file) { Put(file, list(file, one), LeafEntry(kHashLeafTag, 1), KeyCell()); }},
      {{"One: the key's number of subkeys is not that of its list"},
       {},
       [&](Bytes& file) { Put(file, one, KeyField::kSubkeyCount, 7); }},
      {{"One: the key's number of subkeys is not that of its list"},
       {},
       [&](Bytes& file) { Put(file, one, KeyField::kSubkeyCount, 0); }},
      {{"One: the list of subkeys reaches beyond its cell"},
       {},
       [&](Bytes& file) { Put(file, list(file, one), ListField::kCount, 900); }},
      {{"One: the cell does not hold the list of subkeys it should"},
       {},
       [&](Bytes& file) { Record(file, list(file, one))[1] = 0; }},
      {{"One\\Two\\\xD0\x96: the key's number of values is not that of its list"},
       {},
       [&](Bytes& file) { Put(file, deepest, KeyField::kValueCount, 0); }},
      {{"One\\Two\\\xD0\x96: the cell is too short for the list of values in it"},
       {},
       [&](Bytes& file) { Put(file, deepest, KeyField::kValueCount, 0x40000000); }},
      {{"One\\Two\\\xD0\x96 \"text\": the offset of its data leads to no cell in use"},
       {textLine},
       [&](Bytes& file) { Put(file, text(file), ValueField::kData, DataCell(4)); }},
      {{"One\\Two\\\xD0\x96 \"text\": the value's data reach beyond their cell"},
       {textLine},
       [&](Bytes& file) { Put(file, text(file), ValueField::kDataSize, 200); }},
      {{"One\\Two\\\xD0\x96 (Default): a value without a data cell has more than 4 bytes"},
       {defaultLine},
       [&](Bytes& file) { Put(file, Get(file, values(file), ValueEntry(1)), ValueField::kDataSize, kInlineData | 6); }},
      {{"One\\Three: the offset of its class name leads to no cell in use"},
       {},
       [&](Bytes& file) {
         Put(file, three, KeyField::kClassLength, 8);
         Put(file, three, KeyField::kClass, DataCell(12));
       }},
      {{"One\\Three: the offset of its security descriptor leads to no cell in use"},
       {},
       [&](Bytes& file) { Put(file, three, KeyField::kSecurity, SecurityCell(8)); }},
      {{"the file: the security descriptors are not linked back"},
       {},
       [&](Bytes& file) { Put(file, Get(file, one, KeyField::kSecurity), SecurityField::kPrevious, SecurityCell(8)); }},
      // Two that name one list: it is the key's that its entries name. `Two` is below `One`, and walked after it.
      {{"One\\Two: the cell of its list of subkeys belongs to another record already"},
       {},
       [&](Bytes& file) { Put(file, two, KeyField::kSubkeyList, list(file, one)); }},
      {{"One: the cell of its list of subkeys belongs to another record already"},
       {},
       [&](Bytes& file) { Put(file, one, KeyField::kSubkeyList, list(file, two)); }},
  };
  for (const Case& damage : cases) {
    Bytes file = good;
    damage.apply(file);
    SCOPED_TRACE(damage.notes[0]);
    const std::optional<Hive> salvaged = Salvage(file);
    ASSERT_TRUE(salvaged);
    EXPECT_EQ(Notes(*salvaged), damage.notes);
    std::vector<std::string> missing = damage.missing;
    std::sort(missing.begin(), missing.end());
    EXPECT_EQ(Missing(Lines(hive), Lines(*salvaged)), missing);
    EXPECT_THAT(Missing(Lines(*salvaged), Lines(hive)), IsEmpty());
  }
}

TEST(SalvagedHive, AListGoesToTheKeyThatItsEntriesName) {
  Hive hive = EmptyHive(5);
  for (const char* path : {"A", "B\\x", "B\\y"}) hive.SetValue(hive.CreatePath(hive.Root(), path), "v", 3, Pattern(9));
  Bytes file = hive.Image(kMonday);
  const KeyCell a = CellOf(hive, "A");
  const KeyCell b = CellOf(hive, "B");
  Bytes stolenList = file;
  Put(stolenList, a, KeyField::kSubkeyCount, 2);
  Put(stolenList, a, KeyField::kSubkeyList, Get(file, b, KeyField::kSubkeyList));
  std::optional<Hive> salvaged = Salvage(stolenList);
  ASSERT_TRUE(salvaged);
  EXPECT_EQ(Lines(*salvaged, true), Lines(hive, true));
  EXPECT_THAT(Notes(*salvaged), ElementsAre("A: the cell of its list of subkeys belongs to another record already"));

  Bytes stolenKey = file;
  const ListCell rootList = Get(file, RootCell(hive), KeyField::kSubkeyList);
  Put(stolenKey, rootList, LeafEntry(kHashLeafTag, 0), CellOf(hive, "B\\x"));
  salvaged = Salvage(stolenKey);
  ASSERT_TRUE(salvaged);
  EXPECT_THAT(Missing(Lines(hive), Lines(*salvaged)), ElementsAre("\\A", ValueLine("\\A", {"v", 3, Pattern(9)})));
  EXPECT_THAT(Notes(*salvaged), ElementsAre("the root key: the cell of its subkey belongs to another record already"));
}

TEST(SalvagedHive, NeedsARootAndAKnownForm) {
  const Bytes good = SmallHive().Image(kMonday);
  const std::vector<Change> changes = {
      [](Bytes& file) { file[0] = 'R'; },
      [](Bytes& file) { file.resize(4000); },
      [](Bytes& file) { file.resize(4096); },
      [](Bytes& file) { SetBase(file, BaseField::kMinor, 2); },
      [](Bytes& file) { SetBase(file, BaseField::kType, 1); },
      [](Bytes& file) { SetBase(file, BaseField::kRoot, 0xFFFFFFFF); },
      [](Bytes& file) { Record(file, Cell(Load32(file.data() + BaseField::kRoot)))[0] = 'x'; },
  };
  for (const Change& change : changes) {
    Bytes file = good;
    change(file);
    EXPECT_FALSE(Salvage(file));
  }
}

/// The cells of a file whose bins are whole, in use or free.
std::set<std::size_t> Cells(const Bytes& file) {
  std::set<std::size_t> cells;
  for (std::size_t bin = kHivePage; bin < file.size(); bin += Load32(file.data() + bin + BinField::kSize)) {
    for (std::size_t cell = bin + kBinHeader; cell < bin + Load32(file.data() + bin + BinField::kSize);) {
      cells.insert(cell);
      const auto size = static_cast<std::int32_t>(Load32(file.data() + cell));
      cell += static_cast<std::size_t>(std::abs(size));
    }
  }
  return cells;
}

TEST(SalvagedHive, AnyByteOfOneTreeChangedCostsNothingOfTheOther) {
  for (const std::uint32_t minor : {3U, 5U}) {
    Hive hive = EmptyHive(minor);
    hive.CreatePath(hive.Root(), "A");
    const auto fill = [&](const std::string& path) {
      for (const char* name : {"\\one", "\\two", "\\two\\three"}) {
        hive.SetValue(hive.CreatePath(hive.Root(), path + name), "text", 1, Pattern(30));
        hive.SetValue(hive.CreatePath(hive.Root(), path + name), "", 4, Pattern(4));
      }
    };
    fill("B");
    const std::set<std::size_t> before = Cells(hive.Image(kMonday));
    fill("A");
    const Bytes middle = hive.Image(kMonday);
    const std::set<std::size_t> after = Cells(middle);
    fill("B\\more");
    const Bytes good = hive.Image(kMonday);
    const std::vector<std::string> others = Lines(hive, *hive.Find(hive.Root(), "B"), true);
    for (auto cell = after.begin(); cell != std::prev(after.end()); ++cell) {
      if (before.contains(*cell)) continue;
      for (std::size_t at = *cell; at < *std::next(cell); ++at) {
        for (const unsigned flip : {0x08U, 0x80U}) {
          Bytes file = good;
          file[at] = static_cast<std::uint8_t>(file[at] ^ flip);
          const std::optional<Hive> salvaged = Salvage(file);
          ASSERT_TRUE(salvaged) << "byte " << at;
          const auto b = salvaged->Find(salvaged->Root(), "B");
          ASSERT_TRUE(b) << "byte " << at;
          ASSERT_EQ(Lines(*salvaged, *b, true), others)
              << "byte " << at << " of the cell " << *cell << " flip " << flip;
        }
      }
    }
  }
}

TEST(SalvagedHive, PassesTheCheckWithAnyByteChangedAndCutAnywhere) {
  Hive hive = SmallHive();
  const Bytes file = hive.Image(kMonday);
  const std::vector<std::string> all = Lines(hive);
  for (std::size_t at = 0; at < file.size(); at += file[at] == 0 ? 4 : 1) {
    Bytes damaged = file;
    damaged[at] = static_cast<std::uint8_t>(damaged[at] ^ (at % 2 == 0 ? 0xFFU : 0x01U));
    (void)Salvage(damaged);
    if (HasFailure()) FAIL() << "byte " << at;
  }
  std::size_t most = 0;
  for (std::size_t size = 0; size < file.size(); ++size) {
    const std::optional<Hive> salvaged = Salvage(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
    if (!salvaged) continue;
    ASSERT_THAT(Missing(Lines(*salvaged), all), IsEmpty()) << "cut at " << size;
    ASSERT_GE(Lines(*salvaged).size(), most) << "cut at " << size;
    most = Lines(*salvaged).size();
  }
  EXPECT_EQ(most, all.size());
  const std::optional<Hive> shorter = Salvage(Bytes(file.begin(), file.end() - 8));
  ASSERT_TRUE(shorter);
  EXPECT_THAT(Notes(*shorter)[0], HasSubstr("the file: the file ends here and should be 8192 bytes long"));
}

TEST(SalvagedHive, LosesNoMoreThanTheKeysOfALostSector) {
  Hive hive = LargeHive();
  const Bytes file = hive.Image(kMonday);
  const std::vector<std::string> all = Lines(hive);
  std::mt19937 random(9);
  for (std::size_t sector = kHivePage; sector < file.size(); sector += 2 * kSector) {
    Bytes damaged = file;
    const bool isZero = random() % 2 == 0;
    for (std::size_t at = sector; at < sector + kSector; ++at) {
      damaged[at] = isZero ? std::uint8_t{0} : static_cast<std::uint8_t>(random());
    }
    const std::optional<Hive> salvaged = Salvage(damaged);
    ASSERT_FALSE(HasFailure()) << "sector at " << sector;
    const bool hasParent = salvaged && salvaged->Find(salvaged->Root(), "Many");
    // No more than eight keys of that size have a byte in one sector. The first page holds all that leads to them.
    if (hasParent) {
      EXPECT_LE(Missing(all, Lines(*salvaged)).size(), 8U) << "sector at " << sector;
    } else {
      EXPECT_LT(sector, 2 * kHivePage);
    }
  }
}

TEST(SalvagedHive, KeepsFewNotesOfManyFaults) {
  constexpr std::uint32_t kFaults = 200000;
  Hive hive = EmptyHive(3);
  hive.SetValue(hive.Root(), "kept", 3, Pattern(50));
  hive.SetValue(hive.Root(), "list", 3, Bytes((kFaults + 1) * 4, 0xFF));
  Bytes file = hive.Image(kMonday);
  const ValueListCell list = Get(file, RootCell(hive), KeyField::kValueList);
  const ValueListCell larger(Get(file, Get(file, list, ValueEntry(1)), ValueField::kData));
  Put(file, larger, ValueEntry(0), Get(file, list, ValueEntry(0)));
  Put(file, RootCell(hive), KeyField::kValueList, larger);
  Put(file, RootCell(hive), KeyField::kValueCount, kFaults + 1);
  const std::optional<Hive> salvaged = Salvage(file);
  ASSERT_TRUE(salvaged);
  EXPECT_EQ(salvaged->ValueCount(salvaged->Root()), 1U);
  EXPECT_EQ(salvaged->DamageCount(), kFaults);
  EXPECT_EQ(salvaged->Damage().size(), 1000U);
}

TEST(SalvagedHive, HoldsAllOfAHiveWithOneBadPage) {
  for (const std::uint32_t minor : {3U, 4U, 5U, 6U}) {
    Hive hive = EmptyHive(minor);
    for (int number = 0; number < 1200; ++number) hive.CreatePath(hive.Root(), "Many\\" + std::to_string(number));
    for (const std::size_t size : {0U, 4U, 5U, 16344U, 16345U, 50000U}) {
      hive.SetValue(hive.Root(), "value " + std::to_string(size), 3, Pattern(size));
    }
    Bytes file = hive.Image(kMonday);
    MakePlain(file, Get(file, RootCell(hive), KeyField::kSubkeyList));
    const std::optional<Hive> salvaged = Salvage(WithBadPage(file));
    ASSERT_TRUE(salvaged);
    EXPECT_EQ(Lines(*salvaged, true), Lines(hive, true));
    EXPECT_THAT(Notes(*salvaged), ElementsAre("the file: there is no bin header (\"hbin\")"));
  }
}

TEST(SalvagedHive, EqualNamesKeepTheirOrder) {
  Hive hive = EmptyHive(3);
  for (const char* name : {"name a", "name b", "other"}) {
    hive.SetValue(hive.CreatePath(hive.Root(), name), "v", 1, Utf16Bytes(ToUtf16(name)));
  }
  Bytes file = hive.Image(kMonday);
  Record(file, CellOf(hive, "name b"))[KeyField::kName + 5] = 'a';
  const Hive strict = Hive::Load(file, "equal names");
  const std::optional<Hive> salvaged = Salvage(WithBadPage(file));
  ASSERT_TRUE(salvaged);
  EXPECT_EQ(Lines(*salvaged), Lines(strict));
  EXPECT_EQ(salvaged->Value(*salvaged->Find(salvaged->Root(), "name a"), "v")->data, Utf16Bytes(u"name a"));
}

}  // namespace
}  // namespace quillbox
