// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/rules_report.h"

#include <span>

#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kRules = "rules";
constexpr const char* kCriteria = "rules/criteria";
constexpr const char* kActions = "rules/actions";

constexpr TemplateRow kText[] = {
    {"%set% Rules Text File created: %created%"},
    {" "},
    {"{USER_ID}: %userId%"},
    {"Number: %number%", kRules},
    {"Name: %name%", kRules},
    {"Enabled: %enabled%", kRules},
    {"Version: %version%", kRules},
    {" ", kRules},
    {"CriteriaType: %type%", kCriteria},
    {"CriteriaFlags: %flags%", kCriteria},
    {"CriteriaValue: %value%", kCriteria},
    {" ", kActions},
    {"ActionsType: %type%", kActions},
    {"ActionsValue: %value%", kActions},
    {" ", kActions},
    {" ", kRules},
    {" ", kRules},
    {" ", kRules},
    {" "},
    {"End Of File"},
};

constexpr TemplateRow kMailPage[] = {
    {"<HTML>"},
    {"<BODY> "},
    {"<DIV>&nbsp;</DIV> "},
    {"<DIV>Mail Rules Text File created: %created%</DIV>"},
    {"<DIV>&nbsp;</DIV> "},
    {"<DIV>{USER_ID}: %userId%</DIV>"},
    {"<DIV>Number: %number%</DIV>", kRules},
    {"<DIV>Name: %name%</DIV>", kRules},
    {"<DIV>Enabled: %enabled%</DIV>", kRules},
    {"<DIV>Version: %version%</DIV>", kRules},
    {"<DIV>&nbsp;</DIV> ", kRules},
    {"<DIV>CriteriaType: %type%</DIV>", kCriteria},
    {"<DIV>CriteriaFlags: %flags%</DIV>", kCriteria},
    {"<DIV>CriteriaValue: %value%</DIV>", kCriteria},
    {"<DIV>&nbsp;</DIV> ", kActions},
    {"<DIV>ActionsType: %type%</DIV>", kActions},
    {"<DIV>ActionsValue: %value%</DIV>", kActions},
    {"<DIV>&nbsp;</DIV>", kActions},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV>End Of File</DIV>"},
};

constexpr TemplateRow kNewsPage[] = {
    {"<DIV>News Rules Text File created: %created%</DIV>"},
    {"<DIV>&nbsp;</DIV> "},
    {"<DIV>{USER_ID}: %userId%</DIV>"},
    {"<DIV>Number: %number%</DIV>", kRules},
    {"<DIV>Name: %name%</DIV>", kRules},
    {"<DIV>Enabled: %enabled%</DIV>", kRules},
    {"<DIV>Version: %version%</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>CriteriaType: %type%</DIV>", kCriteria},
    {"<DIV>CriteriaFlags: %flags%</DIV>", kCriteria},
    {"<DIV>CriteriaValue: %value%</DIV>", kCriteria},
    {"<DIV>&nbsp;</DIV>", kActions},
    {"<DIV>ActionsType: %type%</DIV>", kActions},
    {"<DIV>ActionsValue: %value%</DIV>", kActions},
    {" ", kActions},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>", kRules},
    {"<DIV>&nbsp;</DIV>"},
    {"<DIV>End Of File</DIV>"},
};

std::span<const TemplateRow> TemplateOf(RuleSet set, ReportFormat format) {
  if (format == ReportFormat::Text) return kText;
  return set == RuleSet::Mail ? std::span<const TemplateRow>(kMailPage) : kNewsPage;
}

/// Reads the header at once, criteria and actions when they are visited.
ReportScope ScopeOf(RuleReader& reader, const RegistryPath& rule) {
  const RuleHeader header = reader.Header(rule);
  const auto criteria = [&reader, &rule](const auto& fill) {
    for (const RegistryPath& entry : reader.EnumCriteria(rule)) {
      const CriterionTexts texts = reader.Criterion(entry);
      fill(ReportScope{{{"type", texts.type}, {"flags", texts.flags}, {"value", texts.value}}});
    }
  };
  const auto actions = [&reader, &rule](const auto& fill) {
    for (const RegistryPath& entry : reader.EnumActions(rule)) {
      const ActionTexts texts = reader.Action(entry);
      fill(ReportScope{{{"type", texts.type}, {"value", texts.value}}});
    }
  };
  return {{{"number", header.number}, {"name", header.name}, {"enabled", header.enabled}, {"version", header.version}},
          {{"criteria", criteria}, {"actions", actions}}};
}

}  // namespace

RulesReport MakeRulesReport(RuleReader& reader, const std::string& userId, const std::string& created,
                            ReportFormat format) {
  const auto rules = [&](const auto& fill) {
    for (const RegistryPath& rule : reader.EnumRules(userId)) fill(ScopeOf(reader, rule));
  };
  const char* const set = reader.Set() == RuleSet::Mail ? "Mail" : "News";
  RulesReport report;
  try {
    AppendReport(report.text, TemplateOf(reader.Set(), format),
                 {{{"set", set}, {"created", created}, {"userId", userId}}, {{kRules, rules}}});
  } catch (const Error& error) {
    report.brokenOff = Describe(error);
  }
  return report;
}

}  // namespace quillbox
