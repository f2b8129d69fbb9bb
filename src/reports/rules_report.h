// SPDX-License-Identifier: GPL-3.0-or-later
// The report of all mail or news rules of an identity, as plain text or HTML.
#pragma once

#include <optional>
#include <string>

#include "reports/report_template.h"
#include "reports/rule_reader.h"

namespace quillbox {

struct RulesReport {
  std::string text;                      ///< up to its end, or to where it broke off
  std::optional<std::string> brokenOff;  ///< why it ends early
};

/// `created` is the time at which the report was made, as text. A criterion that cannot be decoded ends the report.
RulesReport MakeRulesReport(RuleReader& reader, const std::string& userId, const std::string& created,
                            ReportFormat format);

}  // namespace quillbox
