// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/system_services.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <system_error>

#include "host/system_facts.h"

namespace quillbox {

std::string RandomGuids::Create() try {
  std::array<std::uint8_t, 16> b = {};
  FillRandom(b);
  b[6] = static_cast<std::uint8_t>((b[6] & 0x0F) | 0x40);  // version 4
  b[8] = static_cast<std::uint8_t>((b[8] & 0x3F) | 0x80);  // the common variant
  std::array<char, 39> text = {};
  std::snprintf(text.data(), text.size(), "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
  return text.data();
} catch (const std::system_error&) {
  return {};
}

}  // namespace quillbox
