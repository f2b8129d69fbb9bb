// SPDX-License-Identifier: GPL-3.0-or-later
#include "regedit/outcome.h"

#include "text/error.h"

namespace quillbox {
namespace {

std::string Counted(std::size_t count, const char* thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace

std::string ExportSummary(const ExportedKeys& result, const std::string& key, const std::string& file) {
  return key + ": " + Counted(result.keys, "key") + " and " + Counted(result.values, "value") + " exported to " + file +
         "\n";
}

std::string MergeSummary(const MergeReport& report, const std::string& file) {
  return file + ": " + Counted(report.keysAdded, "key") + " added, " + Counted(report.keysDeleted, "key") +
         " deleted, " + Counted(report.valuesSet, "value") + " set, " + Counted(report.valuesDeleted, "value") +
         " deleted\n";
}

std::string FormNotice(const ExportedKeys& result, const std::string& file) {
  if (result.firstLoss.empty()) return {};
  return file + ": written as Unicode text, since 8-bit text cannot hold " + result.firstLoss + "\n";
}

std::string ProblemLines(const MergeReport& report, const std::string& file) {
  std::string lines;
  for (const MergeProblem& problem : report.problems) {
    lines += Describe(Error({}, {file, {}, problem.line}, problem.reason)) + "\n";
  }
  const std::size_t more = report.problemCount - report.problems.size();
  if (more > 0) lines += file + ": and " + Counted(more, "more line") + " that could not be merged\n";
  return lines;
}

}  // namespace quillbox
