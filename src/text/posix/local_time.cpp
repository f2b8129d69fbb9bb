// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/local_time.h"

namespace quillbox {

std::optional<std::tm> LocalTime(std::int64_t unixSeconds) {
  const std::time_t seconds = unixSeconds;
  std::tm local = {};
  if (localtime_r(&seconds, &local) == nullptr) return std::nullopt;
  return local;
}

}  // namespace quillbox
