// SPDX-License-Identifier: GPL-3.0-or-later
// Reads and decodes the mail or news rules of an identity.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/reg_value.h"
#include "core/registry_store.h"
#include "reports/rule_decoder.h"
#include "text/code_page.h"
#include "text/registry_path.h"

namespace quillbox {

/// A rule's name and state, without its criteria and actions.
struct RuleHeader {
  std::string number;  ///< the name of its key
  std::string name, enabled, version;
};

class RuleReader {
 public:
  /// `codePage` is the code page of stored word lists.
  RuleReader(RegistryStore& store, RuleSet set, CodePage codePage)
      : store_(store), set_(set), codePage_(std::move(codePage)) {}

  RuleSet Set() const { return set_; }

  /// The keys of the identity's rules, in the registry's order; none when the rule set's key cannot be opened.
  std::vector<RegistryPath> EnumRules(const std::string& userId);
  RuleHeader Header(const RegistryPath& rule);
  /// The keys of a rule's criteria and actions, in the registry's order; none when their key cannot be opened.
  std::vector<RegistryPath> EnumCriteria(const RegistryPath& rule) { return EnumKeys(rule.Child("Criteria")); }
  std::vector<RegistryPath> EnumActions(const RegistryPath& rule) { return EnumKeys(rule.Child("Actions")); }
  /// Throws Error for a criterion that cannot be decoded.
  CriterionTexts Criterion(const RegistryPath& entry);
  ActionTexts Action(const RegistryPath& entry);

 private:
  std::vector<RegistryPath> EnumKeys(const RegistryPath& parent);
  Key Open(const RegistryPath& path) { return store_.OpenKey(path, Access::Read).key; }
  RegValue Read(const Key& key, const char* value);

  RegistryStore& store_;
  RuleSet set_;
  CodePage codePage_;
};

}  // namespace quillbox
