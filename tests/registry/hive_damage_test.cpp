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

/// A small hive with every kind of record that fits into two pages.
Hive SmallHive() {
  Hive hive = EmptyHive(5);
  const HiveKey key = hive.CreatePath(hive.Root(), "One\\Two\\\xD0\x96");
  hive.SetValue(key, "text", 1, Pattern(20));
  hive.SetValue(key, "", 4, Pattern(4));
  hive.CreatePath(hive.Root(), "One\\Three");
  return hive;
}

/// One with lists of lists and big data.
Hive LargeHive() {
  Hive hive = SmallHive();
  for (int number = 0; number < 600; ++number) hive.CreatePath(hive.Root(), "Many\\" + std::to_string(number));
  hive.SetValue(hive.Root(), "big", 3, Bytes(40000));
  return hive;
}

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

TEST(DamagedHive, SaysWhereAndWhy) {
  const Bytes good = SmallHive().Image(kMonday);
  Hive hive = SmallHive();
  const std::uint32_t one = hive.Find(hive.Root(), "One")->cell;
  const std::uint32_t two = hive.Find(hive.Root(), "One\\Two")->cell;
  const auto list = [&](Bytes& file, std::uint32_t key) { return Load32(Record(file, key) + KeyField::kSubkeyList); };
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
       [&](Bytes& file) { Store32(Record(file, two) + KeyField::kSubkeyList, list(file, one)); }},
      {"belongs to another record already",
       [&](Bytes& file) { Store32(Record(file, list(file, two)) + ListField::kEntries, one); }},
      {"names another parent", [&](Bytes& file) { Store32(Record(file, two) + KeyField::kParent, two); }},
      {"number of subkeys", [&](Bytes& file) { Store32(Record(file, one) + KeyField::kSubkeyCount, 7); }},
      {"name reaches beyond", [&](Bytes& file) { Store16(Record(file, two) + KeyField::kNameLength, 900); }},
  };
  for (const Damage& damage : damages) {
    Bytes file = good;
    damage.apply(file);
    EXPECT_THAT(Refusal(file), HasSubstr(damage.refusal));
  }
}

}  // namespace
}  // namespace quillbox
