// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps the record of a backup while it runs: what every command that backs up begins and ends with.
#pragma once

#include "backup/backup_record.h"
#include "session/session.h"

namespace quillbox {

class BackupRecorder {
 public:
  explicit BackupRecorder(Session& session) : session_(session) {}

  /// Begins a record; exports from before are not in it.
  void Begin(const char* command);
  /// Of the backup that runs. Its folder says that something was begun.
  BackupRecord& Record() { return record_; }
  /// Takes the copies and exports into the record, which the session keeps. Without a folder nothing was begun.
  void End();

 private:
  Session& session_;
  BackupRecord record_;
};

}  // namespace quillbox
