// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/rule_reader.h"

#include <cstdint>
#include <optional>

#include "core/identity_catalogue.h"

namespace quillbox {

std::vector<RegistryPath> RuleReader::EnumRules(const std::string& userId) {
  const char* set = set_ == RuleSet::Mail ? "\\Rules\\Mail" : "\\Rules\\News";
  return EnumKeys(CurrentUser(IdentitySettingsKey(userId) + set));
}

std::vector<RegistryPath> RuleReader::EnumKeys(const RegistryPath& parent) {
  std::vector<RegistryPath> keys;
  const OpenResult opened = store_.OpenKey(parent, Access::Read);
  if (opened.status != Status::Success) return keys;
  for (const std::string& name : store_.EnumSubKeys(opened.key)) keys.push_back(parent.Child(name));
  return keys;
}

RegValue RuleReader::Read(const Key& key, const char* value) {
  return store_.ReadValue(key, value, ExpandableText::Ignore);
}

RuleHeader RuleReader::Header(const RegistryPath& rule) {
  const Key key = Open(rule);
  const std::optional<std::int32_t> version = NumberOf(Read(key, "Version"));
  return {.number = rule.subkey.substr(rule.subkey.rfind('\\') + 1),
          .name = TextOf(Read(key, "Name")),
          .enabled = EnabledText(Read(key, "Enabled")),
          .version = version ? std::to_string(*version) : std::string()};
}

CriterionTexts RuleReader::Criterion(const RegistryPath& entry) {
  const Key key = Open(entry);
  return DecodeCriterion(set_, {Read(key, "Type"), Read(key, "Flags"), Read(key, "Value")}, codePage_);
}

ActionTexts RuleReader::Action(const RegistryPath& entry) {
  const Key key = Open(entry);
  return DecodeAction(set_, {Read(key, "Type"), {}, Read(key, "Value")});
}

}  // namespace quillbox
