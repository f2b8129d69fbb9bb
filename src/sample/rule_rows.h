// SPDX-License-Identifier: GPL-3.0-or-later
// The sample's message rules and blocked senders, chosen so that every kind of criterion and action occurs.
#pragma once

#include <string>

#include "registry/hive.h"
#include "text/code_page.h"

namespace quillbox {

struct RuleTexts {
  CodePage codePage = CodePage();  ///< of word and people lists
  std::string documents = {};      ///< the person's folder of documents
};

/// Writes the rules and blocked senders of the default identity below `settings`, its "Outlook Express\5.0" key.
void WriteHomeRules(Hive& hive, HiveKey settings, const RuleTexts& texts);
/// The few rules of the second identity, likewise.
void WriteOfficeRules(Hive& hive, HiveKey settings, const RuleTexts& texts);

}  // namespace quillbox
