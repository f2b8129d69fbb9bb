#include "reports/rules_report.h"

#include "text/error.h"

namespace quillbox {
namespace {

/// The lines of a report. Nothing in them is escaped for HTML: what they show is written as it is stored.
struct Template {
  const char* head;
  const char* rule;       // of each rule, before its criteria
  const char* criterion;  // of each
  const char* action;     // of each
  const char* ruleEnd;
  const char* end;
};

constexpr Template kText = {
    .head =
        "%set% Rules Text File created: %created%\n"
        " \n"
        "{USER_ID}: %userId%\n",
    .rule =
        "Number: %number%\n"
        "Name: %name%\n"
        "Enabled: %enabled%\n"
        "Version: %version%\n"
        " \n",
    .criterion =
        "CriteriaType: %type%\n"
        "CriteriaFlags: %flags%\n"
        "CriteriaValue: %value%\n",
    .action =
        " \n"
        "ActionsType: %type%\n"
        "ActionsValue: %value%\n"
        " \n",
    .ruleEnd =
        " \n"
        " \n"
        " \n",
    .end =
        " \n"
        "End Of File\n",
};

constexpr Template kMailPage = {
    .head =
        "<HTML>\n"
        "<BODY> \n"
        "<DIV>&nbsp;</DIV> \n"
        "<DIV>Mail Rules Text File created: %created%</DIV>\n"
        "<DIV>&nbsp;</DIV> \n"
        "<DIV>{USER_ID}: %userId%</DIV>\n",
    .rule =
        "<DIV>Number: %number%</DIV>\n"
        "<DIV>Name: %name%</DIV>\n"
        "<DIV>Enabled: %enabled%</DIV>\n"
        "<DIV>Version: %version%</DIV>\n"
        "<DIV>&nbsp;</DIV> \n",
    .criterion =
        "<DIV>CriteriaType: %type%</DIV>\n"
        "<DIV>CriteriaFlags: %flags%</DIV>\n"
        "<DIV>CriteriaValue: %value%</DIV>\n",
    .action =
        "<DIV>&nbsp;</DIV> \n"
        "<DIV>ActionsType: %type%</DIV>\n"
        "<DIV>ActionsValue: %value%</DIV>\n"
        "<DIV>&nbsp;</DIV>\n",
    .ruleEnd =
        "<DIV>&nbsp;</DIV>\n"
        "<DIV>&nbsp;</DIV>\n"
        "<DIV>&nbsp;</DIV>\n",
    .end =
        "<DIV>&nbsp;</DIV>\n"
        "<DIV>End Of File</DIV>\n",
};

constexpr Template kNewsPage = {
    .head =
        "<DIV>News Rules Text File created: %created%</DIV>\n"
        "<DIV>&nbsp;</DIV> \n"
        "<DIV>{USER_ID}: %userId%</DIV>\n",
    .rule =
        "<DIV>Number: %number%</DIV>\n"
        "<DIV>Name: %name%</DIV>\n"
        "<DIV>Enabled: %enabled%</DIV>\n"
        "<DIV>Version: %version%</DIV>\n"
        "<DIV>&nbsp;</DIV>\n",
    .criterion = kMailPage.criterion,
    .action =
        "<DIV>&nbsp;</DIV>\n"
        "<DIV>ActionsType: %type%</DIV>\n"
        "<DIV>ActionsValue: %value%</DIV>\n"
        " \n",
    .ruleEnd = kMailPage.ruleEnd,
    .end = kMailPage.end,
};

const Template& TemplateOf(RuleSet set, ReportFormat format) {
  if (format == ReportFormat::Text) return kText;
  return set == RuleSet::Mail ? kMailPage : kNewsPage;
}

void AppendRule(std::string& text, const Template& lines, RuleReader& reader, const RegistryPath& rule) {
  const RuleHeader header = reader.Header(rule);
  AppendLines(
      text, lines.rule,
      {{"number", header.number}, {"name", header.name}, {"enabled", header.enabled}, {"version", header.version}});
  for (const RegistryPath& entry : reader.EnumCriteria(rule)) {
    const CriterionTexts criterion = reader.Criterion(entry);
    AppendLines(text, lines.criterion,
                {{"type", criterion.type}, {"flags", criterion.flags}, {"value", criterion.value}});
  }
  for (const RegistryPath& entry : reader.EnumActions(rule)) {
    const ActionTexts action = reader.Action(entry);
    AppendLines(text, lines.action, {{"type", action.type}, {"value", action.value}});
  }
  AppendLines(text, lines.ruleEnd);
}

}  // namespace

RulesReport MakeRulesReport(RuleReader& reader, const std::string& userId, const std::string& created,
                            ReportFormat format) {
  const Template& lines = TemplateOf(reader.Set(), format);
  const std::string_view set = reader.Set() == RuleSet::Mail ? "Mail" : "News";
  RulesReport report;
  AppendLines(report.text, lines.head, {{"set", set}, {"created", created}, {"userId", userId}});
  try {
    for (const RegistryPath& rule : reader.EnumRules(userId)) AppendRule(report.text, lines, reader, rule);
  } catch (const Error& error) {
    report.brokenOff = Describe(error);
    return report;
  }
  AppendLines(report.text, lines.end);
  return report;
}

}  // namespace quillbox
