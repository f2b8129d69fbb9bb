// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/temporary_name.h"

#include <array>
#include <cstdint>

#include "host/system_facts.h"

namespace quillbox {

namespace {

constexpr std::string_view kBeginning = ".quillbox-";
constexpr std::size_t kLetters = 6;

}  // namespace

std::string RandomLetters() {
  static constexpr std::string_view kAlphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  std::array<std::uint8_t, kLetters> bytes = {};
  FillRandom(bytes);
  std::string letters;
  for (const std::uint8_t byte : bytes) letters += kAlphabet[byte % kAlphabet.size()];
  return letters;
}

std::string RandomTemporaryName() {
  return std::string(kBeginning) + RandomLetters();
}

bool IsTemporaryName(std::string_view name) {
  return name.size() == kBeginning.size() + kLetters && name.starts_with(kBeginning);
}

}  // namespace quillbox
