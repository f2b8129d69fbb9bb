// SPDX-License-Identifier: GPL-3.0-or-later
// The words for what the check of a backup found. Nobody may conclude from them that a backup is whole when something
// of it is damaged, missing, or was not looked at.
#pragma once

#include <string>
#include <vector>

#include "inspection/inspection.h"

namespace quillbox {

/// "Message store", "Registry file".
const char* KindText(FileKind kind);
/// What became of a file, in a line: "whole, 12 messages; as on the disk", "DAMAGED, 3 faults: offset 0x1E254: ...".
std::string StateText(const InspectedFile& file);
/// The path below the folder that was checked.
std::string NameIn(const Inspection& inspection, const WinPath& path);
/// A file with its kind, size, state and all its faults that are known.
std::vector<std::string> LinesOf(const Inspection& inspection, const InspectedFile& file);
/// Something that was not checked because it is not there, or could not be looked into.
struct NotThere {
  std::string name;
  std::string verdict;   ///< "MISSING", "Left out"
  std::string why = {};  ///< empty where nothing is known
};

/// What is missing, what the disk has besides and what was not looked into.
std::vector<NotThere> AllNotThere(const Inspection& inspection);
/// The same, a line each.
std::vector<std::string> MissingLines(const Inspection& inspection);
/// A few sentences: what is whole and what isn't, what is missing, how it compares with the disk.
std::string SummaryOf(const Inspection& inspection);
/// All of it, as the bytes of a text file. `ended` is the time in the user's style.
std::string ReportText(const Inspection& inspection, const std::string& ended);

}  // namespace quillbox
