// SPDX-License-Identifier: GPL-3.0-or-later
#include "hive_reading.h"

#include <cstring>
#include <optional>

#include "harness.h"
#include "registry/hive_tools.h"
#include "text/error.h"

namespace quillbox {
namespace {

class Digest {
 public:
  void Add(std::uint64_t number) { hash_ = (hash_ ^ number) * 0x9E3779B97F4A7C15U + (hash_ >> 29); }
  template <typename Range>
  void AddAll(const Range& range) {
    Add(range.size());
    std::size_t at = 0;
    std::uint64_t word = 0;
    for (; at + sizeof(word) <= range.size(); at += sizeof(word)) {
      std::memcpy(&word, range.data() + at, sizeof(word));
      Add(word);
    }
    word = 0;
    if (at < range.size()) std::memcpy(&word, range.data() + at, range.size() - at);
    Add(word);
  }
  std::uint64_t Result() const { return hash_; }

 private:
  std::uint64_t hash_ = 0;
};

void ReadValues(const Hive& hive, HiveKey key, Digest& digest) {
  for (std::size_t at = 0; at < hive.ValueCount(key); ++at) {
    const HiveValue value = hive.ValueAt(key, at);
    digest.AddAll(value.name);
    digest.Add(value.type);
    digest.AddAll(value.data);
    if (at > 8) continue;
    const std::optional<HiveValue> byName = hive.Value(key, value.name);
    Require(byName && EqualIgnoreCase(byName->name, value.name), "a value is found by its name");
  }
}

bool CanBeLookedUp(const std::string& name) {
  return !name.empty() && name.find('\\') == std::string::npos;
}

void ReadKey(const Hive& hive, HiveKey key, Digest& digest) {
  digest.AddAll(hive.Name(key));
  digest.Add(hive.Time(key));
  digest.AddAll(hive.ClassName(key));
  digest.AddAll(hive.Security(key));
  ReadValues(hive, key, digest);
  const std::vector<HiveKey> subkeys = hive.Subkeys(key);
  Require(subkeys.size() == hive.SubkeyCount(key), "all subkeys are read");
  digest.Add(subkeys.size());
  for (std::size_t at = 0; at < subkeys.size(); ++at) {
    Require(hive.Parent(subkeys[at]) == key, "a subkey's parent is the key");
    if (at <= 8) {
      Require(hive.SubkeyAt(key, at) == subkeys[at], "a subkey is the same by its number");
      const std::string name = hive.Name(subkeys[at]);
      const auto found = CanBeLookedUp(name) ? hive.Find(key, name) : subkeys[at];
      Require(found && EqualIgnoreCase(hive.Name(*found), name), "a subkey is found by its name");
    }
    ReadKey(hive, subkeys[at], digest);
  }
}

}  // namespace

std::uint64_t ReadAll(const Hive& hive) {
  Digest digest;
  ReadKey(hive, hive.Root(), digest);
  return digest.Result();
}

void RequireReloads(Hive& hive) {
  const std::uint64_t held = ReadAll(hive);
  const Bytes image = hive.Image(kTuesday);
  bool logsRead = false;
  std::optional<Hive> reloaded;
  try {
    reloaded = Hive::Load(image, "written", [&] {
      logsRead = true;
      return std::vector<HiveLogFile>();
    });
  } catch (const Error& error) {
    throw BrokenPromise("what was written opens: " + Describe(error));
  }
  Require(reloaded->Origin() == HiveOrigin::Clean && !logsRead, "what was written is clean");
  Require(!reloaded->Changed(), "a hive that was just opened is unchanged");
  Require(ReadAll(*reloaded) == held, "what was written holds what was in memory");
  Bytes again = reloaded->Image(kTuesday);
  SetBase(again, BaseField::kSequence1, Load32(image.data() + BaseField::kSequence1));
  SetBase(again, BaseField::kSequence2, Load32(image.data() + BaseField::kSequence2));
  Require(again == image, "opening what was written corrects nothing");
}

}  // namespace quillbox
