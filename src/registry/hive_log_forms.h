// SPDX-License-Identifier: GPL-3.0-or-later
// The two forms of log file beside a hive, each read and checked by itself. hive_log.cpp decides which of
// them belongs to a hive and what is written where. What is returned refers to the bytes that were given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "text/unicode.h"

namespace quillbox {

/// Takes bytes of the bins; `offset` counts from the start of the bins.
using LogPageVisitor = std::function<void(std::size_t offset, ByteView content)>;

/// The older form (through Windows 7): a map of the 512-byte sectors of the bins, and those that are in the map.
struct SectorLog {
  ByteView base;  ///< 512 bytes of a base block
  std::size_t binsSize = 0;
  ByteView map;      ///< a bit for each sector
  ByteView sectors;  ///< one after the other, for each bit that is set

  void ForEachPage(const LogPageVisitor& visit) const;
};

/// One write to the hive in a log of the newer form.
struct LogEntry {
  std::uint32_t sequence = 0;
  std::uint32_t flags = 0;
  std::size_t binsSize = 0;
  ByteView references;  ///< offset in the bins and size of each page
  ByteView pages;

  void ForEachPage(const LogPageVisitor& visit) const;
};

/// The newer form (Windows 8.1 and later): one or more entries whose sequence numbers follow each other.
struct EntryLog {
  ByteView base;
  std::vector<LogEntry> entries;  ///< never empty

  std::uint32_t First() const { return entries.front().sequence; }
  std::uint32_t Last() const { return entries.back().sequence; }
};

/// A log that cannot be used.
struct LogRefusal {
  std::string why;            ///< a clause without a final full stop
  bool holdsNothing = false;  ///< an empty file or nothing but zeros, as Windows leaves a log that it never wrote to
};

using HiveLog = std::variant<LogRefusal, SectorLog, EntryLog>;

HiveLog ReadHiveLog(ByteView file);

/// True when `file` begins with a base block whose checksum is right.
bool IsGoodBase(ByteView file);

}  // namespace quillbox
