// SPDX-License-Identifier: GPL-3.0-or-later
// What one backup did: for the window that shows it, its text, and the check that reads everything again.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "backup/store_copier.h"
#include "core/key_export.h"
#include "platform/copy_result.h"

namespace quillbox {

struct BackupRecord {
  std::string command;      ///< "Complete Backup"
  std::uint64_t ended = 0;  ///< FILETIME
  WinPath folder;           ///< the backup folder
  std::vector<CopyResult> copies;
  std::vector<KeyExport> exports;
  std::vector<LeftOut> leftOut;
  std::optional<std::string> endedEarly;  ///< why not all steps ran
};

/// One thing that a backup copied, exported, or did not.
struct BackupLine {
  std::string what;     ///< a file's name
  std::string size;     ///< "10240 bytes"; empty where there is none
  std::string outcome;  ///< "copied to D:\\Backup\\Inbox.dbx", "failed: the disk is full"
  std::string from;     ///< the folder of the file that was to be copied, or the registry key
};

BackupLine LineOf(const CopyResult& copy);
BackupLine LineOf(const KeyExport& made);
BackupLine LineOf(const LeftOut& leftOut);
/// What failed and what was left out.
std::vector<BackupLine> LinesNotDone(const BackupRecord& record);
/// What was copied and exported, in that order.
std::vector<BackupLine> LinesDone(const BackupRecord& record);
/// Both, in that order.
std::vector<BackupLine> LinesOf(const BackupRecord& record);

/// "21 files copied, 1 not copied; 5 registry keys exported, 1 not exported".
std::string SummaryOf(const BackupRecord& record);

/// All of it as text with CR LF, beginning with a mark for UTF-8. `ended` is the time in the user's style, `lines` are
/// what the window shows.
std::string TextOf(const BackupRecord& record, const std::string& ended, const std::vector<BackupLine>& lines);

}  // namespace quillbox
