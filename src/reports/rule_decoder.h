// Message rules in words. Outlook Express stores what a rule tests and does as numbers; the tables that give them their
// sentences, for mail and news side by side, are in rule_decoder.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/reg_value.h"
#include "text/code_page.h"

namespace quillbox {

enum class RuleSet { Mail, News };

/// The stored values of a criterion or an action.
struct RuleEntry {
  RegValue type;
  RegValue flags;  ///< criteria only
  RegValue value;
};

struct CriterionTexts {
  std::string type, flags, value;
};
struct ActionTexts {
  std::string type, value;
};

/// The texts of a criterion; those of a number that has no row in its table are empty. `codePage` is that of stored
/// word lists. Throws Error for a priority or a kind of security that is no number.
CriterionTexts DecodeCriterion(RuleSet set, const RuleEntry& entry, const CodePage& codePage);
ActionTexts DecodeAction(RuleSet set, const RuleEntry& entry);

/// "Enabled" of a rule in words.
std::string EnabledText(const RegValue& enabled);

/// A value of any type as text: digits of a number, bytes as UTF-16.
std::string TextOf(const RegValue& value);
/// A value as a number: nothing stored is 0; no number for what is none.
std::optional<std::int32_t> NumberOf(const RegValue& value);
/// NUL-ended texts of 8-bit bytes, one after the other, with a blank for each NUL.
std::string ByteArrayToString(const Bytes& bytes, const CodePage& codePage);

}  // namespace quillbox
