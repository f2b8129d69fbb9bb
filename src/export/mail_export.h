// SPDX-License-Identifier: GPL-3.0-or-later
// The export of mail folders: reads the stores that the user chose, and writes their messages in a format that other
// programs read. Each folder is whole at the target or as it was before; one that fails does not stop the others.
#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "export/export_result.h"
#include "export/mail_tree.h"
#include "platform/dialogs.h"

namespace quillbox {

struct ExportRequest {
  std::vector<std::size_t> chosen = {};  ///< places in the list of folders, ascending
  MailFormat format = MailFormat::Mbox;
  bool recover = false;      ///< deleted messages, and those that a damaged index does not lead to
  bool mergeCopies = false;  ///< a chosen copy goes to the folder that it is a copy of, without doubles
  WinPath target = {};       ///< a folder, made when it is missing
  std::chrono::milliseconds shownEvery{100};  ///< how often progress is shown, and Cancel seen
};

/// Why nothing can be exported to `target`, as a clause; nothing when it can: the export must not change the folder
/// that it reads.
std::optional<std::string> TargetFault(const FoundFolders& folders, const WinPath& target);

/// `page` is that of the stores' texts. Never throws for what is wrong with stores or target: the result has it.
ExportResult ExportMail(FileSystem& files, const FoundFolders& folders, const CodePage& page,
                        const ExportRequest& request, Progress& progress);

}  // namespace quillbox
