// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/system_facts.h"

#include <sys/random.h>

#include <cerrno>
#include <ctime>

#include "host/host_fault.h"

namespace quillbox {

HostTime Now() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return {now.tv_sec, static_cast<std::uint32_t>(now.tv_nsec)};
}

void FillRandom(std::span<std::uint8_t> bytes) {
  // Up to 256 bytes come in one call that nothing interrupts.
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) ThrowErrno(errno);
}

}  // namespace quillbox
