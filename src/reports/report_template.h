// SPDX-License-Identifier: GPL-3.0-or-later
// Reports are texts with gaps. A template is a table whose rows read like the report's lines; this fills the gaps,
// repeats rows for the items of a group, and writes the result as the disk's Windows would.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "platform/system_facts.h"
#include "text/win_path.h"

namespace quillbox {

enum class ReportFormat { Text, Html };

/// One line of a template, without its line end. Nothing in it is escaped for HTML: what it shows is written as it is.
struct TemplateRow {
  std::string_view text;
  /// The group for whose items the line is repeated, as the names that lead to it ("rules/criteria"); empty for a line
  /// that is written once. Neighbours with the same first name are repeated together.
  std::string_view group = {};
};

/// What a stretch of a template is filled from: the report as a whole, or one item of a group.
struct ReportScope {
  /// Calls `fill` with each item, in the report's order.
  using Visit = std::function<void(const std::function<void(const ReportScope& item)>& fill)>;

  std::vector<std::pair<std::string_view, std::string>> gaps;  ///< what takes the place of `%name%`
  std::vector<std::pair<std::string_view, Visit>> groups = {};
};

/// Appends `rows` to `report`, each as a line ended by CR LF, with gaps filled from `scope`. A filled-in text takes one
/// line (see OneLine) and is otherwise unchanged. Throws std::invalid_argument for a gap or a group that the scope does
/// not have, and whatever a visit throws; `report` then holds what came before.
void AppendReport(std::string& report, std::span<const TemplateRow> rows, const ReportScope& scope);

/// Writes a report in the disk's 8-bit code page, "?" for what that cannot hold. Throws Error when it can't be written.
void WriteReport(FileSystem& files, SystemFacts& facts, const WinPath& file, const std::string& report);

}  // namespace quillbox
