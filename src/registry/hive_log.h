// Bringing a hive that was not closed cleanly up to date from the log files beside it, as Windows does when it loads
// such a hive. Both forms of log are known: one that holds the changed sectors, and the pair of logs with entries
// that Windows 8.1 and later write.
#pragma once

#include "registry/hive.h"

namespace quillbox {

/// True when the base block says that the last write to the hive was completed.
bool IsClosedCleanly(const Bytes& file);

/// Applies what `logs` hold for `file`. False, with `file` as it was, when there is nothing usable. Meant for hives
/// that are not closed cleanly only.
bool ApplyLogs(Bytes& file, const std::vector<HiveLogFile>& logs);

}  // namespace quillbox
