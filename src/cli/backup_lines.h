// SPDX-License-Identifier: GPL-3.0-or-later
// What a backup or a restore did, in lines.
#pragma once

#include "backup/backup_record.h"
#include "cli/console.h"

namespace quillbox {

/// Prints each step that was done as a result, and each that was not as a failure. A registry key that does not exist
/// has nothing to export, which is a note.
void PrintRecord(Console& console, const BackupRecord& record);

}  // namespace quillbox
