#include "host/temporary_name.h"

#include <array>
#include <cstdint>

#include "host/system_facts.h"

namespace quillbox {

namespace {

constexpr std::string_view kBeginning = ".quillbox-";
constexpr std::size_t kLetters = 6;

}  // namespace

std::string RandomTemporaryName() {
  static constexpr std::string_view kAlphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  std::array<std::uint8_t, kLetters> bytes = {};
  FillRandom(bytes);
  std::string name(kBeginning);
  for (const std::uint8_t byte : bytes) name += kAlphabet[byte % kAlphabet.size()];
  return name;
}

bool IsTemporaryName(std::string_view name) {
  return name.size() == kBeginning.size() + kLetters && name.starts_with(kBeginning);
}

}  // namespace quillbox
