// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/code_page.h"

#include <algorithm>
#include <array>
#include <map>

#include "text/code_page_converter.h"
#include "text/code_page_table.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::uint8_t kLeastTrailByte = 0x30;

std::string PairBytes(unsigned code) {
  std::string bytes;
  if (code > 0xFF) bytes += static_cast<char>(code >> 8);
  bytes += static_cast<char>(code & 0xFF);
  return bytes;
}

}  // namespace

/// Both directions, worked out once. A code is a byte, or lead byte * 256 + trail byte.
struct CodePage::Tables {
  static constexpr char16_t kNothing = 0xFFFF;

  std::array<bool, 256> lead{};
  std::array<char16_t, 256> single{};
  std::vector<char16_t> pairs;  ///< by code; kNothing where the pair has no meaning; empty for single-byte pages
  std::map<char16_t, std::uint16_t> codes;

  explicit Tables(unsigned number);

 private:
  void FillSingles(unsigned number, CodePageConverter& converter);
  void FillPairs(const DoubleBytePage& page, CodePageConverter& converter);
  void FillUserDefined(const DoubleBytePage& page);
  void FillCodes(unsigned number, CodePageConverter& converter);
};

CodePage::Tables::Tables(unsigned number) {
  const auto refuse = [number](const char* why) {
    throw Error("preparing the system's code page", {"code page " + std::to_string(number), {}, {}}, why);
  };
  if (!IsKnownCodePage(number)) refuse("it is not one that Windows has for its 8-bit text");
  const std::unique_ptr<CodePageConverter> converter = OpenCodePage(number);
  if (!converter) refuse("this computer has no table for it");
  FillSingles(number, *converter);
  if (const DoubleBytePage* page = FindDoubleBytePage(number)) {
    FillPairs(*page, *converter);
    FillUserDefined(*page);
  }
  FillCodes(number, *converter);
}

void CodePage::Tables::FillSingles(unsigned number, CodePageConverter& converter) {
  const DoubleBytePage* page = FindDoubleBytePage(number);
  for (unsigned code = 0; code < 256; ++code) {
    const auto byte = static_cast<std::uint8_t>(code);
    single[byte] = static_cast<char16_t>(byte);
    if (byte < 0x80) continue;
    lead[byte] = page && page->leads.Has(byte);
    if (!lead[byte]) single[byte] = converter.Decode(PairBytes(byte)).value_or(single[byte]);
  }
  for (const CodeRun& run : SingleByteRuns()) {
    if (run.page != number) continue;
    for (unsigned code = run.first; code <= run.last; ++code) {
      single[code] = static_cast<char16_t>(run.character + (code - run.first));
    }
  }
}

void CodePage::Tables::FillPairs(const DoubleBytePage& page, CodePageConverter& converter) {
  pairs.assign(0x10000, kNothing);
  for (unsigned code = 0x8000; code < 0x10000; ++code) {
    if (lead[code >> 8] && page.trails.Has(code & 0xFF))
      pairs[code] = converter.Decode(PairBytes(code)).value_or(kNothing);
  }
}

void CodePage::Tables::FillUserDefined(const DoubleBytePage& page) {
  for (const CodeRun& run : UserDefinedRuns()) {
    if (run.page != page.number) continue;
    char16_t next = run.character;
    for (unsigned code = run.first; code <= run.last; ++code) {
      if (pairs[code] == kNothing && page.trails.Has(code & 0xFF)) pairs[code] = next++;
    }
  }
}

void CodePage::Tables::FillCodes(unsigned number, CodePageConverter& converter) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    if (!lead[byte]) codes.emplace(single[byte], static_cast<std::uint16_t>(byte));
  }
  for (unsigned code = 0; code < pairs.size(); ++code) {
    const char16_t character = pairs[code];
    if (character == kNothing || codes.emplace(character, static_cast<std::uint16_t>(code)).second) continue;
    // Several codes for one character: the host knows which one is to be written.
    if (converter.Encode(character) == PairBytes(code)) codes[character] = static_cast<std::uint16_t>(code);
  }
  for (const PreferredCode& preferred : PreferredCodes()) {
    if (preferred.page == number) codes[pairs[preferred.code]] = preferred.code;
  }
}

CodePage::CodePage(unsigned number) : number_(number), tables_(std::make_shared<const Tables>(number)) {}

bool CodePage::IsDoubleByte() const {
  return FindDoubleBytePage(number_) != nullptr;
}

std::string CodePage::Decode(std::string_view bytes) const {
  std::u16string units;
  units.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<std::uint8_t>(bytes[i]);
    if (!tables_->lead[byte]) {
      units += tables_->single[byte];
      continue;
    }
    const auto trail = i + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[i + 1]) : std::uint8_t{0};
    const char16_t character = tables_->pairs[static_cast<std::size_t>(byte) << 8 | trail];
    units += character == Tables::kNothing ? char16_t{0xFFFD} : character;
    // A byte that cannot be a second one (the end of a line, say) is not swallowed.
    if (trail >= kLeastTrailByte) ++i;
  }
  return ToUtf8(units);
}

std::size_t CodePage::WholeCharacters(std::string_view bytes) const {
  if (!IsDoubleByte()) return bytes.size();
  std::size_t at = 0;
  while (at < bytes.size()) {
    const bool isLead = tables_->lead[static_cast<std::uint8_t>(bytes[at])];
    if (isLead && at + 1 == bytes.size()) return at;
    at += isLead && static_cast<std::uint8_t>(bytes[at + 1]) >= kLeastTrailByte ? 2 : 1;
  }
  return at;
}

std::optional<std::string> CodePage::Encode(std::string_view text) const {
  std::string bytes;
  for (const char16_t unit : ToUtf16(text)) {
    const auto found = tables_->codes.find(unit);
    if (found == tables_->codes.end()) return std::nullopt;
    bytes += PairBytes(found->second);
  }
  return bytes;
}

std::string CodePage::EncodeLossy(std::string_view text) const {
  std::string bytes;
  const std::u16string units = ToUtf16(text);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto found = tables_->codes.find(units[i]);
    if (found != tables_->codes.end()) {
      bytes += PairBytes(found->second);
      continue;
    }
    bytes += '?';
    const bool pair = (units[i] & 0xFC00) == 0xD800 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
    if (pair) ++i;
  }
  return bytes;
}

}  // namespace quillbox
