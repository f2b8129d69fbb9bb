// SPDX-License-Identifier: GPL-3.0-or-later
// Registry files of Windows 95, 98 and Me: opened strictly and with damaged parts left out, in a single-byte and in a
// double-byte code page, and written as hives.
#include <iterator>
#include <optional>

#include "harness.h"
#include "hive_reading.h"
#include "registry/hive.h"
#include "sample/creg_writer.h"
#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxLength = 32 * 1024;

std::optional<Hive> Open(ByteView file, const CodePage& codePage, DamagedParts damaged) {
  try {
    return Hive::LoadCreg(file, "fuzzed", codePage, damaged);
  } catch (const Error& error) {
    Require(IsInnerText(Describe(error)), "a refusal has words");
    return std::nullopt;
  }
}

void RunCreg(ByteView input) {
  static const CodePage kWestern(1252), kJapanese(932);
  InputReader reader(input);
  const CodePage& codePage = (reader.Byte() & 1) != 0 ? kJapanese : kWestern;
  std::optional<Hive> strict = Open(reader.Rest(), codePage, DamagedParts::Refuse);
  std::optional<Hive> partial = Open(reader.Rest(), codePage, DamagedParts::LeaveOut);
  if (strict) {
    Require(strict->Damage().empty(), "a file that opens strictly lacks nothing");
    Require(partial && partial->Damage().empty(), "nothing is left out of a file that opens strictly");
    Require(ReadAll(*strict) == ReadAll(*partial), "both ways of opening a whole file give the same");
  } else if (partial) {
    Require(!partial->Damage().empty(), "what is left out is listed");
  }
  if (!partial) return;
  Require(partial->Image(0).size() <= input.size() * 16 + 16 * 1024, "a hive is no more than its file asks for");
  RequireReloads(*partial);
}

/// Numbers are what the file is made of: one of them becomes another one of the file, one close to it, or a limit.
void MutateCreg(Bytes& input, std::size_t limit, Mutation& mutation) {
  constexpr std::uint32_t kNumbers[] = {0, 1, 12, 20, 28, 32, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  if (input.size() < 8 || mutation.OneIn(4)) return mutation.ByEngine(input, limit);
  std::uint8_t* at = &input[mutation.Below(input.size() - 4)];
  switch (mutation.Below(4)) {
    case 0:
      return Store32(at, kNumbers[mutation.Below(std::size(kNumbers))]);
    case 1:
      return Store32(at, Load32(&input[mutation.Below(input.size() - 4)]));
    case 2:
      return Store16(at, static_cast<std::uint16_t>(mutation.Below(300)));
    default:
      return Store32(at, Load32(at) + static_cast<std::uint32_t>(mutation.Below(9)) * 4 - 16);
  }
}

CregFileKey Deep(int levels) {
  CregFileKey key{.name = "end", .values = {{"n", 4, std::string(4, '\1')}}};
  for (; levels > 0; --levels) key = {.name = "level", .subkeys = {std::move(key)}};
  return key;
}

std::vector<Seed> CregSeeds() {
  const CregFileKey user{.name = ".Default",
                         .values = {{"", 1, "text"}, {"\xC4rger", 2, "%x%\0"}, {"n", 4, "abcd"}, {"many", 7, "a\0b"}},
                         .subkeys = {{.name = "Identities"}, {.name = "Software", .subkeys = {{.name = "\x83\x5C"}}}}};
  CregFileKey many{.name = "many"};
  for (int number = 0; number < 300; ++number) many.subkeys.push_back({.name = std::to_string(number)});
  std::vector<Seed> seeds;
  const auto add = [&](const char* name, std::vector<CregFileKey> keys, bool hasEntry) {
    Bytes file = CregFile({.subkeys = std::move(keys), .hasEntry = hasEntry});
    file.insert(file.begin(), 0);
    seeds.push_back({name, std::move(file)});
  };
  add("empty", {}, true);
  add("user", {user, {.name = "other"}, {.hasEntry = false}}, false);
  add("deep", {Deep(40)}, false);
  add("blocks", {std::move(many)}, false);
  return seeds;
}

}  // namespace

const Harness kCregHarness = {"creg", kMaxLength, RunCreg, CregSeeds, MutateCreg};

}  // namespace quillbox
