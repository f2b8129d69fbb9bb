// SPDX-License-Identifier: GPL-3.0-or-later
#include "hive_seeds.h"

#include "registry/hive_tools.h"

namespace quillbox {
namespace {

/// The root's list of subkeys as an index of leaves, which Hive writes only for hundreds of subkeys.
Bytes WithLeafIndex(Bytes file) {
  Hive hive = Hive::Load(file, "seed");
  hive.SetValue(hive.Root(), "room", 3, Bytes(32));
  file = hive.Image(kMonday);
  // The value's data cell becomes the index, and the value's data become empty.
  const KeyCell root = RootCell(hive);
  const std::size_t last = Get(file, root, KeyField::kValueCount) - 1;
  const ValueCell value = Get(file, Get(file, root, KeyField::kValueList), ValueEntry(last));
  const ListCell index(Get(file, value, ValueField::kData));
  Put(file, value, ValueField::kDataSize, kInlineData);
  StoreTag(Record(file, index), kLeafIndexTag);
  Put(file, index, ListField::kCount, 1);
  Put(file, index, IndexEntry(0), Get(file, root, KeyField::kSubkeyList));
  Put(file, root, KeyField::kSubkeyList, index);
  return file;
}

/// The root's list of subkeys without hashes.
Bytes WithPlainLeaf(Bytes file) {
  const KeyCell root(Load32(&file[BaseField::kRoot]));
  MakePlain(file, Get(file, root, KeyField::kSubkeyList));
  return file;
}

Bytes BigValueHive() {
  Hive hive = SeedHive(5);
  hive.SetValue(hive.Root(), "big", 3, Pattern(Hive::kBigDataLimit + 100));
  return hive.Image(kMonday);
}

Bytes DeepHive() {
  Hive hive = EmptyHive(3);
  std::string path = "a";
  for (int depth = 0; depth < 30; ++depth) path += "\\a";
  hive.CreatePath(hive.Root(), path);
  return hive.Image(kMonday);
}

Bytes WideHive() {
  Hive hive = EmptyHive(5);
  for (int number = 0; number < 30; ++number) {
    hive.SetValue(hive.CreatePath(hive.Root(), std::to_string(number * 7 % 30)), "n", 4, Pattern(4));
  }
  return hive.Image(kMonday);
}

}  // namespace

Hive SeedHive(std::uint32_t minor) {
  Hive hive = SmallHive(minor);
  const HiveKey key = *hive.Find(hive.Root(), "One\\Two\\\xD0\x96");
  hive.SetValue(key, "\xD0\x96", 3, Pattern(40));
  hive.SetValue(key, "none", 0, {});
  hive.CreatePath(hive.Root(), "Four");
  return hive;
}

std::vector<Seed> HiveSeeds() {
  const Bytes small = SeedHive(3).Image(kMonday);
  return {{"empty", EmptyHive(3).Image(kMonday)},
          {"small", small},
          {"small-1.5", SeedHive(5).Image(kMonday)},
          {"small-1.6", SeedHive(6).Image(kMonday)},
          {"plain-leaf", WithPlainLeaf(small)},
          {"leaf-index", WithLeafIndex(small)},
          {"big-value", BigValueHive()},
          {"deep", DeepHive()},
          {"wide", WideHive()}};
}

}  // namespace quillbox
