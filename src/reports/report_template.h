// Reports are texts with gaps. A template stands in the code as the report will read; this fills its gaps and writes
// the result as the disk's Windows would.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "platform/file_system.h"
#include "platform/system_facts.h"

namespace quillbox {

enum class ReportFormat { Text, Html };

/// What stands for `%name%` in a template.
using Gap = std::pair<std::string_view, std::string_view>;

/// Appends `lines` to `report` with its gaps filled and every "\n" of it written as CR LF. What is filled in takes
/// one line (see OneLine) and stays as it is otherwise. Throws std::invalid_argument for a "%" that begins no gap of
/// `gaps`.
void AppendLines(std::string& report, std::string_view lines, std::initializer_list<Gap> gaps = {});

/// Writes a report in the disk's 8-bit code page, "?" for what that cannot hold. Throws Error when it can't be written.
void WriteReport(FileSystem& files, SystemFacts& facts, const WinPath& file, const std::string& report);

}  // namespace quillbox
