// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/system_facts.h"

#include <windows.h>
// After it.
#include <ntsecapi.h>

#include "host/host_fault.h"
#include "host/win32/open_entry.h"

namespace quillbox {

HostTime Now() {
  FILETIME now = {};
  GetSystemTimeAsFileTime(&now);
  return TimeOf(now);
}

void FillRandom(std::span<std::uint8_t> bytes) {
  if (!RtlGenRandom(bytes.data(), static_cast<ULONG>(bytes.size()))) ThrowFault(SystemCode(std::errc::io_error));
}

}  // namespace quillbox
