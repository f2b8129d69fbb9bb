// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes message rules. Outlook Express stores what a rule tests and does as numbers; rule_decoder.cpp has the tables
// of their sentences, for mail and news side by side.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/reg_value.h"
#include "text/code_page.h"
#include "text/unicode.h"

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

/// The texts of a criterion; a number without a row in its table has empty texts. `codePage` is the code page of stored
/// word lists. Throws Error for a priority or a kind of security that is not a number.
CriterionTexts DecodeCriterion(RuleSet set, const RuleEntry& entry, const CodePage& codePage);
ActionTexts DecodeAction(RuleSet set, const RuleEntry& entry);

/// The text of a rule's value "Enabled".
std::string EnabledText(const RegValue& enabled);

/// A value of any type as text: digits of a number, bytes as UTF-16.
std::string TextOf(const RegValue& value);
/// A value as a number; a missing value is 0. Nothing for a value that is not a number.
std::optional<std::int32_t> NumberOf(const RegValue& value);
/// A run of NUL-terminated 8-bit texts as one text, with a blank for each NUL.
std::string ByteArrayToString(const Bytes& bytes, const CodePage& codePage);

}  // namespace quillbox
