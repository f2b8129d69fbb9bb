// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/hosted_services.h"

#include "host/system_facts.h"
#include "text/file_time.h"

namespace quillbox {

std::uint64_t SystemClock::Now() {
  const HostTime now = quillbox::Now();
  return FileTimeOfUnix(now.seconds, now.nanoseconds);
}

}  // namespace quillbox
