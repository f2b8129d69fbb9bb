// SPDX-License-Identifier: GPL-3.0-or-later
// A moment in the time zone of the computer that the program runs on. The C library of each system has its own call for
// this, so there is one file a system, in posix/ and win32/.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace quillbox {

/// `unixSeconds` (since 1970, UTC) in local time; nothing for a time that the C library cannot convert.
std::optional<std::tm> LocalTime(std::int64_t unixSeconds);

}  // namespace quillbox
