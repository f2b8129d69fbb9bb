// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer's entry points for the harness that the build names in QUILLBOX_HARNESS.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "harness.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t limit);

namespace {

using quillbox::Bytes;

void ByLibFuzzer(Bytes& bytes, std::size_t limit) {
  const std::size_t size = std::min(bytes.size(), limit);
  bytes.resize(limit);
  bytes.resize(LLVMFuzzerMutate(bytes.data(), size, limit));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size <= quillbox::QUILLBOX_HARNESS.maxLength) quillbox::QUILLBOX_HARNESS.run({data, size});
  return 0;
}

// libFuzzer gives the signature.
// NOLINTNEXTLINE(bugprone-easily-swappable-parameters)
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t limit, unsigned seed) {
  limit = std::min(limit, quillbox::QUILLBOX_HARNESS.maxLength);
  const auto mutate = quillbox::QUILLBOX_HARNESS.mutate;
  if (mutate == nullptr) return LLVMFuzzerMutate(data, std::min(size, limit), limit);
  Bytes input(data, data + std::min(size, limit));
  quillbox::Mutation mutation(seed, ByLibFuzzer);
  mutate(input, limit, mutation);
  input.resize(std::min(input.size(), limit));
  std::copy(input.begin(), input.end(), data);
  return input.size();
}
