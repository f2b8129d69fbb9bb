// SPDX-License-Identifier: GPL-3.0-or-later
// The check of one file by itself: what kind it is, and whether it is whole.
#pragma once

#include <string>
#include <vector>

#include "inspection/inspection.h"
#include "inspection/inspection_progress.h"
#include "mail/folder_list.h"
#include "platform/file_system.h"
#include "text/code_page.h"
#include "text/error.h"

namespace quillbox {

struct FileCheckTools {
  FileSystem& files;
  const CodePage& page;  ///< of texts that are not UTF-16
  InspectionProgress& progress;
};

/// What a check learned of a file besides its state.
struct FileFindings {
  std::vector<MailFolder> folders;  ///< of a list of folders
};

/// Fills `file`, of which path and size are known. What is wrong with it is in it; throws InspectionCancelled only.
FileFindings CheckFile(const FileCheckTools& tools, InspectedFile& file);

// The parts, one for each family of kinds. All throw Error when the file cannot be read.

/// Nothing for a file that is not a store. `source` must be at least as long as a store's first bytes.
FileFindings CheckStore(PositionedSource& source, const CodePage& page, InspectedFile& file);
void CheckRegistryText(PositionedSource& source, const CodePage& page, InspectedFile& file);
/// A hive of any age.
void CheckHive(PositionedSource& source, const CodePage& page, InspectedFile& file);

/// "offset 0x1F".
std::string OffsetText(std::uint64_t offset);
/// An error's place and reason, without the file's name.
std::string FaultOf(const Error& error);

}  // namespace quillbox
