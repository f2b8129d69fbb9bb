// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <system_error>
#include <utility>

#include "host/host_file.h"
#include "host/state_folder.h"

namespace quillbox {

std::string StateLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F && c != '%') {
      line += c;
      continue;
    }
    std::array<char, 4> code = {};
    std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned>(byte));
    line += code.data();
  }
  return line;
}

std::string FromStateLine(std::string_view line) {
  constexpr int kHexadecimal = 16;
  std::string text;
  for (std::size_t at = 0; at < line.size(); ++at) {
    unsigned byte = 0;
    const std::string_view digits = line.substr(at + 1).substr(0, 2);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), byte, kHexadecimal);
    if (line[at] == '%' && digits.size() == 2 && read.ptr == digits.data() + 2) {
      text += static_cast<char>(byte);
      at += 2;
    } else {
      text += line[at];
    }
  }
  return text;
}

std::vector<std::string> ReadStateFile(const HostPath& file) try {
  std::istringstream in(HostFile::Open(file).ReadWhole());
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(std::move(line));
  return lines;
} catch (const std::system_error&) {
  return {};
}

/// FNV-1a.
std::string HashName(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  std::array<char, 17> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

}  // namespace quillbox
