#include "hive_seeds.h"

#include "registry/hive_tools.h"

namespace quillbox {
namespace {

/// The root's list of subkeys as an index of leaves, which code writes only for hundreds of subkeys.
Bytes WithLeafIndex(Bytes file) {
  Hive hive = Hive::Load(file, "seed");
  hive.SetValue(hive.Root(), "room", 3, Bytes(32));
  file = hive.Image(kMonday);
  const std::uint32_t root = Load32(&file[BaseField::kRoot]);
  // The value's data cell becomes the index; the value is then of no size.
  std::uint8_t* key = Record(file, root);
  const std::uint32_t values = Load32(key + KeyField::kValueList);
  const std::uint32_t count = Load32(key + KeyField::kValueCount);
  std::uint8_t* value = Record(file, Load32(Record(file, values) + 4 * (count - 1)));
  const std::uint32_t index = Load32(value + ValueField::kData);
  Store32(value + ValueField::kDataSize, kInlineData);
  std::uint8_t* list = Record(file, index);
  Store16(list, kLeafIndexTag);
  Store16(list + ListField::kCount, 1);
  Store32(list + ListField::kEntries, Load32(key + KeyField::kSubkeyList));
  Store32(key + KeyField::kSubkeyList, index);
  return file;
}

/// Every leaf as a list without hashes.
Bytes WithPlainLeaf(Bytes file) {
  std::uint8_t* key = Record(file, Load32(&file[BaseField::kRoot]));
  std::uint8_t* list = Record(file, Load32(key + KeyField::kSubkeyList));
  for (std::size_t at = 0; at < Load16(list + ListField::kCount); ++at) {
    Store32(list + ListField::kEntries + 4 * at, Load32(list + ListField::kEntries + 8 * at));
  }
  Store16(list, kPlainLeafTag);
  return file;
}

Bytes BigValueHive() {
  Hive hive = SmallHive(5);
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

Hive SmallHive(std::uint32_t minor) {
  Hive hive = EmptyHive(minor);
  const HiveKey key = hive.CreatePath(hive.Root(), "One\\Two\\\xD0\x96");
  hive.SetValue(key, "text", 1, Utf16Bytes(std::u16string_view(u"text", 5)));
  hive.SetValue(key, "", 4, Pattern(4));
  hive.SetValue(key, "\xD0\x96", 3, Pattern(40));
  hive.SetValue(key, "none", 0, {});
  hive.CreatePath(hive.Root(), "One\\Three");
  hive.CreatePath(hive.Root(), "Four");
  return hive;
}

std::vector<Seed> HiveSeeds() {
  const Bytes small = SmallHive(3).Image(kMonday);
  return {{"empty", EmptyHive(3).Image(kMonday)},
          {"small", small},
          {"small-1.5", SmallHive(5).Image(kMonday)},
          {"small-1.6", SmallHive(6).Image(kMonday)},
          {"plain-leaf", WithPlainLeaf(small)},
          {"leaf-index", WithLeafIndex(small)},
          {"big-value", BigValueHive()},
          {"deep", DeepHive()},
          {"wide", WideHive()}};
}

}  // namespace quillbox
