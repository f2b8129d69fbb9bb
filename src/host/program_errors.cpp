// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/program_errors.h"

#include <array>
#include <system_error>

#include "host/host_fault.h"

namespace quillbox {

namespace {

constexpr std::size_t kMaxKept = std::size_t{16} * 1024;

}  // namespace

std::string ErrorsFrom(const HostFile& pipe) try {
  std::string kept;
  std::array<char, 4096> buffer = {};
  while (const std::size_t got = pipe.Read(buffer)) {
    if (kept.size() < kMaxKept) kept.append(buffer.data(), got);
  }
  return kept;
} catch (const std::system_error& failure) {
  return "(what it wrote cannot be read: " + ReasonOf(failure.code()) + ")";
}

}  // namespace quillbox
