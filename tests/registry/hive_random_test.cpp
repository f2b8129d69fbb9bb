#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "registry/hive_tools.h"

namespace quillbox {
namespace {

/// What a hive should hold. The map's order is the one in which the hive must list its keys.
struct ModelKey {
  std::string name;
  std::map<std::u16string, ModelKey> subkeys;
  std::vector<HiveValue> values;

  void AppendTo(std::vector<std::string>& lines, const std::string& path) const {
    lines.push_back(path);
    for (const HiveValue& value : values) lines.push_back(ValueLine(path, value));
    for (const auto& [upper, subkey] : subkeys) subkey.AppendTo(lines, path + "\\" + subkey.name);
  }
};

std::u16string Upper(const std::string& name) {
  return UpperCase(ToUtf16(name));
}

/// Does the same to a hive and to the model.
class TwoTrees {
 public:
  TwoTrees(std::uint32_t minor, const std::mt19937& random) : hive_(EmptyHive(minor)), random_(random) {}

  void Step() {
    const auto [key, model] = PickKey();
    switch (Number(16)) {
      case 0:
        DeleteBelow(key, *model);
        break;
      case 1:
      case 2:
        DeleteValue(key, *model);
        break;
      case 3:
        if (Number(8) == 0) Replace(key, *model);
        break;
      case 4:
      case 5:
      case 6:
      case 7:
      case 8:
        SetValue(key, *model);
        break;
      default:
        Create(key, *model);
    }
  }

  void Reload() {
    const Bytes image = hive_.Image(kTuesday);
    hive_ = Hive::Load(image, "reloaded");
    ASSERT_EQ(hive_.Origin(), HiveOrigin::Clean);
    Bytes again = hive_.Image(kTuesday);
    SetBase(again, BaseField::kSequence1, Load32(image.data() + BaseField::kSequence1));
    SetBase(again, BaseField::kSequence2, Load32(image.data() + BaseField::kSequence2));
    ASSERT_TRUE(again == image) << "opening corrected a count of a security descriptor";
    const Hive salvaged = Hive::Load(WithBadPage(image), "salvaged", {}, DamagedParts::LeaveOut);
    ASSERT_EQ(salvaged.DamageCount(), 1U);
    ASSERT_EQ(Lines(salvaged, true), Lines(hive_, true));
  }

  void Compare() const {
    std::vector<std::string> expected;
    model_.AppendTo(expected, "");
    ASSERT_EQ(Lines(hive_), expected);
  }

 private:
  std::size_t Number(std::size_t below) { return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_); }

  std::string Name() {
    static const std::vector<std::string> kPieces = {
        "a", "B", "z", "_", "7", "\xC3\xA9", "\xC3\xBF", "\xD0\x96", "\xED\xA0\x80", "\xF0\x9F\x98\x80", "longer "};
    std::string name = kPieces[Number(kPieces.size())];
    for (std::size_t count = Number(3); count > 0; --count) name += kPieces[Number(kPieces.size())];
    return name;
  }

  std::pair<HiveKey, ModelKey*> PickKey() {
    HiveKey key = hive_.Root();
    ModelKey* model = &model_;
    for (std::size_t depth = Number(5); depth > 0 && !model->subkeys.empty(); --depth) {
      auto next = std::next(model->subkeys.begin(), static_cast<std::ptrdiff_t>(Number(model->subkeys.size())));
      key = *hive_.Find(key, next->second.name);
      model = &next->second;
    }
    return {key, model};
  }

  void Create(HiveKey key, ModelKey& model) {
    const std::string name = Name();
    hive_.CreateSubkey(key, name);
    ModelKey& made = model.subkeys[Upper(name)];
    if (made.name.empty()) made.name = name;
  }

  void SetValue(HiveKey key, ModelKey& model) {
    static const std::vector<std::size_t> kSizes = {0, 1, 4, 5, 8, 60, 700, 16344, 16345, 32688, 50000};
    const std::size_t size = kSizes[Number(Number(6) == 0 ? kSizes.size() : 7)];
    const HiveValue value{Number(5) == 0 ? "" : Name(), static_cast<std::uint32_t>(Number(12)),
                          Pattern(size, Variant{Number(256)})};
    hive_.SetValue(key, value.name, value.type, value.data);
    const auto old = FindIn(model, value.name);
    if (old == model.values.end()) {
      model.values.push_back(value);
    } else {
      old->type = value.type;
      old->data = value.data;
    }
  }

  void DeleteValue(HiveKey key, ModelKey& model) {
    const std::string name = model.values.empty() ? Name() : model.values[Number(model.values.size())].name;
    const auto old = FindIn(model, name);
    ASSERT_EQ(hive_.DeleteValue(key, UpperCase(name)), old != model.values.end());
    if (old != model.values.end()) model.values.erase(old);
  }

  void DeleteBelow(HiveKey key, ModelKey& model) {
    if (model.subkeys.empty()) return;
    const auto gone = std::next(model.subkeys.begin(), static_cast<std::ptrdiff_t>(Number(model.subkeys.size())));
    hive_.DeleteTree(*hive_.Find(key, gone->second.name));
    model.subkeys.erase(gone);
  }

  void Replace(HiveKey key, ModelKey& model) {
    const auto [sourceKey, sourceModel] = PickKey();
    const Hive saved = Hive::Load(hive_.SaveSubtree(sourceKey, kMonday).Image(kMonday), "saved");
    const ModelKey copy = *sourceModel;
    hive_.ReplaceSubtree(key, saved);
    model.subkeys = copy.subkeys;
    model.values = copy.values;
  }

  static std::vector<HiveValue>::iterator FindIn(ModelKey& model, const std::string& name) {
    return std::find_if(model.values.begin(), model.values.end(),
                        [&](const HiveValue& value) { return Upper(value.name) == Upper(name); });
  }

  Hive hive_;
  ModelKey model_;
  std::mt19937 random_;
};

class HiveRandom : public testing::TestWithParam<std::uint32_t> {};

TEST_P(HiveRandom, HoldsWhatAModelOfItHolds) {
  for (unsigned seed = 1; seed <= 2; ++seed) {
    SCOPED_TRACE(seed);
    TwoTrees trees(GetParam(), std::mt19937(seed));
    for (int round = 0; round < 8; ++round) {
      for (int step = 0; step < 120; ++step) ASSERT_NO_FATAL_FAILURE(trees.Step());
      ASSERT_NO_FATAL_FAILURE(trees.Compare());
      ASSERT_NO_FATAL_FAILURE(trees.Reload());
      ASSERT_NO_FATAL_FAILURE(trees.Compare());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, HiveRandom, testing::Values(3U, 5U));

}  // namespace
}  // namespace quillbox
