// SPDX-License-Identifier: GPL-3.0-or-later
// What every harness has: seeds, a way to change inputs that keeps them useful, and the promises that must hold for any
// input. engine.cpp runs a harness under the fuzzer; harness_test.cpp runs each briefly in the ordinary tests.
#pragma once

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "text/unicode.h"

namespace quillbox {

/// A promise of the code under test that did not hold. Never caught by a harness.
class BrokenPromise : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, const char* promise) {
  if (!holds) throw BrokenPromise(promise);
}

/// The randomness of one mutation, and the fuzzer's own mutator, for bytes that a harness knows nothing about.
class Mutation {
 public:
  /// Changes bytes, of which there may be up to the given number afterwards.
  using Engine = std::function<void(Bytes& bytes, std::size_t limit)>;

  Mutation(unsigned seed, Engine engine) : random_(seed), engine_(std::move(engine)) {}

  std::size_t Below(std::size_t limit) {
    return limit == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
  }
  bool OneIn(std::size_t count) { return Below(count) == 0; }
  void ByEngine(Bytes& bytes, std::size_t limit) { engine_(bytes, limit); }

 private:
  std::mt19937 random_;
  Engine engine_;
};

struct Seed {
  std::string name;  ///< a file name
  Bytes bytes;
};

struct Harness {
  const char* name;
  std::size_t maxLength;  ///< bytes; longer inputs are not tried
  /// Tries one input. Throws BrokenPromise, or what the code under test must never throw.
  void (*run)(ByteView input);
  std::vector<Seed> (*seeds)();
  /// Changes `input`, which stays within `limit` bytes. Null: the engine's mutator does.
  void (*mutate)(Bytes& input, std::size_t limit, Mutation& mutation) = nullptr;
};

extern const Harness kHiveHarness, kHiveChangeHarness, kHiveLogHarness, kRegTextHarness, kCommandLineHarness,
    kTextHarness, kRuleHarness, kStoreHarness, kMboxHarness, kMailHeaderHarness, kContactBookHarness, kCregHarness;

/// The parts of an input that are not the text under test, taken from its front.
class InputReader {
 public:
  explicit InputReader(ByteView bytes) : rest_(bytes) {}

  bool AtEnd() const { return rest_.empty(); }
  /// 0 at the end.
  std::uint8_t Byte() {
    if (rest_.empty()) return 0;
    const std::uint8_t byte = rest_.front();
    rest_ = rest_.subspan(1);
    return byte;
  }
  ByteView Take(std::size_t size) {
    const ByteView taken = rest_.first(std::min(size, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  ByteView Rest() const { return rest_; }

 private:
  ByteView rest_;
};

inline std::string TextFrom(ByteView bytes) {
  return {bytes.begin(), bytes.end()};
}
inline Bytes BytesFrom(std::string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace quillbox
