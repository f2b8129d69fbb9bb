// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_file.h"

#include "host/host_fault.h"

namespace quillbox {

namespace {

constexpr std::size_t kReadChunk = std::size_t{256} * 1024;

}  // namespace

std::string HostFile::ReadWhole() const {
  const EntryInfo info = Info();
  if (info.IsFolder()) ThrowFault(SystemCode(std::errc::is_a_directory));

  std::string content;
  content.reserve(static_cast<std::size_t>(info.size));
  for (;;) {
    const std::size_t length = content.size();
    content.resize(length + kReadChunk);
    const std::size_t got = Read(std::span(content).subspan(length));
    content.resize(length + got);
    if (got < kReadChunk) return content;
  }
}

}  // namespace quillbox
