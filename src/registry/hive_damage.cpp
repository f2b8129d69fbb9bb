// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive_damage.h"

#include <utility>

#include "text/message_text.h"

namespace quillbox {

void AddDamage(HiveData& hive, std::string part, std::uint64_t offset, std::string fault) {
  if (++hive.damageCount > kMaxDamageNotes) return;
  hive.damage.push_back({std::move(part), offset, std::move(fault)});
}

void AddKeyDamage(HiveData& hive, KeyCell key, const std::string& value, std::uint64_t offset, std::string fault) {
  if (hive.damageCount >= kMaxDamageNotes) {
    ++hive.damageCount;
    return;
  }
  std::string part = key == hive.root ? "the root key" : ShortName(PathBelowRoot(hive, key));
  if (!value.empty()) part = key == hive.root ? value : part + " " + value;
  AddDamage(hive, OneLine(part), offset, std::move(fault));
}

std::string ValueInNotes(std::string_view name) {
  return name.empty() ? "(Default)" : "\"" + ShortName(name) + "\"";
}

}  // namespace quillbox
