// SPDX-License-Identifier: GPL-3.0-or-later
// The logs that Windows keeps beside a hive: found, read when the hive needs them, and kept as they are before the hive
// is changed for the first time.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/hosted/host_place.h"
#include "platform/platform.h"
#include "registry/hive.h"

namespace quillbox {

/// Logs hold pages of their hive; none that Windows would load is larger than this.
inline constexpr std::uint64_t kMaxHiveLogMegabytes = 256;

/// The logs beside `hive`, whatever the case of their names: that of the old form first, then the two of the new one.
/// One that cannot be read, is not an ordinary file or is too large says so in HiveLogFile::unreadable.
std::vector<HiveLogFile> ReadLogsOf(const HostPlace& hive);

/// Keeps each log beside `hive` under its name with `suffix` at the end, unless there is such a file. A log that
/// cannot be read is named in `log` and left out. Throws HostFileError when a copy cannot be written.
void KeepLogsOf(const HostPlace& hive, const char* suffix, Log& log);

}  // namespace quillbox
