// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive.h"

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "registry/reg_file_recorder.h"
#include "support/damaged_hive.h"
#include "support/matchers.h"
#include "support/temp_folder.h"

namespace quillbox {
namespace {

std::string Numbered(int number) {
  return "key " + std::to_string(static_cast<unsigned>(number) * 2654435761U);
}

SecurityCell SecurityOf(Bytes& file, HiveKey key) {
  return Get(file, KeyCell(key.cell), KeyField::kSecurity);
}

std::uint32_t SecurityCount(Bytes file, HiveKey key) {
  return Get(file, SecurityOf(file, key), SecurityField::kCount);
}

TEST(Hive, SplitsListsOfEveryFormAndTakesThemApartAgain) {
  constexpr int kKeys = 3000;
  for (const auto& [minor, isPlain] : {std::pair(3U, false), {4U, true}, {6U, false}}) {
    Hive hive = EmptyHive(minor);
    const HiveKey parent = hive.CreatePath(hive.Root(), "Parent\\the first");
    Bytes file = hive.Image(kMonday);
    if (isPlain) MakePlain(file, Get(file, CellOf(hive, "Parent"), KeyField::kSubkeyList));
    hive = Hive::Load(file, "one");
    for (int number = 0; number < kKeys; ++number) hive.CreatePath(hive.Root(), "pARENT\\" + Numbered(number));
    file = hive.Image(kMonday);
    hive = Hive::Load(file, "many");
    EXPECT_EQ(Lines(Hive::Load(WithBadPage(file), "bad page", {}, DamagedParts::LeaveOut), true), Lines(hive, true));
    const HiveKey key = *hive.Parent(parent);
    const std::vector<HiveKey> subkeys = hive.Subkeys(key);
    ASSERT_EQ(subkeys.size(), kKeys + 1U);
    for (std::size_t at = 0; at < subkeys.size(); ++at) {
      ASSERT_EQ(hive.SubkeyAt(key, at), subkeys[at]);
      ASSERT_TRUE(at == 0 || hive.Name(subkeys[at - 1]) < hive.Name(subkeys[at]));
    }
    for (int number = 0; number < kKeys; ++number) hive.DeleteTree(*hive.Find(key, Numbered(number)));
    EXPECT_EQ(Lines(Hive::Load(hive.Image(kMonday), "one")),
              (std::vector<std::string>{"", "\\Parent", "\\Parent\\the first"}));
    hive.DeleteTree(parent);
    EXPECT_EQ(Hive::Load(hive.Image(kMonday), "none").SubkeyCount(key), 0U);
  }
}

TEST(Hive, ReusesWhatWasFreed) {
  Hive hive = EmptyHive(5);
  const auto cycle = [&](int round) {
    for (int number = 0; number < 700; ++number) {
      const HiveKey key = hive.CreatePath(hive.Root(), "Tree\\" + Numbered(number + round));
      for (const int size : {number % 90, number * 37 % 3000}) {
        hive.SetValue(key, "text", 1, Pattern(static_cast<std::size_t>(size)));
      }
    }
    hive.SetValue(*hive.Find(hive.Root(), "Tree"), "big", 3, Pattern(70000));
    hive.DeleteTree(*hive.Find(hive.Root(), "Tree"));
    return hive.Image(kMonday).size();
  };
  const std::size_t first = cycle(0);
  for (int round = 1; round < 20; ++round) ASSERT_LE(cycle(round), first) << "in round " << round;
}

TEST(Hive, FindsValuesOfAKeyWithMany) {
  Hive hive = EmptyHive(3);
  for (int number = 0; number < 500; ++number) hive.SetValue(hive.Root(), Numbered(number), 4, Pattern(4));
  for (int number = 0; number < 500; number += 2) ASSERT_TRUE(hive.DeleteValue(hive.Root(), Numbered(number)));
  hive.SetValue(hive.Root(), "KEY 0", 1, Pattern(3));
  EXPECT_FALSE(hive.DeleteValue(hive.Root(), Numbered(2)));
  EXPECT_EQ(hive.Value(hive.Root(), Numbered(0))->type, 1U);
  EXPECT_EQ(hive.Value(hive.Root(), Numbered(1))->type, 4U);
  EXPECT_EQ(hive.ValueCount(hive.Root()), 251U);
  hive.ReplaceSubtree(hive.Root(), EmptyHive(3));
  for (int number = 0; number < 50; ++number) hive.SetValue(hive.Root(), Numbered(number), 4, Pattern(4));
  EXPECT_EQ(hive.ValueCount(hive.Root()), 50U);
}

TEST(Hive, StoresBigDataAsItsVersionDoes) {
  const Bytes tooBig(Hive::kMaxDataWithoutDb + 1);
  Hive old = EmptyHive(3), hive = EmptyHive(5);
  for (Hive* each : {&old, &hive}) {
    for (const std::size_t size : {16343U, 16344U, 16345U, 32688U, 32689U, 1000000U}) {
      each->SetValue(each->Root(), std::to_string(size), 3, Pattern(size));
      EXPECT_EQ(each->Value(each->Root(), std::to_string(size)).value().data, Pattern(size)) << size;
    }
    const Bytes image = each->Image(kMonday);
    EXPECT_EQ(Lines(Hive::Load(image, "big")), Lines(*each));
    const Bytes record = {'d', 'b', 2, 0};
    const bool hasRecord = std::search(image.begin(), image.end(), record.begin(), record.end()) != image.end();
    EXPECT_EQ(hasRecord, each == &hive);
  }
  EXPECT_THAT(FaultOf([&] { old.SetValue(old.CreateSubkey(old.Root(), "k"), "v", 3, tooBig); }),
              HasSubstr("empty\\k: its data are 1048577 bytes long"));
  hive.SetValue(hive.Root(), "too big for 1.3", 3, tooBig);
  EXPECT_THAT(FaultOf([&] { (void)hive.SaveSubtree(hive.Root(), kMonday); }), HasSubstr("too big for 1.3"));
  EXPECT_THAT(FaultOf([&] { old.ReplaceSubtree(old.Root(), hive); }), HasSubstr("1048576"));
}

/// The key and all below it as a hive whose keys have another security descriptor.
Hive WithOtherDescriptor(const Hive& hive, HiveKey key) {
  Bytes file = hive.SaveSubtree(key, kMonday).Image(kMonday);
  Record(file, SecurityOf(file, Hive::Load(file, "same").Root()))[SecurityField::kDescriptor + 40] ^= 1;
  return Hive::Load(file, "other");
}

TEST(Hive, CountsTheKeysOfEachSecurityDescriptor) {
  Hive hive = EmptyHive(3);
  const HiveKey one = hive.CreateSubkey(hive.Root(), "one");
  const HiveKey below = hive.CreatePath(one, "below\\deep");
  EXPECT_EQ(hive.Security(below), hive.Security(hive.Root()));
  EXPECT_EQ(SecurityCount(hive.Image(kMonday), one), 4U);
  const HiveKey two = hive.CreateSubkey(hive.Root(), "two");
  hive.ReplaceSubtree(two, WithOtherDescriptor(hive, one));
  Bytes file = hive.Image(kMonday);
  EXPECT_NE(hive.Security(two), hive.Security(one));
  EXPECT_EQ(hive.Security(two), hive.Security(*hive.Find(two, "below\\deep")));
  EXPECT_EQ(SecurityCount(file, two), 3U);
  EXPECT_EQ(SecurityCount(file, one), 4U);
  EXPECT_EQ(SecurityCount(hive.SaveSubtree(hive.Root(), kMonday).Image(kMonday), Hive::Load(file, "f").Root()), 4U);

  hive.ReplaceSubtree(two, hive.SaveSubtree(one, kMonday));
  file = hive.Image(kMonday);
  EXPECT_EQ(SecurityCount(file, one), 7U);
  const SecurityCell security = SecurityOf(file, one);
  EXPECT_EQ(Get(file, security, SecurityField::kNext), security);
  hive.DeleteTree(two);
  hive.DeleteTree(one);
  EXPECT_EQ(SecurityCount(hive.Image(kMonday), hive.Root()), 1U);
}

TEST(Hive, CountsOfDescriptorsThatNoKeyHasDoNotWrap) {
  Hive hive = SmallHive();
  const HiveKey one = *hive.Find(hive.Root(), "One");
  const Hive source = WithOtherDescriptor(hive, one);
  hive.ReplaceSubtree(one, source);
  // Every key gets the root's descriptor; the other one is left with a number that four more bring to 2.
  Bytes file = hive.Image(kMonday);
  const SecurityCell unused = SecurityOf(file, one);
  for (const char* path : {"One", "One\\Two", "One\\Two\\\xD0\x96", "One\\Three"}) {
    Put(file, CellOf(hive, path), KeyField::kSecurity, SecurityOf(file, hive.Root()));
  }
  Put(file, unused, SecurityField::kCount, 0xFFFFFFFE);
  hive = Hive::Load(file, "unused");
  hive.ReplaceSubtree(one, source);
  hive.DeleteTree(*hive.Find(one, "Two"));
  hive = Hive::Load(hive.Image(kMonday), "written");
  EXPECT_EQ(hive.Security(*hive.Find(one, "Three")), source.Security(source.Root()));
}

TEST(Hive, StampsTheKeysThatAChangeTouches) {
  Hive hive = EmptyHive(3);
  const HiveKey child = hive.CreatePath(hive.Root(), "parent\\child"), parent = *hive.Parent(child);
  hive.SetValue(child, "v", 1, {});
  EXPECT_TRUE(hive.Changed());
  hive.Image(kMonday);
  hive.SetTime(kTuesday);
  const auto times = [&] { return std::vector<FileTime>{hive.Time(hive.Root()), hive.Time(parent), hive.Time(child)}; };
  EXPECT_FALSE(hive.DeleteValue(child, "none"));
  hive.CreateSubkey(parent, "CHILD");
  EXPECT_FALSE(hive.Changed());
  EXPECT_EQ(times(), (std::vector<FileTime>{kMonday, kMonday, kMonday}));
  hive.DeleteValue(child, "V");
  EXPECT_EQ(times(), (std::vector<FileTime>{kMonday, kMonday, kTuesday}));
  hive.DeleteTree(child);
  EXPECT_TRUE(hive.Changed());
  EXPECT_EQ(hive.Time(parent), kTuesday);
  EXPECT_EQ(hive.Time(hive.Root()), kMonday);
  EXPECT_THAT(FaultOf([&] { (void)hive.Time(child); }), HasSubstr("has been deleted"));
}

TEST(Hive, CarriesASubtreeWithAllThatBelongsToIt) {
  Hive hive = EmptyHive(5);
  const HiveKey tree = hive.CreatePath(hive.Root(), "Software\\Tree");
  for (int number = 0; number < 1200; ++number) {
    hive.SetTime(kMonday + static_cast<FileTime>(number));
    hive.SetValue(hive.CreateSubkey(tree, Numbered(number)), "n", 4, Pattern(4));
  }
  hive.SetValue(tree, "big", 3, Pattern(100000));
  // A class name (here from what were a value's data) and fields without a meaning to us, as other systems leave them.
  const HiveKey some = *hive.Find(tree, Numbered(5));
  hive.SetValue(some, "class", 1, Utf16Bytes(u"Klass"));
  Bytes file = hive.Image(kMonday);
  const KeyCell key(some.cell);
  const ValueCell value = Get(file, Get(file, key, KeyField::kValueList), ValueEntry(1));
  Put(file, key, KeyField::kClass, Get(file, value, ValueField::kData));
  Put(file, key, KeyField::kClassLength, 10);
  Put(file, value, ValueField::kDataSize, kInlineData);
  Put(file, key, KeyField::kFlags, Get(file, key, KeyField::kFlags) | 0x3000);
  Put(file, key, KeyField::kWork, 0xABCD);
  hive = Hive::Load(file, "with fields");
  ASSERT_EQ(hive.ClassName(some), "Klass");

  const Hive saved = Hive::Load(hive.SaveSubtree(tree, kTuesday).Image(kTuesday), "saved");
  EXPECT_EQ(Lines(saved, true), Lines(hive, tree, true));
  EXPECT_EQ(saved.Name(saved.Root()), "Tree");

  Hive target = EmptyHive(3);
  const HiveKey place = target.CreatePath(target.Root(), "Place\\Old");
  target.CreateSubkey(place, "gone");
  target.SetTime(kTuesday);
  target.ReplaceSubtree(place, saved);
  EXPECT_EQ(Lines(target, place), Lines(hive, tree));
  EXPECT_EQ(target.Name(place), "Old");
  EXPECT_EQ(target.Time(*target.Find(place, Numbered(6))), kMonday + 6);
  Bytes image = target.Image(kTuesday);
  const KeyCell copied(target.Find(place, Numbered(5))->cell);
  EXPECT_EQ(Get(image, copied, KeyField::kFlags), 0x3020);
  EXPECT_EQ(Get(image, copied, KeyField::kWork), 0xABCDU);
}

TEST(Hive, RefusesWhatExceedsALimitAndStaysAsItWas) {
  Hive hive = EmptyHive(3);
  HiveKey deepest = hive.Root();
  for (std::size_t depth = 1; depth < Hive::kMaxDepth; ++depth) deepest = hive.CreateSubkey(deepest, "d");
  const Bytes before = hive.Image(kMonday);
  const std::vector<std::pair<std::string, std::function<void()>>> faults = {
      {"512 levels", [&] { hive.CreateSubkey(deepest, "x"); }},
      {"512 levels", [&] { hive.CreatePath(deepest, "x\\y"); }},
      {"is empty", [&] { hive.CreateSubkey(hive.Root(), ""); }},
      {"is empty", [&] { hive.CreatePath(hive.Root(), "x\\\\y"); }},
      {"256 characters", [&] { hive.CreatePath(hive.Root(), "x\\" + std::string(256, 'n')); }},
      {"backslash", [&] { hive.CreateSubkey(hive.Root(), "a\\b"); }},
      {"16383 characters", [&] { hive.SetValue(hive.Root(), std::string(16384, 'n'), 1, {}); }},
      {"cannot be deleted", [&] { hive.DeleteTree(hive.Root()); }},
      {"512 levels", [&] { hive.ReplaceSubtree(*hive.Find(hive.Root(), "d"), hive); }},
  };
  for (const auto& [text, fault] : faults) EXPECT_THAT(FaultOf(fault), HasSubstr(text));
  EXPECT_FALSE(hive.Changed());
  EXPECT_EQ(Lines(hive), Lines(Hive::Load(before, "before")));
  hive.CreateSubkey(hive.Root(), std::string(255, 'n'));
  hive.SetValue(hive.Root(), std::string(16383, 'n'), 1, {});
  EXPECT_EQ(Lines(Hive::Load(hive.Image(kMonday), "after")), Lines(hive));
}

TEST(Hive, FindsKeysOfAListInAnotherOrder) {
  Hive hive = EmptyHive(3);
  for (const char* name : {"alpha", "beta", "gamma", "delta"}) hive.CreatePath(hive.Root(), name);
  const HiveKey alpha = *hive.Find(hive.Root(), "alpha");
  Bytes file = hive.Image(kMonday);
  Record(file, Cell(alpha.cell))[KeyField::kName] = 'x';
  hive = Hive::Load(file, "unordered");
  for (const char* name : {"xlpha", "beta", "gamma", "delta"}) {
    ASSERT_TRUE(hive.Find(hive.Root(), name)) << name;
    hive.CreateSubkey(hive.Root(), name);
  }
  for (const HiveKey key : hive.Subkeys(hive.Root())) hive.DeleteTree(key);
  EXPECT_EQ(Lines(Hive::Load(hive.Image(kMonday), "empty")), std::vector<std::string>{""});
}

/// Programs of others read what we write. A program that is not installed is skipped.
class OtherReaders : public testing::Test {
 protected:
  /// Twenty thousand keys, a third of them deleted and some made again, and values of every form.
  OtherReaders() : hive_(Hive::Create("Test", kMonday)) {
    const auto name = [](int number) {
      return "Keys\\key " + std::to_string(static_cast<unsigned>(number) * 2654435761U);
    };
    const Bytes text = Utf16Bytes(std::u16string_view(u"text", 5));
    for (int number = 0; number < 20000; ++number) {
      hive_.SetValue(hive_.CreatePath(hive_.Root(), name(number)), "Username", 1, text);
    }
    for (int number = 0; number < 20000; number += 3) hive_.DeleteTree(*hive_.Find(hive_.Root(), name(number)));
    for (int number = 0; number < 20000; number += 30) hive_.CreatePath(hive_.Root(), name(number) + "\\below");
    const HiveKey values = hive_.CreateSubkey(hive_.Root(), "Values");
    hive_.SetValue(values, "", 1, text);
    hive_.SetValue(values, "number", 4, Pattern(4));
    for (const std::size_t size : {5U, 16344U, 16345U, 100000U}) {
      hive_.SetValue(values, "bytes " + std::to_string(size), 3, Pattern(size));
    }
    WriteBytes(folder_ / "hive", hive_.Image(kMonday));
  }

  static bool IsMissing(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) != 0;
  }

  /// Runs `command` in the test's folder; what it wrote to its output is in the file `out` there.
  int Run(const std::string& command) const {
    return std::system(("cd '" + folder_.Path().string() + "' && " + command + " >out 2>errors").c_str());
  }

  TempFolder folder_;
  Hive hive_;
};

TEST_F(OtherReaders, HivexregeditExportsTheSame) {
  if (IsMissing("hivexregedit")) GTEST_SKIP() << "hivexregedit is not installed";
  ASSERT_EQ(Run("hivexregedit --export hive '\\' --prefix Test"), 0) << folder_.Read("errors");
  std::vector<std::string> expected;
  AppendLines(expected, hive_, hive_.Root(), "Test", false);
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(ContentsOf(folder_.Read("out")), expected);
}

TEST_F(OtherReaders, HivexmlAndReglookupComplainOfNothing) {
  for (const std::string command : {"hivexml", "reglookup -s"}) {
    if (IsMissing(command)) GTEST_SKIP() << command << " is not installed";
    EXPECT_EQ(Run(command + " hive"), 0);
    EXPECT_EQ(folder_.Read("errors"), "");
  }
}

}  // namespace
}  // namespace quillbox
