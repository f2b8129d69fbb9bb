// SPDX-License-Identifier: GPL-3.0-or-later
// The blocks of a registry file of Windows 95, 98 or Me: where the entry of each key is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "registry/hive_data.h"

namespace quillbox {

/// Takes the faults of a file: throws the first one, or notes them all.
class CregFaults {
 public:
  CregFaults(HiveData& hive, DamagedParts damaged) : hive_(hive), damaged_(damaged) {}

  /// Throws the Error of a file that cannot be read at all.
  [[noreturn]] void Refuse(std::size_t offset, std::string why) const;
  void OfFile(std::size_t offset, std::string why);
  /// `value` is what ValueInNotes() gives; empty for the key itself.
  void OfKey(KeyCell key, const std::string& value, std::size_t offset, std::string why);
  /// True when faults are noted, and what is not damaged is read.
  bool AreLeftOut() const { return damaged_ == DamagedParts::LeaveOut; }

 private:
  HiveData& hive_;
  DamagedParts damaged_;
};

/// How a node of the tree names an entry.
struct CregReference {
  std::uint16_t block = 0;
  std::uint16_t number = 0;
};

struct CregFoundEntry {
  std::size_t offset = 0;  ///< from the start of the file
  std::size_t length = 0;  ///< within the file, and at least that of an entry's head
  bool isTaken = false;    ///< a key has it
};

class CregEntries {
 public:
  /// Finds the entries of `file`, whose header is whole. Where blocks or entries are damaged and faults are only noted,
  /// it goes on with the next one that looks whole.
  CregEntries(ByteView file, CregFaults& faults);

  /// Null when there is none.
  CregFoundEntry* Find(CregReference reference);

 private:
  struct Block {
    std::size_t offset = 0;
    std::size_t end = 0;
    std::uint16_t number = 0;
  };

  void ReadBlocks();
  std::optional<std::size_t> FindBlock(std::size_t from) const;
  std::optional<std::size_t> EndOfBlock(std::size_t at);
  void ReadEntries(const Block& block);
  std::size_t FindEntry(std::size_t from, const Block& block);
  bool LooksLikeEntry(std::size_t at, const Block& block);

  ByteView file_;
  CregFaults& faults_;
  std::unordered_map<std::uint32_t, CregFoundEntry> entries_;
  std::size_t tries_;  ///< how many values the search for entries may still look at, so that its time has a limit
};

/// The length of the value that `rest` begins with, head, name and data; nothing when it does not fit.
std::optional<std::size_t> CregValueLength(ByteView rest);

}  // namespace quillbox
