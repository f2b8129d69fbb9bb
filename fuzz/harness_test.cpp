// SPDX-License-Identifier: GPL-3.0-or-later
// Runs every harness briefly, on its seeds and changes of them, so that the harnesses keep building and passing where
// nobody fuzzes. Finding faults takes hours of engine.cpp.
#include "harness.h"

#include <gtest/gtest.h>

#include "all_harnesses.h"

namespace quillbox {
namespace {

constexpr unsigned kMutationsPerSeed = 100;

void ChangeBytes(Bytes& bytes, std::size_t limit, std::mt19937& random) {
  if (bytes.size() < limit && random() % 4 == 0) bytes.push_back(static_cast<std::uint8_t>(random()));
  if (!bytes.empty()) bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
}

class FuzzHarness : public testing::TestWithParam<const Harness*> {};

TEST_P(FuzzHarness, HoldsForItsSeedsAndWhatIsCloseToThem) {
  const Harness& harness = *GetParam();
  std::mt19937 random(1);
  const auto engine = [&](Bytes& bytes, std::size_t limit) { ChangeBytes(bytes, limit, random); };
  for (const Seed& seed : harness.seeds()) {
    SCOPED_TRACE(seed.name);
    ASSERT_LE(seed.bytes.size(), harness.maxLength);
    ASSERT_NO_THROW(harness.run(seed.bytes));
    Bytes input = seed.bytes;
    for (unsigned round = 0; round < kMutationsPerSeed; ++round) {
      Mutation mutation(round, engine);
      if (round % 8 == 0) input = seed.bytes;
      if (harness.mutate != nullptr) {
        harness.mutate(input, harness.maxLength, mutation);
      } else {
        mutation.ByEngine(input, harness.maxLength);
      }
      ASSERT_LE(input.size(), harness.maxLength);
      ASSERT_NO_THROW(harness.run(input)) << "round " << round;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, FuzzHarness, testing::ValuesIn(kAllHarnesses),
                         [](const auto& harness) { return std::string(harness.param->name); });

}  // namespace
}  // namespace quillbox
