// SPDX-License-Identifier: GPL-3.0-or-later
// The check of a backup, whenever and by whichever run it was made: every file of the folder by itself, and on request
// against the disk. Nothing is changed, neither there nor on the disk.
#pragma once

#include <chrono>

#include "inspection/disk_comparison.h"
#include "inspection/inspection.h"
#include "platform/dialogs.h"

namespace quillbox {

struct InspectionRequest {
  WinPath folder;                             ///< a backup folder, or the folder of one identity in it
  const ComparedDisk* against = nullptr;      ///< the disk to compare with, if any
  std::chrono::milliseconds shownEvery{100};  ///< how often progress is shown, and Cancel seen
};

/// `page` is that of texts that are not UTF-16. Never throws for what is wrong with files: the result has it. Throws
/// Error when `folder` is not a folder.
Inspection InspectBackup(FileSystem& files, const CodePage& page, const InspectionRequest& request, Progress& progress);

}  // namespace quillbox
