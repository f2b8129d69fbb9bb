// SPDX-License-Identifier: GPL-3.0-or-later
// The words for what became of an export. Nobody may conclude from them that all mail is safe when some of it is not.
#pragma once

#include <string>

#include "export/export_result.h"
#include "platform/file_system.h"
#include "text/file_time.h"

namespace quillbox {

/// What was exported, for the head of the report.
struct ReportHead {
  std::string name;    ///< whose mail
  std::string source;  ///< the folder that it was read from
  std::string target;
  std::string ended;  ///< date and time
};

/// A few sentences: how it ended, what is missing, what else can be had.
std::string SummaryOf(const ExportResult& result, const std::string& target);
/// A folder's outcome in one line: "120 messages", "NOT COMPLETE: 118 of 120 messages".
std::string OutcomeOf(const FolderResult& folder);
/// All of it, as the bytes of a text file.
std::string ReportText(const ExportResult& result, const ReportHead& head);
/// Saves it beside the mail, under the time `now` and a name that no file has there: "Export Reports\\TIME.txt". Mail
/// programs take files beside their own for mail, but not such a folder. Returns the file; throws Error.
WinPath SaveReport(FileSystem& files, const WinPath& target, FileTime now, const std::string& text);

}  // namespace quillbox
