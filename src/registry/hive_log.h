// SPDX-License-Identifier: GPL-3.0-or-later
// Bringing a hive that was not closed cleanly up to date from the log files beside it, as Windows does when it loads
// such a hive: which logs belong to the hive, in which order, and what the hive is with them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "registry/hive.h"
#include "registry/hive_log_forms.h"

namespace quillbox {

/// True when the base block says that the last write to the hive was completed.
bool IsClosedCleanly(const Bytes& file);

/// A log beside a hive. `content` becomes a LogRefusal when the log cannot be used for the hive.
struct LogBeside {
  std::string name;
  HiveLog content;
};

/// `files` checked, each by itself; the result refers to their bytes.
std::vector<LogBeside> ReadLogs(const std::vector<HiveLogFile>& files);

/// A hive's file with its logs applied.
struct RecoveredFile {
  Bytes bytes;
  std::vector<LogBeside*> logs;  ///< the applied ones, in their order
};

/// Applies what `logs` hold for `file`, which was not closed cleanly: the logs with entries if they can be used, else
/// the first log with sectors that can. Notes in the others why not; logs that were refused before are not tried again.
/// Nothing when none can be used.
std::optional<RecoveredFile> ApplyLogs(const Bytes& file, std::vector<LogBeside>& logs);

}  // namespace quillbox
