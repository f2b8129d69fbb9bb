// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/local_time.h"

namespace quillbox {

std::optional<std::tm> LocalTime(std::int64_t unixSeconds) {
  const __time64_t seconds = unixSeconds;
  std::tm local = {};
  if (_localtime64_s(&local, &seconds) != 0) return std::nullopt;
  return local;
}

}  // namespace quillbox
