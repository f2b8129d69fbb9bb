#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>

#include "registry/hive_tools.h"
#include "text/error.h"

namespace quillbox {
namespace {

using testing::HasSubstr;

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

TEST(DamagedHive, IsRefusedWhenCutAnywhere) {
  const Bytes file = SmallHive().Image(kMonday);
  for (std::size_t size = 0; size < file.size(); ++size) {
    const std::string refusal = Refusal(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
    ASSERT_THAT(refusal, HasSubstr("damaged.dat, offset 0x")) << "cut at " << size;
  }
  Bytes longer = file;
  longer.resize(file.size() + 700, 0xEE);
  EXPECT_EQ(Refusal(longer), "") << "what follows the last bin is no part of the hive";
}

TEST(DamagedHive, IsRefusedOrWholeWithAnyByteChanged) {
  constexpr std::size_t kFewOf = 16;  // of the many bytes that are zero
  const Bytes file = SmallHive().Image(kMonday);
  std::size_t refused = 0;
  for (std::size_t at = 0; at < file.size(); ++at) {
    if (at % kFewOf != 0 && file[at] == 0) continue;
    constexpr std::array<unsigned, 3> kFlips = {0x01, 0x80, 0xFF};
    Bytes damaged = file;
    damaged[at] = static_cast<std::uint8_t>(damaged[at] ^ kFlips[at % kFlips.size()]);
    const std::string refusal = Refusal(damaged);
    if (refusal.empty()) continue;
    ++refused;
    ASSERT_THAT(refusal, HasSubstr("damaged.dat, offset 0x")) << "byte " << at;
  }
  EXPECT_GT(refused, 100U);
}

TEST(DamagedHive, IsRefusedOrWholeWithBytesOfItsListsChanged) {
  const Bytes file = LargeHive().Image(kMonday);
  std::mt19937 random(5);
  std::vector<std::size_t> places;
  for (std::size_t at = kHivePage; at < file.size(); ++at) {
    if (file[at] != 0) places.push_back(at);
  }
  for (int round = 0; round < 120; ++round) {
    Bytes damaged = file;
    for (std::size_t count = 1 + random() % 2; count > 0; --count) {
      damaged[places[random() % places.size()]] = static_cast<std::uint8_t>(random());
    }
    (void)Refusal(damaged);
  }
}

TEST(DamagedHive, NoEntryOfAListEndsIt) {
  const auto refusals = [](const Bytes& good, ListCell list) {
    Bytes file = good;
    const std::size_t count = Get(file, list, ListField::kCount);
    for (const std::size_t entry : {std::size_t{0}, count / 2, count - 1}) {
      Bytes damaged = good;
      Put(damaged, list, LeafEntry(LoadTag(Record(file, list)), entry), KeyCell());
      EXPECT_THAT(Refusal(damaged), HasSubstr("leads to no cell in use")) << "entry " << entry << " of " << count;
    }
  };
  for (const std::uint32_t minor : {3U, 5U}) {
    Hive hive = EmptyHive(minor);
    for (const char* name : {"a", "b", "c", "d", "e"}) hive.CreatePath(hive.Root(), name);
    Bytes file = hive.Image(kMonday);
    const ListCell list = Get(file, RootCell(hive), KeyField::kSubkeyList);
    refusals(file, list);
    MakePlain(file, list);
    EXPECT_EQ(Refusal(file), "");
    refusals(file, list);
  }
  Hive hive = LargeHive();
  Bytes file = hive.Image(kMonday);
  const ListCell index = Get(file, CellOf(hive, "Many"), KeyField::kSubkeyList);
  ASSERT_EQ(LoadTag(Record(file, index)), kLeafIndexTag);
  refusals(file, index);
  refusals(file, Get(file, index, IndexEntry(0)));
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

TEST(DamagedHive, CountsOfDescriptorsThatNoKeyHasDoNotWrap) {
  Hive hive = SmallHive();
  Bytes other = hive.SaveSubtree(*hive.Find(hive.Root(), "One"), kMonday).Image(kMonday);
  const KeyCell otherRoot(Load32(other.data() + BaseField::kRoot));
  Record(other, Get(other, otherRoot, KeyField::kSecurity))[SecurityField::kDescriptor + 40] ^= 1;
  const Hive source = Hive::Load(other, "another descriptor");
  const Bytes descriptor = source.Security(source.Root());
  hive.ReplaceSubtree(*hive.Find(hive.Root(), "One"), source);

  // Every key gets the root's descriptor; the other one is left with a number that four more bring to 2.
  Bytes file = hive.Image(kMonday);
  const SecurityCell unused = Get(file, CellOf(hive, "One"), KeyField::kSecurity);
  for (const char* path : {"One", "One\\Two", "One\\Two\\\xD0\x96", "One\\Three"}) {
    Put(file, CellOf(hive, path), KeyField::kSecurity, Get(file, RootCell(hive), KeyField::kSecurity));
  }
  Put(file, unused, SecurityField::kCount, 0xFFFFFFFE);
  Hive opened = Hive::Load(file, "unused");
  opened.ReplaceSubtree(*opened.Find(opened.Root(), "One"), source);
  opened.DeleteTree(*opened.Find(opened.Root(), "One\\Two"));
  const Hive written = Hive::Load(opened.Image(kMonday), "written");
  EXPECT_EQ(written.Security(*written.Find(written.Root(), "One\\Three")), descriptor);
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

TEST(DamagedHive, SaysWhereAndWhy) {
  const Bytes good = SmallHive().Image(kMonday);
  Hive hive = SmallHive();
  const KeyCell one = CellOf(hive, "One");
  const KeyCell two = CellOf(hive, "One\\Two");
  const KeyCell deepest = CellOf(hive, "One\\Two\\\xD0\x96");
  const auto list = [&](Bytes& file, KeyCell key) { return Get(file, key, KeyField::kSubkeyList); };
  const auto text = [&](Bytes& file) { return Get(file, Get(file, deepest, KeyField::kValueList), ValueEntry(0)); };
  struct Damage {
    std::string refusal;
    std::function<void(Bytes&)> apply;
  };
  const std::vector<Damage> damages = {
      {"offset 0x0: it does not begin with \"regf\"", [](Bytes& file) { file[0] = 'R'; }},
      {"offset 0x14: its format is version 1.2", [](Bytes& file) { SetBase(file, BaseField::kMinor, 2); }},
      {"offset 0x14: its format is version 2.5", [](Bytes& file) { SetBase(file, BaseField::kMajor, 2); }},
      {"offset 0x1c: it is a hive's log", [](Bytes& file) { SetBase(file, BaseField::kType, 1); }},
      {"offset 0x90: it holds only the differences",
       [](Bytes& file) {
         SetBase(file, BaseField::kMinor, 6);
         SetBase(file, BaseField::kFlags, 2);
       }},
      {"offset 0x28: the size of its bins, 100 bytes", [](Bytes& file) { SetBase(file, BaseField::kBinsSize, 100); }},
      {"offset 0x1000: there is no bin header", [](Bytes& file) { file[kHivePage] = 'x'; }},
      {"the root key's offset", [](Bytes& file) { SetBase(file, BaseField::kRoot, 0x7FFFFFF8); }},
      {"belongs to another record already",
       [&](Bytes& file) { Put(file, two, KeyField::kSubkeyList, list(file, one)); }},
      {"belongs to another record already",
       [&](Bytes& file) { Put(file, list(file, two), LeafEntry(kHashLeafTag, 0), one); }},
      {"names another parent", [&](Bytes& file) { Put(file, two, KeyField::kParent, two); }},
      {"number of subkeys", [&](Bytes& file) { Put(file, one, KeyField::kSubkeyCount, 7); }},
      {"number of subkeys", [&](Bytes& file) { Put(file, one, KeyField::kSubkeyCount, 0); }},
      {"number of subkeys", [&](Bytes& file) { Put(file, one, KeyField::kSubkeyCount, 0x40000000); }},
      {"number of subkeys",
       [&](Bytes& file) {
         StoreTag(Record(file, list(file, one)), kLeafIndexTag);
         Put(file, list(file, one), ListField::kCount, 0);
       }},
      {"list of subkeys is empty", [&](Bytes& file) { Put(file, list(file, one), ListField::kCount, 0); }},
      {"number of values", [&](Bytes& file) { Put(file, deepest, KeyField::kValueCount, 0); }},
      {"too short for the list of values", [&](Bytes& file) { Put(file, deepest, KeyField::kValueCount, 0x40000001); }},
      {"its value leads to no cell",
       [&](Bytes& file) { Put(file, Get(file, deepest, KeyField::kValueList), ValueEntry(0), ValueCell()); }},
      {"its data leads to no cell", [&](Bytes& file) { Put(file, text(file), ValueField::kData, DataCell()); }},
      {"more than 4 bytes", [&](Bytes& file) { Put(file, text(file), ValueField::kDataSize, kInlineData | 5); }},
      {"data reach beyond", [&](Bytes& file) { Put(file, text(file), ValueField::kDataSize, 16344); }},
      {"big data", [&](Bytes& file) { Put(file, text(file), ValueField::kDataSize, 16345); }},
      {"class name",
       [&](Bytes& file) {
         Put(file, two, KeyField::kClassLength, 2);
         Put(file, two, KeyField::kClass, DataCell(0xFFFFFFF8));
       }},
      {"name is empty", [&](Bytes& file) { Put(file, two, KeyField::kNameLength, 0); }},
      {"name is empty", [&](Bytes& file) { Put(file, deepest, KeyField::kNameLength, 1); }},
      {"holds a backslash", [&](Bytes& file) { Record(file, two)[KeyField::kName + 1] = '\\'; }},
      {"name reaches beyond", [&](Bytes& file) { Put(file, two, KeyField::kNameLength, 900); }},
  };
  for (const Damage& damage : damages) {
    Bytes file = good;
    damage.apply(file);
    EXPECT_THAT(Refusal(file), HasSubstr(damage.refusal));
  }
}

}  // namespace
}  // namespace quillbox
