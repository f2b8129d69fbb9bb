// SPDX-License-Identifier: GPL-3.0-or-later
// FILETIME, the platform's time: units of 100 ns since 1601 UTC; and the two ways between it and Unix time.
#pragma once

#include <cstdint>
#include <optional>

namespace quillbox {

using FileTime = std::uint64_t;

inline constexpr FileTime kFileTimePerSecond = 10'000'000;
inline constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;

/// `seconds` (and `nanoseconds` below a second) since 1970 as FILETIME; 0 for times before 1601.
constexpr FileTime FileTimeOfUnix(std::int64_t seconds, std::uint64_t nanoseconds = 0) {
  if (seconds < -kSecondsFrom1601To1970) return 0;
  return static_cast<FileTime>(seconds + kSecondsFrom1601To1970) * kFileTimePerSecond + nanoseconds / 100;
}

/// The whole seconds since 1970; nothing for times before.
constexpr std::optional<std::int64_t> UnixSeconds(FileTime time) {
  const auto seconds = static_cast<std::int64_t>(time / kFileTimePerSecond) - kSecondsFrom1601To1970;
  return seconds < 0 ? std::nullopt : std::optional(seconds);
}

}  // namespace quillbox
