// SPDX-License-Identifier: GPL-3.0-or-later
// Hives that one command has changed, written so that the disk has all of them as before or all of them as after.
//
// Every new hive is put beside its old one first, under a name of its own, and flushed. Then a record of what is about
// to happen is written and flushed: from here on the command counts as done, and what a kill interrupts is finished
// when the disk is opened next. Then each new hive takes its old one's name, and the record is removed.
//
// The record is beside the last hive, the machine's one, which all profiles of a disk share: whoever opens the disk
// next finds it, as another profile and on another computer too. A record in the program's own folder would be missed
// there. A forged record gains nothing: it does not name files. It says which of the disk's hives it
// means, in words that are compared and never used as paths; only the file with the one fixed name beside such a hive
// can take its place, only while the old hive is the one that the record means, and only if it is whole.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/offline/hive_file.h"
#include "platform/platform.h"

namespace quillbox {

class HiveCommit {
 public:
  /// The record's name in the folder of the last hive.
  static constexpr const char* kRecordName = ".quillbox-commit";

  explicit HiveCommit(Log& log) : log_(log) {}

  /// Writes every one of `hives` that needs it, all or none. Throws Error that says what was written and what was not,
  /// with the rest still in memory (or beside its hive, once the first one was replaced) for the next call.
  void Write(const std::vector<HiveFile*>& hives, FileTime now);

 private:
  void WriteTogether(const std::vector<HiveFile*>& hives, FileTime now);
  void Publish();
  [[noreturn]] void FailHalfway(const Error& error) const;
  void Drop(const std::vector<HiveFile*>& hives);

  Log& log_;
  std::vector<HiveFile*> waiting_;    ///< staged, not in place
  std::vector<std::string> written_;  ///< those of the same command that are in place
  std::optional<HostPlace> record_;
};

/// Finishes what a kill has interrupted of a HiveCommit of `machine` and one of `profiles`, or drops it where nothing
/// of it was done yet. The caller has the lock of the disk. Returns what could not be repaired, as sentences.
std::vector<std::string> FinishInterruptedCommit(const HivePlaces& machine, const std::vector<HivePlaces>& profiles,
                                                 Log& log);

}  // namespace quillbox
