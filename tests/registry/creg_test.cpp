// SPDX-License-Identifier: GPL-3.0-or-later
// Registry files of Windows 95, 98 and Me: what is read of them, and what is left of damaged ones.
#include <algorithm>
#include <functional>
#include <iterator>

#include "registry/hive_tools.h"
#include "sample/creg_writer.h"
#include "support/matchers.h"

namespace quillbox {
namespace {

using namespace std::string_literals;

using Change = std::function<void(Bytes&)>;

Hive Load(const Bytes& file, DamagedParts damaged = DamagedParts::Refuse, unsigned codePage = 1252) {
  return Hive::LoadCreg(file, "damaged.dat", CodePage(codePage), damaged);
}

std::string Wide(std::u16string_view units) {
  return Hex(Utf16Bytes(units));
}

/// Of a root key without an entry.
CregFileKey Root(std::vector<CregFileKey> subkeys) {
  return {.subkeys = std::move(subkeys), .hasEntry = false};
}

TEST(Creg, FillsAHiveWithKeysValuesAndTextsInTheirCodePage) {
  const std::string big(0xFFFF, 'b');
  const CregFileKey tree = {.values = {{"of the root", 4, std::string("\1\0\0\0", 4)}},
                            .subkeys = {{.name = "zo\xEB"},
                                        {.name = ".Default",
                                         .values = {{"", 1, "Gr\xFC\xDF"},
                                                    {"ended", 1, std::string("a\0", 2)},
                                                    {"empty", 1, ""},
                                                    {"\xC4", 2, "%windir%"},
                                                    {"many", 7, std::string("a\0b", 3)},
                                                    {"bytes", 3, "\x01\xFF"},
                                                    {"big", 3, big},
                                                    {"own type", 0x12345, "\x80"}},
                                         .subkeys = {{.name = "Below"}}}}};
  const Hive hive = Load(CregFile(tree));
  EXPECT_THAT(
      Lines(hive),
      ElementsAre("", " : of the root = 4 01000000", "\\.Default", "\\.Default :  = 1 " + Wide(u"Gr\u00fc\u00df\0"s),
                  "\\.Default : ended = 1 61000000", "\\.Default : empty = 1 0000",
                  "\\.Default : \u00c4 = 2 " + Wide(u"%windir%\0"s), "\\.Default : many = 7 " + Wide(u"a\0b\0"s),
                  "\\.Default : bytes = 3 01ff", "\\.Default : big = 3 " + Hex(Bytes(big.begin(), big.end())),
                  "\\.Default : own type = 74565 80", "\\.Default\\Below", "\\zo\u00eb"));
  EXPECT_FALSE(hive.Changed());
  EXPECT_EQ(hive.Origin(), HiveOrigin::Clean);
  const Hive other = Load(CregFile(tree), DamagedParts::Refuse, 1251);
  EXPECT_EQ(other.Name(other.Subkeys(other.Root()).back()), "zo\u043b") << "the caller's code page";
}

TEST(Creg, TakesKeysOfManySiblingsOfManyBlocksAndOfNoEntry) {
  CregFileKey many{.name = "many"};
  for (int number = 0; number < 20'000; ++number) {
    many.subkeys.push_back({.name = "key " + std::to_string(number), .values = {{"n", 1, std::to_string(number)}}});
  }
  CregFileKey values{.name = "values"};
  for (int number = 0; number < 5'000; ++number) values.values.push_back({std::to_string(number), 1, "x"});
  const Hive hive = Load(CregFile(Root({{.hasEntry = false}, many, values})));
  EXPECT_EQ(hive.SubkeyCount(hive.Root()), 2u) << "one that has neither a name nor anything else is passed over";
  EXPECT_EQ(hive.SubkeyCount(hive.Find(hive.Root(), "many").value()), 20'000u);
  const HiveKey last = hive.Find(hive.Root(), "MANY\\KEY 19999").value();
  EXPECT_EQ(Hex(hive.Value(last, "N").value().data), Wide(u"19999\0"s));
  EXPECT_EQ(hive.ValueCount(hive.Find(hive.Root(), "values").value()), 5'000u);
}

// The small file: where the nodes and the entries of its keys are.
const CregFileKey kSmall =
    Root({{.name = "A", .values = {{"text", 1, "x"}}, .subkeys = {{.name = "A1", .values = {{"n", 4, "1234"}}}}},
          {.name = "B"},
          {.name = "C", .values = {{"", 1, "c"}}}});
constexpr std::size_t kRootNode = 0x40, kA = 0x5C, kA1 = 0x78, kB = 0x94, kC = 0xB0;
constexpr std::size_t kChild = 16, kNext = 20;
constexpr std::size_t kBlock = 0x1020, kEntryA = 0x1040, kEntryB = 0x10A7, kEntryC = 0x10C9;

/// How the tree names the node at an offset of the file.
constexpr std::uint32_t InTree(std::size_t node) {
  return static_cast<std::uint32_t>(node - 0x20);
}
Change Number(std::size_t at, std::uint32_t number) {
  return [=](Bytes& file) { Store32(&file.at(at), number); };
}
Change Count(std::size_t at, std::uint16_t number) {
  return [=](Bytes& file) { Store16(&file.at(at), number); };
}

/// What can be read of a damaged file, which must be a hive that passes the check. A file that is refused is refused
/// with a place, and the hive then says what it lacks.
std::optional<Hive> Salvage(const Bytes& file, std::string& refusal) {
  refusal = FaultOf([&] { Load(file); });
  EXPECT_THAT(refusal, AnyOf("(done)", HasSubstr("damaged.dat, offset 0x")));
  try {
    Hive hive = Load(file, DamagedParts::LeaveOut);
    EXPECT_EQ(hive.Damage().empty(), refusal == "(done)");
    EXPECT_EQ(Lines(Hive::Load(hive.Image(kMonday), "written"), true), Lines(hive, true));
    return hive;
  } catch (const Error&) {
    EXPECT_NE(refusal, "(done)");
    return std::nullopt;
  }
}

/// The lines of `all` that `some` does not have.
std::vector<std::string> Missing(std::vector<std::string> all, std::vector<std::string> some) {
  std::sort(all.begin(), all.end());
  std::sort(some.begin(), some.end());
  std::vector<std::string> missing;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(missing));
  EXPECT_TRUE(std::includes(all.begin(), all.end(), some.begin(), some.end())) << "nothing is made up";
  return missing;
}

TEST(DamagedCreg, IsRefusedWithItsFaultAndLosesNothingElse) {
  const std::vector<std::string> ofA = {"\\A", "\\A : text = 1 78000000", "\\A\\A1", "\\A\\A1 : n = 4 31323334"};
  const std::string placed = "the offset of a subkey leads to a key that is in another place already";
  const std::string nowhere = "the offset of a subkey leads to no key";
  const struct {
    std::string note;  ///< without its place
    Change apply;
    std::vector<std::string> missing = {};
    std::string refusal = {};  ///< where it is not the note's fault
  } faults[] = {
      {"A: " + placed, Number(kA + kChild, InTree(kA))},
      {"the root key: " + placed, Number(kRootNode + kChild, InTree(kRootNode))},
      {"the root key: " + placed, Number(kA + kNext, InTree(kA))},
      {"the root key: " + placed, Number(kC + kNext, InTree(kA))},
      {"the root key: " + placed, Number(kC + kNext, InTree(kA1)), {}, "a subkey's parent offset is wrong"},
      {"the root key: " + placed, Number(kB + kNext, InTree(kB) - 4)},
      {"the root key: " + nowhere, Number(kA + kNext, 0x7FFFFFF0)},
      {"the root key: " + nowhere, Number(kA + kNext, InTree(kB) + 2)},
      {"B: its parent offset is wrong; corrected",
       Number(kB + 12, 0xFFFFFFFF),
       {},
       "a subkey's parent offset is wrong"},
      {"the root key: entry 77 of block 0, which names a key here, is not there", Count(kB + 24, 77), {"\\B"}},
      {"the root key: entry 0 of block 0, which names a key here, belongs to another key already",
       Count(kB + 24, 0),
       {"\\B"}},
      {"the root key: entry 65535 of block 65535, which names a key here, is not there", Number(kA + 24, 0xFFFFFFFF),
       ofA},
      {"the root key: a subkey has no name", Count(kEntryB + 12, 0), {"\\B"}},
      {"the root key: a subkey's name does not fit into its entry", Count(kEntryB + 12, 99), {"\\B"}},
      {"the root key: a subkey's name holds a backslash", [](Bytes& file) { file[kEntryB + 20] = '\\'; }, {"\\B"}},
      {"A: 1 value does not fit into its entry", Count(kEntryA + 14, 2)},
      {"A: 1 value does not fit into its entry", Count(kEntryA + 20 + 1 + 10, 99), {ofA[1]}},
      {"A: its entry uses 5 bytes, which it cannot", Number(kEntryA + 8, 5)},
      {"A: its entry uses 4096 bytes, which it cannot", Number(kEntryA + 8, 4096)},
      {"C: its entry has more values than their number says", Count(kEntryC + 14, 0)},
      {"the file: the length of an entry, 0 bytes, is wrong", Number(kEntryA, 0), ofA},
      {"the file: the length of an entry, 13312 bytes, is wrong", Number(kEntryA, 50)},
      {"the file: another entry of the block has the number 1", Count(kEntryB + 4, 1), {"\\B"}},
      {"the file: the block's number is 7 and should be 0", Count(kBlock + 14, 7)},
      {"the file: the block's length, 8 bytes, is wrong", Number(kBlock + 4, 8)},
      {"the file: there is no block of data here", [](Bytes& file) { file[kBlock] = 'x'; },
       Missing(Lines(Load(CregFile(kSmall))), {""})},
      {"the file: the file ends before block 1 of 2", Count(16, 2)},
      {"the file: the tree of the keys does not begin here", [](Bytes& file) { file[0x20] = 'x'; }},
      {"the file: the tree of the keys is 16 bytes long, which it cannot be", Number(0x24, 16)},
      {"the file: the root key's offset leads to no key", Number(0x28, 6)},
  };
  const std::vector<std::string> whole = Lines(Load(CregFile(kSmall)));
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.note);
    Bytes file = CregFile(kSmall);
    fault.apply(file);
    std::string refusal;
    const std::optional<Hive> hive = Salvage(file, refusal);
    ASSERT_TRUE(hive.has_value()) << refusal;
    const HiveDamage& first = hive->Damage().at(0);
    EXPECT_EQ(first.part + ": " + first.fault, fault.note);
    const std::string why = fault.note.substr(fault.note.find(": ") + 2);
    EXPECT_THAT(refusal, HasSubstr(fault.refusal.empty() ? why : fault.refusal));
    EXPECT_EQ(Missing(whole, Lines(*hive)), fault.missing);
  }
}

TEST(DamagedCreg, OfNoKnownFormIsRefused) {
  const struct {
    const char* refusal;
    Change apply;
  } faults[] = {{"offset 0x0: it does not begin with \"CREG\"", [](Bytes& file) { file[0] = 'x'; }},
                {"offset 0x4: its format is version 2.0; only version 1 can be read", Count(6, 2)},
                {"offset 0x3f: the file ends here, within its first 64 bytes", [](Bytes& file) { file.resize(63); }},
                {"offset 0x28: the root key's offset leads to no key", [](Bytes& file) { file.resize(kA - 1); }}};
  for (const auto& fault : faults) {
    Bytes file = CregFile(kSmall);
    fault.apply(file);
    EXPECT_THAT(FaultOf([&] { Load(file, DamagedParts::LeaveOut); }), HasSubstr(fault.refusal));
  }
}

TEST(DamagedCreg, CutOffAnywhereGivesWhatIsBeforeTheCut) {
  const Bytes file = CregFile(kSmall);
  const std::vector<std::string> whole = Lines(Load(file));
  const auto isUnused = [](std::size_t at) { return (at > 0xE0 && at < 0xFE0) || (at > 0x1110 && at < 0x1FE0); };
  for (std::size_t length = 0; length < file.size(); length += isUnused(length) ? 32 : 1) {
    SCOPED_TRACE(length);
    std::string refusal;
    const std::optional<Hive> hive =
        Salvage(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)), refusal);
    EXPECT_NE(refusal, "(done)");
    EXPECT_EQ(hive.has_value(), length >= kA);
    const std::vector<std::string> lines = hive ? Lines(*hive) : std::vector<std::string>();
    EXPECT_EQ(Missing(whole, lines).empty(), length >= kEntryC + 47);
  }
}

TEST(DamagedCreg, ALostBlockLosesItsOwnKeysOnly) {
  CregFileKey root = Root({});
  for (int number = 1000; number < 1600; ++number) root.subkeys.push_back({.name = std::to_string(number)});
  Bytes file = CregFile(root);
  const std::size_t second = Load32(&file[8]) + Load32(&file[Load32(&file[8]) + 4]);
  ASSERT_EQ(std::string(&file[second], &file[second] + 4), "RGDB");
  file[second] = 'x';
  std::string refusal;
  const Hive hive = Salvage(file, refusal).value();
  EXPECT_EQ(hive.SubkeyCount(hive.Root()), 600u - 255u);
  EXPECT_TRUE(hive.Find(hive.Root(), "1599").has_value());
  EXPECT_EQ(hive.DamageCount(), 1u + 255u);
}

TEST(DamagedCreg, TheSecondValueOfANameAndKeysNestedTooDeeplyAreLeftOut) {
  CregFileKey deep{.name = "deep"};
  for (int level = 0; level < 600; ++level) deep = {.name = "d", .subkeys = {deep}};
  std::string refusal;
  const Hive nested = Salvage(CregFile(Root({deep})), refusal).value();
  EXPECT_THAT(refusal, HasSubstr("the keys are nested too deeply"));
  EXPECT_EQ(Lines(nested).size(), Hive::kMaxDepth);
  const Hive twice =
      Salvage(CregFile(Root({{.name = "A", .values = {{"x", 1, "1"}, {"X", 1, "2"}}}})), refusal).value();
  EXPECT_THAT(refusal, HasSubstr("another value of the key has its name"));
  EXPECT_THAT(Lines(twice), ElementsAre("", "\\A", "\\A : x = 1 31000000"));
  EXPECT_EQ(twice.Damage().at(0).part, "A \"X\"");
}

}  // namespace
}  // namespace quillbox
