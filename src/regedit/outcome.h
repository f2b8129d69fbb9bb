// SPDX-License-Identifier: GPL-3.0-or-later
// The registry editor's words for the outcome of a command, in one place.
#pragma once

#include <string>

#include "regedit/export.h"
#include "regedit/merge.h"

namespace quillbox {

/// One line each, line end included. `file` is the file as the person named it.
std::string ExportSummary(const ExportedKeys& result, const std::string& key, const std::string& file);
std::string MergeSummary(const MergeReport& report, const std::string& file);
/// That the file has the Unicode form though the 8-bit one was asked for; empty when it has the form asked for.
std::string FormNotice(const ExportedKeys& result, const std::string& file);
/// One line for each problem, and one that counts those which were too many to keep.
std::string ProblemLines(const MergeReport& report, const std::string& file);

}  // namespace quillbox
