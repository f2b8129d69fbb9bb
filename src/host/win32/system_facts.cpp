#include "host/system_facts.h"

#include <windows.h>
// After it.
#include <ntsecapi.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "host/host_fault.h"
#include "host/win32/open_entry.h"

namespace quillbox {

HostTime Now() {
  FILETIME now = {};
  GetSystemTimeAsFileTime(&now);
  return TimeOf(now);
}

std::string LocalTime(const HostTime& time) {
  constexpr std::int64_t kSecondsPerMinute = 60;
  constexpr int kMinutesPerHour = 60;
  const FILETIME whole = FileTimeOf(time);
  SYSTEMTIME universal = {};
  SYSTEMTIME local = {};
  FILETIME asFile = {};
  if (!FileTimeToSystemTime(&whole, &universal) || !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) ||
      !SystemTimeToFileTime(&local, &asFile)) {
    return {};
  }
  const auto east = static_cast<int>((TimeOf(asFile).seconds - time.seconds) / kSecondsPerMinute);
  std::array<char, 64> text = {};
  std::snprintf(text.data(), text.size(), "%04u-%02u-%02u %02u:%02u:%02u %c%02d%02d", local.wYear, local.wMonth,
                local.wDay, local.wHour, local.wMinute, local.wSecond, east < 0 ? '-' : '+',
                std::abs(east) / kMinutesPerHour, std::abs(east) % kMinutesPerHour);
  return text.data();
}

void FillRandom(std::span<std::uint8_t> bytes) {
  if (!RtlGenRandom(bytes.data(), static_cast<ULONG>(bytes.size()))) ThrowFault(SystemCode(std::errc::io_error));
}

}  // namespace quillbox
