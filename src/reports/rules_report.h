// The report of all message rules that an identity has, as plain text or as a page.
#pragma once

#include <optional>
#include <string>

#include "reports/report_template.h"
#include "reports/rule_reader.h"

namespace quillbox {

struct RulesReport {
  std::string text;                      ///< as far as it came
  std::optional<std::string> brokenOff;  ///< why it ends early
};

/// `created` is the time of the report in words. A criterion that cannot be decoded ends the report.
RulesReport MakeRulesReport(RuleReader& reader, const std::string& userId, const std::string& created,
                            ReportFormat format);

}  // namespace quillbox
