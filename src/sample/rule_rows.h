// The sample's message rules and blocked senders, chosen so that every kind of criterion and action occurs.
#pragma once

#include "registry/hive.h"
#include "text/code_page.h"

namespace quillbox {

/// Writes the rules and blocked senders of the default identity below `settings`, its "Outlook Express\5.0" key. Word
/// and people lists are stored as text in `codePage`.
void WriteHomeRules(Hive& hive, HiveKey settings, const CodePage& codePage);
/// The few rules of the second identity, likewise.
void WriteOfficeRules(Hive& hive, HiveKey settings, const CodePage& codePage);

}  // namespace quillbox
