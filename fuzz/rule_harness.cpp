// SPDX-License-Identifier: GPL-3.0-or-later
// A message rule's stored values: types, flags and values of any kind are described in words.
#include "core/reg_value.h"
#include "harness.h"
#include "reports/rule_decoder.h"
#include "text/error.h"

namespace quillbox {
namespace {

/// A value as the registry store gives it: a byte for the kind, then a number or a length and that many bytes.
RegValue ValueFrom(InputReader& reader) {
  const std::uint8_t kind = reader.Byte();
  switch (kind % 4) {
    case 0:
      return {};
    case 1: {
      std::uint32_t number = 0;
      for (const std::uint8_t byte : reader.Take(kind < 128 ? 1 : 4)) number = number << 8 | byte;
      return {static_cast<std::int32_t>(number)};
    }
    case 2:
      // The store's texts come from UTF-16.
      return {ToUtf8(Utf16FromBytes(reader.Take(reader.Byte())))};
    default: {
      const ByteView bytes = reader.Take(reader.Byte());
      return {Bytes(bytes.begin(), bytes.end())};
    }
  }
}

void RequireText(const std::string& text) {
  Require(IsInnerText(text), "words of a rule are text");
}

void RunRule(ByteView input) {
  static const CodePage kWestern(1252), kJapanese(932);
  InputReader reader(input);
  const std::uint8_t form = reader.Byte();
  const RuleSet set = (form & 1) != 0 ? RuleSet::News : RuleSet::Mail;
  const CodePage& page = (form & 2) != 0 ? kJapanese : kWestern;
  while (!reader.AtEnd()) {
    RuleEntry entry;
    entry.type = ValueFrom(reader);
    entry.flags = ValueFrom(reader);
    entry.value = ValueFrom(reader);
    try {
      const CriterionTexts criterion = DecodeCriterion(set, entry, page);
      for (const std::string& text : {criterion.type, criterion.flags, criterion.value}) RequireText(text);
    } catch (const Error& error) {
      RequireText(Describe(error));
    }
    const ActionTexts action = DecodeAction(set, entry);
    for (const std::string& text : {action.type, action.value, EnabledText(entry.flags)}) RequireText(text);
  }
}

std::vector<Seed> RuleSeeds() {
  return {{"words", {0, 1, 8, 1, 0, 3, 6, 'a', 'b', 0, 'c', 'd', 0}},
          {"people", {1, 1, 12, 1, 1, 3, 4, 'x', '@', 'y', 0}},
          {"japanese", {2, 1, 8, 1, 2, 3, 4, 0x82, 0xA0, 0x83, 0}},
          {"priority", {0, 1, 13, 0, 2, 2, '1', 0, 1, 31, 0, 1, 2}},
          {"size", {0, 1, 15, 0, 1, 99}},
          {"colour", {0, 1, 10, 0, 1, 14, 1, 17, 0, 1, 2, 1, 2, 0, 2, 4, 'a', 0, 'b', 0}},
          {"no-number", {0, 1, 13, 0, 3, 2, 'x', 0}}};
}

}  // namespace

const Harness kRuleHarness = {"rule", 1024, RunRule, RuleSeeds};

}  // namespace quillbox
