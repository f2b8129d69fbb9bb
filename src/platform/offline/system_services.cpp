#include "platform/offline/system_services.h"

#include <sys/random.h>

#include <array>
#include <cstdio>
#include <ctime>

#include "platform/offline/host_file.h"
#include "text/file_time.h"

namespace quillbox {

std::uint64_t SystemClock::Now() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return FileTimeOfUnix(now.tv_sec, static_cast<std::uint64_t>(now.tv_nsec));
}

std::string RandomGuids::Create() {
  std::array<std::uint8_t, 16> b = {};
  if (getrandom(b.data(), b.size(), 0) != static_cast<ssize_t>(b.size())) return {};
  b[6] = static_cast<std::uint8_t>((b[6] & 0x0F) | 0x40);  // version 4
  b[8] = static_cast<std::uint8_t>((b[8] & 0x3F) | 0x80);  // the common variant
  std::array<char, 39> text = {};
  std::snprintf(text.data(), text.size(), "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
  return text.data();
}

}  // namespace quillbox
