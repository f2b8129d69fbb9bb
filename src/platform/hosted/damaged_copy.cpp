// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/damaged_copy.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <span>
#include <system_error>

#include "platform/hosted/host_open.h"

namespace quillbox {

namespace {

constexpr std::size_t kCompareChunk = std::size_t{256} * 1024;

/// Where the name's ending begins; a name without one ends there.
std::size_t EndingOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name.size() : dot;
}

}  // namespace

std::string DamagedName(std::string_view name, unsigned number) {
  const std::size_t ending = EndingOf(name);
  const std::string mark = number < 2 ? " (damaged)" : " (damaged " + std::to_string(number) + ")";
  return std::string(name.substr(0, ending)) + mark + std::string(name.substr(ending));
}

std::string MissingListName(std::string_view damagedName) {
  return std::string(damagedName.substr(0, EndingOf(damagedName))) + ".txt";
}

std::uint64_t LengthOf(const std::vector<ByteRange>& ranges) {
  return std::accumulate(ranges.begin(), ranges.end(), std::uint64_t{0},
                         [](std::uint64_t sum, const ByteRange& range) { return sum + range.length; });
}

std::string MissingList(std::string_view damagedName, std::string_view source, std::uint64_t size,
                        const std::vector<ByteRange>& missing) {
  std::string text = std::string(damagedName) + " is a damaged copy of " + std::string(source) + ".\r\n" +
                     std::to_string(LengthOf(missing)) + " of its " + std::to_string(size) +
                     " bytes could not be read and are zeros in the copy:\r\n\r\nOffset, length in bytes\r\n";
  for (const ByteRange& range : missing) {
    std::array<char, 48> line = {};
    std::snprintf(line.data(), line.size(), "0x%08llX, %llu\r\n", static_cast<unsigned long long>(range.offset),
                  static_cast<unsigned long long>(range.length));
    text += line.data();
  }
  return text;
}

bool HoldsTheSame(NewFile& file, const HostPlace& other) try {
  const HostFile otherFile = OpenForReading(other);
  const std::uint64_t size = file.Info().size;
  const EntryInfo theirs = otherFile.Info();
  if (!theirs.IsFile() || theirs.size != size) return false;
  std::vector<char> a(kCompareChunk);
  std::vector<char> b(kCompareChunk);
  for (std::uint64_t offset = 0; offset < size; offset += kCompareChunk) {
    const std::size_t length = file.ReadAt(offset, a);
    if (length != otherFile.ReadAt(offset, b)) return false;
    if (!std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(length), b.begin())) return false;
  }
  return true;
} catch (const std::system_error&) {
  return false;
}

}  // namespace quillbox
