#include "reports/rule_reader.h"

#include "core/identity_catalogue.h"

namespace quillbox {

std::vector<RegistryPath> RuleReader::EnumRules(const std::string& userId) {
  const char* set = set_ == RuleSet::Mail ? "\\Rules\\Mail" : "\\Rules\\News";
  return EnumKeys(CurrentUser(IdentitySettingsKey(userId) + set));
}

std::vector<RegistryPath> RuleReader::EnumKeys(const RegistryPath& parent) {
  std::vector<RegistryPath> keys;
  const OpenResult opened = store_.OpenKey(parent);
  if (opened.status != Status::Success) return keys;
  for (const std::string& name : store_.EnumSubKeys(opened.key)) keys.push_back(parent.Child(name));
  return keys;
}

RegValue RuleReader::Read(const RegistryPath& key, const char* value) {
  return store_.RegistryGetKeyValue(key, value, ExpandableText::Ignore);
}

RuleHeader RuleReader::Header(const RegistryPath& rule) {
  const std::optional<std::int32_t> version = NumberOf(Read(rule, "Version"));
  return {.number = rule.subkey.substr(rule.subkey.rfind('\\') + 1),
          .name = TextOf(Read(rule, "Name")),
          .enabled = EnabledText(Read(rule, "Enabled")),
          .version = version ? std::to_string(*version) : std::string()};
}

CriterionTexts RuleReader::Criterion(const RegistryPath& entry) {
  return DecodeCriterion(set_, {Read(entry, "Type"), Read(entry, "Flags"), Read(entry, "Value")}, codePage_);
}

ActionTexts RuleReader::Action(const RegistryPath& entry) {
  return DecodeAction(set_, {Read(entry, "Type"), {}, Read(entry, "Value")});
}

}  // namespace quillbox
