// SPDX-License-Identifier: GPL-3.0-or-later
// Hives with damage: refused as a whole, with place and reason, and salvaged, with all that is not damaged as a hive
// that passes the check.

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>

#include "registry/hive_tools.h"
#include "support/matchers.h"

namespace quillbox {
namespace {

using Change = std::function<void(Bytes&)>;

/// What the hive is refused for, or an empty text when it is opened. An opened one must be whole: all of it can be
/// read, changed and written, and what was written opens again.
std::string Refusal(const Bytes& file) {
  try {
    Hive hive = Hive::Load(file, "damaged.dat");
    const std::vector<std::string> lines = Lines(hive, true);
    for (const HiveKey key : hive.Subkeys(hive.Root())) hive.SetValue(key, "TEXT", 1, Pattern(90));
    for (int number = 0; number < 4; ++number) {
      hive.CreatePath(hive.Root(), "New\\" + std::to_string(number));
    }
    Hive again = Hive::Load(hive.Image(kMonday), "written");
    EXPECT_EQ(Lines(again, true), Lines(hive, true));
    const Hive saved = hive.SaveSubtree(hive.Root(), kMonday);
    for (const HiveKey key : hive.Subkeys(hive.Root())) hive.DeleteTree(key);
    hive.ReplaceSubtree(hive.Root(), saved);
    (void)Hive::Load(hive.Image(kMonday), "written");
    return {};
  } catch (const Error& error) {
    return Describe(error);
  }
}

/// What can be read of `file`, which must pass the check when it is written; nothing when it has no tree. A file that
/// passes the check as it is must not lose a thing, and one that does not is refused with a place.
std::optional<Hive> Salvage(const Bytes& file) {
  const std::string refusal = Refusal(file);
  EXPECT_THAT(refusal, AnyOf(IsEmpty(), HasSubstr("damaged.dat, offset 0x")));
  try {
    Hive hive = Hive::Load(file, "damaged.dat", {}, DamagedParts::LeaveOut);
    EXPECT_EQ(hive.Damage().empty(), refusal.empty());
    EXPECT_FALSE(hive.Changed());
    const std::vector<std::string> lines = Lines(hive, true);
    EXPECT_EQ(Lines(Hive::Load(hive.Image(kMonday), "written"), true), lines);
    return hive;
  } catch (const Error& error) {
    EXPECT_NE(refusal, "") << Describe(error);
    return std::nullopt;
  }
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

template <typename Kind, typename T>
Change Putting(std::type_identity_t<Kind> cell, RecordField<Kind, T> field, std::type_identity_t<T> content) {
  return [=](Bytes& file) { Put(file, cell, field, content); };
}
Change Byte(Cell cell, std::size_t at, char byte) {
  return [=](Bytes& file) { Record(file, cell)[at] = static_cast<std::uint8_t>(byte); };
}
Change Base(std::size_t field, std::uint32_t number) {
  return [=](Bytes& file) { SetBase(file, field, number); };
}

std::string Place(const HiveDamage& damage) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "offset 0x%llx", static_cast<unsigned long long>(damage.offset));
  return text.data();
}

TEST(DamagedHive, OfNoKnownFormIsRefused) {
  struct Fault {
    std::string refusal;
    Change apply;
    bool hasTree = false;
  };
  const Cell root(Load32(&SmallHive().Image(kMonday)[BaseField::kRoot]));
  const std::vector<Fault> faults = {
      {"offset 0x0: it does not begin with \"regf\"", [](Bytes& file) { file[0] = 'R'; }},
      {"offset 0xfa0: the file ends here", [](Bytes& file) { file.resize(4000); }},
      {"offset 0x1000: the file ends here", [](Bytes& file) { file.resize(4096); }},
      {"offset 0x14: its format is version 1.2", Base(BaseField::kMinor, 2)},
      {"offset 0x14: its format is version 2.5", Base(BaseField::kMajor, 2)},
      {"offset 0x1c: it is a hive's log", Base(BaseField::kType, 1)},
      {"offset 0x90: it holds only the differences",
       [](Bytes& file) {
         SetBase(file, BaseField::kMinor, 6);
         SetBase(file, BaseField::kFlags, 2);
       }},
      {"the root key's offset", Base(BaseField::kRoot, 0x7FFFFFF8)},
      {"the root key's offset", Base(BaseField::kRoot, 0xFFFFFFFF)},
      {"the cell does not hold the key it should", Byte(root, 0, 'x')},
      {"offset 0x28: the size of its bins, 100 bytes", Base(BaseField::kBinsSize, 100), true},
      {"offset 0x1000: there is no bin header", [](Bytes& file) { file[kHivePage] = 'x'; }, true},
  };
  for (const Fault& fault : faults) {
    Bytes file = SmallHive().Image(kMonday);
    fault.apply(file);
    EXPECT_THAT(Refusal(file), HasSubstr(fault.refusal));
    EXPECT_EQ(Salvage(file).has_value(), fault.hasTree) << fault.refusal;
  }
}

TEST(DamagedHive, IsRefusedWithItsFaultAndLosesNothingElse) {
  Hive hive = SmallHive();
  Bytes good = hive.Image(kMonday);
  const std::string deepPath = "One\\Two\\\xD0\x96", textPart = deepPath + " \"text\"";
  const KeyCell one = CellOf(hive, "One");
  const KeyCell two = CellOf(hive, "One\\Two");
  const KeyCell three = CellOf(hive, "One\\Three");
  const KeyCell deep = CellOf(hive, deepPath);
  const ListCell list = Get(good, one, KeyField::kSubkeyList);
  const ListCell twosList = Get(good, two, KeyField::kSubkeyList);
  const ValueListCell values = Get(good, deep, KeyField::kValueList);
  const ValueCell text = Get(good, values, ValueEntry(0));
  const ValueCell unnamed = Get(good, values, ValueEntry(1));
  const SecurityCell security = Get(good, one, KeyField::kSecurity);
  const auto entry = [](std::size_t at) { return LeafEntry(kHashLeafTag, at); };
  const std::string textLine = ValueLine("\\" + deepPath, {"text", 1, Pattern(20)});
  const std::string unnamedLine = ValueLine("\\" + deepPath, {"", 4, Pattern(4)});
  const std::vector<std::string> belowTwo = {"\\One\\Two", "\\" + deepPath, unnamedLine, textLine};
  const std::string count = "the key's number of subkeys is not that of its list";
  const std::string owned = "the cell of its list of subkeys belongs to another record already";
  const std::string noCell = " leads to no cell in use";
  struct Fault {
    std::string refusal;
    std::string part;  ///< that it is noted of, or the whole note where it is another; not checked where empty
    Change apply;
    std::vector<std::string> missing = {};
  };
  const std::vector<Fault> faults = {
      // Two that name one list: it is the key's that its entries name. `Two` is below `One`, and walked after it.
      {"belongs to another record already", "One\\Two: " + owned, Putting(two, KeyField::kSubkeyList, list)},
      {"names another parent", "One: " + owned, Putting(one, KeyField::kSubkeyList, twosList)},
      {"belongs to another record already", "", Putting(twosList, entry(0), one)},
      {"the cell does not hold the key it should", "One", Byte(two, 0, 'x'), belowTwo},
      {"names another parent", "One\\Two: its parent offset is wrong; corrected", Putting(two, KeyField::kParent, two)},
      {"the offset of its subkey" + noCell, "One", Putting(list, entry(1), KeyCell())},
      {count, "One", Putting(one, KeyField::kSubkeyCount, 7)},
      {count, "One", Putting(one, KeyField::kSubkeyCount, 0)},
      {count, "",
       [&](Bytes& file) { StoreTag(Record(file, list), kLeafIndexTag), Put(file, list, ListField::kCount, 0); }},
      {"the list of subkeys is empty", "", Putting(list, ListField::kCount, 0)},
      {"the list of subkeys reaches beyond its cell", "One", Putting(list, ListField::kCount, 900)},
      {"the cell does not hold the list of subkeys it should", "One", Byte(list, 1, 0)},
      {"the key's number of values is not that of its list", deepPath, Putting(deep, KeyField::kValueCount, 0)},
      {"the cell is too short for the list of values in it", deepPath,
       Putting(deep, KeyField::kValueCount, 0x40000001)},
      {"the offset of its value" + noCell, deepPath, Putting(values, ValueEntry(0), ValueCell()), {textLine}},
      {"the offset of its data" + noCell, textPart, Putting(text, ValueField::kData, DataCell(4)), {textLine}},
      {"a value without a data cell has more than 4 bytes",
       deepPath + " (Default)",
       Putting(unnamed, ValueField::kDataSize, kInlineData | 5),
       {unnamedLine}},
      {"the value's data reach beyond their cell", textPart, Putting(text, ValueField::kDataSize, 16344), {textLine}},
      {"the cell does not hold the big data it should", "", Putting(text, ValueField::kDataSize, 16345)},
      {"the offset of its class name" + noCell, "One\\Three",
       [&](Bytes& file) {
         Put(file, three, KeyField::kClassLength, 2), Put(file, three, KeyField::kClass, DataCell(0xFFFFFFF8));
       }},
      {"the offset of its security descriptor" + noCell, "One\\Three",
       Putting(three, KeyField::kSecurity, SecurityCell(8))},
      {"the security descriptors are not linked back", "the file",
       Putting(security, SecurityField::kPrevious, SecurityCell(8))},
      {"the key's name is empty", "", Putting(two, KeyField::kNameLength, 0)},
      {"the key's name is empty", "", Putting(deep, KeyField::kNameLength, 1)},
      {"the key's name holds a backslash", "", Byte(two, KeyField::kName + 1, '\\')},
      {"the key's name reaches beyond its cell", "One", Putting(two, KeyField::kNameLength, 900), belowTwo},
  };
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.refusal);
    Bytes file = good;
    fault.apply(file);
    EXPECT_THAT(Refusal(file), HasSubstr(fault.refusal));
    const std::optional<Hive> salvaged = Salvage(file);
    ASSERT_TRUE(salvaged);
    EXPECT_THAT(Missing(Lines(*salvaged), Lines(hive)), IsEmpty());
    if (fault.part.empty()) continue;
    const bool isNote = fault.part.find(": ") != std::string::npos;
    EXPECT_THAT(Notes(*salvaged), ElementsAre(isNote ? fault.part : fault.part + ": " + fault.refusal));
    EXPECT_THAT(Refusal(file), HasSubstr(isNote ? "" : Place(salvaged->Damage()[0])));
    EXPECT_THAT(Missing(Lines(hive), Lines(*salvaged)), UnorderedElementsAreArray(fault.missing));
  }
}

TEST(DamagedHive, OfAnyFormKeepsWhatItHas) {
  constexpr std::size_t kFewOf = 16;  // of the many bytes that are zero
  constexpr std::array<unsigned, 3> kFlips = {0x01, 0x80, 0xFF};
  const Bytes file = SmallHive().Image(kMonday);
  const std::vector<std::string> all = Lines(SmallHive());
  std::size_t most = 0;
  for (std::size_t at = 0; at < file.size(); ++at) {
    if (at % kFewOf != 0 && file[at] == 0) continue;
    Bytes damaged = file;
    damaged[at] = static_cast<std::uint8_t>(damaged[at] ^ kFlips[at % kFlips.size()]);
    (void)Salvage(damaged);
    ASSERT_FALSE(HasFailure()) << "byte " << at;
  }
  for (std::size_t size = 0; size < file.size(); ++size) {
    const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
    ASSERT_NE(Refusal(cut), "") << "cut at " << size;
    const std::optional<Hive> salvaged = Salvage(cut);
    ASSERT_FALSE(HasFailure()) << "cut at " << size;
    if (!salvaged) continue;
    ASSERT_THAT(Missing(Lines(*salvaged), all), IsEmpty()) << "cut at " << size;
    ASSERT_GE(Lines(*salvaged).size(), most) << "cut at " << size;
    most = Lines(*salvaged).size();
    EXPECT_THAT(Notes(*salvaged)[0], HasSubstr("the file: the file ends here and should be 8192 bytes long"));
  }
  EXPECT_EQ(most, all.size());
  Bytes longer = file;
  longer.resize(file.size() + 700, 0xEE);
  EXPECT_EQ(Refusal(longer), "") << "what follows the last bin is no part of the hive";
}

TEST(SalvagedHive, AKeyGoesToTheListOfItsParent) {
  Hive hive = EmptyHive(5);
  for (const char* path : {"A", "B\\x", "B\\y"}) hive.SetValue(hive.CreatePath(hive.Root(), path), "v", 3, Pattern(9));
  Bytes file = hive.Image(kMonday);
  const ListCell rootList = Get(file, RootCell(hive), KeyField::kSubkeyList);
  Put(file, rootList, LeafEntry(kHashLeafTag, 0), CellOf(hive, "B\\x"));
  const std::optional<Hive> salvaged = Salvage(file);
  ASSERT_TRUE(salvaged);
  EXPECT_THAT(Missing(Lines(hive), Lines(*salvaged)), ElementsAre("\\A", ValueLine("\\A", {"v", 3, Pattern(9)})));
  EXPECT_THAT(Notes(*salvaged), ElementsAre("the root key: the cell of its subkey belongs to another record already"));
}

TEST(DamagedHive, NoEntryOfAListOfListsEndsIt) {
  Hive hive = LargeHive();
  Bytes file = hive.Image(kMonday);
  const ListCell index = Get(file, CellOf(hive, "Many"), KeyField::kSubkeyList);
  ASSERT_EQ(LoadTag(Record(file, index)), kLeafIndexTag);
  Put(file, index, IndexEntry(0), ListCell());
  EXPECT_THAT(Refusal(file), HasSubstr("leads to no cell in use"));
}

TEST(DamagedHive, IgnoresWhatIsNeverStored) {
  Hive hive = SmallHive();
  Bytes file = hive.Image(kMonday);
  for (const char* path : {"", "One", "One\\Two"}) {
    const KeyCell key = CellOf(hive, path);
    Put(file, key, KeyField::kVolatileCount, 7);
    Put(file, key, KeyField::kVolatileList, Get(file, CellOf(hive, "One"), KeyField::kSubkeyList));
  }
  Put(file, RootCell(hive), KeyField::kParent, CellOf(hive, "One\\Two"));
  EXPECT_EQ(Refusal(file), "");
  EXPECT_EQ(Lines(Hive::Load(file, "volatile")), Lines(hive));
}

TEST(DamagedHive, KeepsToTheDepthOfKeys) {
  Hive hive = EmptyHive(5);
  HiveKey deepest = hive.Root();
  for (std::size_t depth = 1; depth < 512; ++depth) deepest = hive.CreateSubkey(deepest, "d");
  const HiveKey other = hive.CreateSubkey(hive.Root(), "other");
  Bytes file = hive.Image(kMonday);
  EXPECT_EQ(Refusal(file), "");
  // The level 513: the deepest key gets the list of the root, with the other key alone in it.
  const ListCell list = Get(file, RootCell(hive), KeyField::kSubkeyList);
  Bytes deeper = file;
  Put(deeper, list, ListField::kCount, 1);
  Put(deeper, RootCell(hive), KeyField::kSubkeyCount, 1);
  Put(deeper, KeyCell(deepest.cell), KeyField::kSubkeyCount, 1);
  Put(deeper, KeyCell(deepest.cell), KeyField::kSubkeyList, ListCell(other.cell));
  EXPECT_THAT(Refusal(deeper), HasSubstr("nested too deeply"));
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
      return hive.Image(kMonday);
    };
    fill("B");
    // What A will take is not zero before, so that all bytes of A are those that its making changes.
    hive.SetValue(hive.Root(), "room", 3, Bytes(2000, 0xEE));
    hive.DeleteValue(hive.Root(), "room");
    const Bytes before = hive.Image(kMonday), after = fill("A"), good = fill("B\\more");
    const std::vector<std::string> others = Lines(hive, *hive.Find(hive.Root(), "B"), true);
    std::size_t tried = 0;
    for (std::size_t at = kHivePage; at < before.size(); ++at) {
      if (before[at] == after[at] || after[at] != good[at]) continue;
      ++tried;
      for (const unsigned flip : {0x08U, 0x80U}) {
        Bytes file = good;
        file[at] = static_cast<std::uint8_t>(file[at] ^ flip);
        const std::optional<Hive> salvaged = Salvage(file);
        ASSERT_TRUE(salvaged) << "byte " << at;
        const auto b = salvaged->Find(salvaged->Root(), "B");
        ASSERT_TRUE(b) << "byte " << at;
        ASSERT_EQ(Lines(*salvaged, *b, true), others) << "byte " << at << " flip " << flip;
      }
    }
    EXPECT_GT(tried, 500U);
  }
}

TEST(SalvagedHive, LosesNoMoreThanTheKeysOfALostSector) {
  Hive hive = LargeHive();
  const Bytes file = hive.Image(kMonday);
  std::mt19937 random(9);
  for (std::size_t sector = kHivePage; sector < file.size(); sector += 2 * kSector) {
    Bytes damaged = file;
    const bool isZero = random() % 2 == 0;
    std::generate_n(&damaged[sector], kSector, [&] { return static_cast<std::uint8_t>(isZero ? 0 : random()); });
    const std::optional<Hive> salvaged = Salvage(damaged);
    ASSERT_FALSE(HasFailure()) << "sector at " << sector;
    // No more than eight keys of that size have a byte in one sector. The first page holds all that leads to them.
    const bool hasParent = salvaged && salvaged->Find(salvaged->Root(), "Many");
    const std::size_t lost = hasParent ? Missing(Lines(hive), Lines(*salvaged)).size() : 0;
    EXPECT_TRUE(hasParent ? lost <= 8 : sector < 2 * kHivePage) << lost << " lost, sector at " << sector;
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
