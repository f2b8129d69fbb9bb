// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/report_template.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "text/code_page.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

/// The value of `name` in a scope's gaps or groups.
template <class Value>
const Value& Named(const std::vector<std::pair<std::string_view, Value>>& known, std::string_view name) {
  const auto found = std::find_if(known.begin(), known.end(), [&](const auto& entry) { return entry.first == name; });
  if (found == known.end()) {
    throw std::invalid_argument("a report's template has an unknown gap or group: " + std::string(name));
  }
  return found->second;
}

void AppendLine(std::string& report, std::string_view line, const ReportScope& scope) {
  std::size_t done = 0;
  for (std::size_t at; (at = line.find('%', done)) != std::string_view::npos;) {
    report += line.substr(done, at - done);
    const std::size_t end = line.find('%', at + 1);
    if (end == std::string_view::npos) throw std::invalid_argument("a gap has no end: " + std::string(line));
    report += OneLine(Named(scope.gaps, line.substr(at + 1, end - at - 1)));
    done = end + 1;
  }
  report += line.substr(done);
  report += "\r\n";
}

/// The first name of what follows `depth` characters of a row's path; empty when the path ends there.
std::string_view GroupBelow(const TemplateRow& row, std::size_t depth) {
  const std::string_view path = row.group.substr(std::min(depth, row.group.size()));
  return path.substr(0, path.find('/'));
}

void AppendRows(std::string& report, std::span<const TemplateRow> rows, std::size_t depth, const ReportScope& scope) {
  while (!rows.empty()) {
    const std::string_view name = GroupBelow(rows.front(), depth);
    if (name.empty()) {
      AppendLine(report, rows.front().text, scope);
      rows = rows.subspan(1);
      continue;
    }
    const auto end =
        std::find_if(rows.begin(), rows.end(), [&](const TemplateRow& row) { return GroupBelow(row, depth) != name; });
    const auto repeated = rows.first(static_cast<std::size_t>(end - rows.begin()));
    const std::size_t inside = depth + name.size() + 1;  // behind the slash
    Named(scope.groups, name)([&](const ReportScope& item) { AppendRows(report, repeated, inside, item); });
    rows = rows.subspan(repeated.size());
  }
}

}  // namespace

void AppendReport(std::string& report, std::span<const TemplateRow> rows, const ReportScope& scope) {
  AppendRows(report, rows, 0, scope);
}

void WriteReport(FileSystem& files, SystemFacts& facts, const WinPath& file, const std::string& report) {
  files.WriteFile(file, CodePage(facts.CodePageNumber()).EncodeLossy(report));
}

}  // namespace quillbox
