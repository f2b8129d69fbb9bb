// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/marvin.h"

#include <bit>

#include "text/byte_order.h"

namespace quillbox {

namespace {

struct MarvinState {
  std::uint32_t low;
  std::uint32_t high;

  void Mix(std::uint32_t block) {
    low += block;
    high ^= low;
    low = std::rotl(low, 20) + high;
    high = std::rotl(high, 9) ^ low;
    low = std::rotl(low, 27) + high;
    high = std::rotl(high, 19);
  }
};

}  // namespace

std::uint64_t Marvin32(std::uint64_t seed, ByteView data) {
  MarvinState state{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32)};
  const std::size_t whole = data.size() / 4 * 4;
  for (std::size_t at = 0; at < whole; at += 4) state.Mix(Load32(data.data() + at));
  std::uint32_t last = 0x80;
  for (std::size_t at = data.size(); at > whole; --at) last = last << 8 | data[at - 1];
  state.Mix(last);
  state.Mix(0);
  return static_cast<std::uint64_t>(state.high) << 32 | state.low;
}

}  // namespace quillbox
