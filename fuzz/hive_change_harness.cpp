// SPDX-License-Identifier: GPL-3.0-or-later
// Changes to an untrusted hive. The input is the number of bytes of operations, the operations, then the hive.
#include <array>

#include "harness.h"
#include "hive_mutation.h"
#include "hive_reading.h"
#include "hive_seeds.h"
#include "registry/hive_tools.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxOperationBytes = 100;
constexpr unsigned kMaxComparisons = 6;  ///< of all that the hive holds, before and after a refused change
constexpr std::size_t kMaxKeys = 1000;   ///< of all that one input may copy, so that copies of copies end

constexpr std::array<std::string_view, 12> kNames = {
    "a", "B", "one", "ONE", "text", "", "\xD0\x96", "\xC3\xA9", "\xED\xA0\x80", "longer name", "x\\y", "four"};
constexpr std::array<std::size_t, 12> kSizes = {0, 1, 4, 5, 8, 60, 700, 700, 4000, 16344, 16345, 32689};

std::size_t CountKeys(const Hive& hive, HiveKey key) {
  std::size_t count = 1;
  for (const HiveKey subkey : hive.Subkeys(key)) count += CountKeys(hive, subkey);
  return count;
}

class Changer {
 public:
  Changer(Hive& hive, ByteView operations) : hive_(hive), operations_(operations) {}

  void Run() {
    while (!operations_.AtEnd()) {
      const std::uint8_t operation = operations_.Byte();
      const bool compare = (operation & 0x80) != 0 && comparisons_++ < kMaxComparisons;
      const std::uint64_t before = compare ? ReadAll(hive_) : 0;
      try {
        Do(operation & 0x7F);
      } catch (const Error&) {
        if (compare) Require(ReadAll(hive_) == before, "a refused change changes nothing");
      }
    }
  }

 private:
  void Do(unsigned operation) {
    switch (operation % 8) {
      case 0:
        return Create(PickKey());
      case 1:
        return CreatePath(PickKey());
      case 2:
        return SetValue(PickKey(), Name());
      case 3:
        return SetOldValue(PickKey());
      case 4:
        return DeleteValue(PickKey());
      case 5:
        return hive_.DeleteTree(PickKey());
      case 6:
        return Replace(PickKey());
      default:
        // Takes longer than all the others together.
        return operation % 64 == 63 ? CreateMany(PickKey()) : Create(PickKey());
    }
  }

  std::string Name() { return std::string(kNames[operations_.Byte() % kNames.size()]); }

  HiveKey PickKey() {
    const std::uint8_t choice = operations_.Byte();
    HiveKey key = hive_.Root();
    for (unsigned depth = choice % 4; depth > 0 && hive_.SubkeyCount(key) > 0; --depth) {
      key = hive_.SubkeyAt(key, (choice / 4U + depth) % hive_.SubkeyCount(key));
    }
    return key;
  }

  void Create(HiveKey key) {
    const std::string name = Name();
    const HiveKey made = hive_.CreateSubkey(key, name);
    Require(hive_.Parent(made) == key, "a new key is below its parent");
    Require(hive_.Find(key, name).has_value(), "a new key is found");
  }

  void CreatePath(HiveKey key) {
    std::string path = Name();
    for (unsigned count = operations_.Byte() % 4; count > 0; --count) path += "\\" + Name();
    const HiveKey made = hive_.CreatePath(key, path);
    Require(hive_.Find(key, path) == made, "a new path is found");
  }

  void SetValue(HiveKey key, const std::string& name) {
    const std::uint8_t form = operations_.Byte();
    const Bytes data = Pattern(kSizes[form % kSizes.size()], Variant{form});
    hive_.SetValue(key, name, form / 16U, data);
    const std::optional<HiveValue> read = hive_.Value(key, name);
    Require(read && read->type == form / 16U && read->data == data, "a value is what was set");
  }

  void SetOldValue(HiveKey key) {
    const std::size_t count = hive_.ValueCount(key);
    if (count > 0) SetValue(key, hive_.ValueAt(key, operations_.Byte() % count).name);
  }

  void DeleteValue(HiveKey key) {
    const std::size_t count = hive_.ValueCount(key);
    if (count == 0) return;
    const std::string name = hive_.ValueAt(key, operations_.Byte() % count).name;
    Require(hive_.DeleteValue(key, name) && hive_.ValueCount(key) == count - 1, "a value is deleted");
  }

  void Replace(HiveKey to) {
    const HiveKey from = PickKey();
    keys_ += CountKeys(hive_, from);
    if (keys_ > kMaxKeys) return;
    const Hive saved = hive_.SaveSubtree(from, kMonday);
    hive_.ReplaceSubtree(to, saved);
    Require(CountKeys(hive_, to) == CountKeys(saved, saved.Root()), "a replaced key holds what its source held");
  }

  /// Enough for a list to be split.
  void CreateMany(HiveKey key) {
    if (many_) return;
    many_ = true;
    const unsigned step = operations_.Byte() | 1U;
    for (unsigned number = 0; number < 520; ++number) {
      hive_.CreateSubkey(key, "k" + std::to_string(number * step % 1024));
    }
  }

  Hive& hive_;
  InputReader operations_;
  unsigned comparisons_ = 0;
  std::size_t keys_ = 0;
  bool many_ = false;
};

void RunHiveChange(ByteView input) {
  InputReader reader(input);
  const ByteView operations = reader.Take(std::min<std::size_t>(reader.Byte(), kMaxOperationBytes));
  const ByteView file = reader.Rest();
  std::optional<Hive> hive;
  try {
    hive = Hive::Load(Bytes(file.begin(), file.end()), "fuzzed", {}, DamagedParts::LeaveOut);
  } catch (const Error&) {
    return;
  }
  Changer(*hive, operations).Run();
  RequireReloads(*hive);
}

Bytes Joined(const Bytes& operations, const Bytes& file) {
  Bytes input;
  input.reserve(1 + operations.size() + file.size());
  input.push_back(static_cast<std::uint8_t>(operations.size()));
  input.insert(input.end(), operations.begin(), operations.end());
  input.insert(input.end(), file.begin(), file.end());
  return input;
}

void MutateHiveChange(Bytes& input, std::size_t limit, Mutation& mutation) {
  InputReader reader(input);
  const ByteView first = reader.Take(reader.Byte());
  Bytes operations(first.begin(), first.end());
  Bytes file(reader.Rest().begin(), reader.Rest().end());
  if (mutation.OneIn(2)) {
    mutation.ByEngine(operations, kMaxOperationBytes);
  } else if (limit > kMaxOperationBytes) {
    MutateHive(file, limit - kMaxOperationBytes - 1, mutation);
  }
  input = Joined(operations, file);
}

std::vector<Seed> HiveChangeSeeds() {
  std::vector<Seed> seeds;
  // Each begins with its number (0x80: compare before and after a refusal) and a key.
  const Bytes operations = {
      0x80, 1, 2,              // create a key
      1,    0, 3, 2,    0, 6,  // create a path
      2,    5, 4, 0x53,        // set a value
      0x83, 3, 0, 0x28,        // set an old value
      0x82, 1, 5, 0x3A,        // set a value of several pieces
      4,    3, 1,              // delete a value
      0x86, 1, 2,              // replace a key
      5,    1,                 // delete a key
  };
  const std::vector<Seed> hives = HiveSeeds();
  for (const Seed& hive : hives) seeds.push_back({hive.name, Joined(operations, hive.bytes)});
  const Bytes many = {63, 0, 3, 5, 1, 5, 9};  // create many keys, delete two
  seeds.push_back({"many", Joined(many, hives.front().bytes)});
  return seeds;
}

}  // namespace

const Harness kHiveChangeHarness = {"hive_change", 64 * 1024, RunHiveChange, HiveChangeSeeds, MutateHiveChange};

}  // namespace quillbox
