// SPDX-License-Identifier: GPL-3.0-or-later
// Reads what a backup wrote again and compares it with its sources.
#pragma once

#include <vector>

#include "backup/backup_record.h"
#include "platform/dialogs.h"
#include "platform/file_system.h"

namespace quillbox {

struct BackupCheck {
  /// What differs first, then what the backup did not do, then what is as it should be.
  std::vector<BackupLine> lines;
  std::size_t same = 0;        ///< copies that are byte for byte what their sources are
  std::size_t different = 0;   ///< copies that differ from their sources, or cannot be read
  std::size_t readable = 0;    ///< registry files that are there; they are not compared with the registry
  std::size_t unreadable = 0;  ///< registry files that are not
  bool cancelled = false;

  std::string Summary() const;
};

/// Checks every copy and every registry file; cancelling the progress ends it.
BackupCheck CheckBackup(FileSystem& files, const BackupRecord& record, Progress& progress);

}  // namespace quillbox
