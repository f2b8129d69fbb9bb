// SPDX-License-Identifier: GPL-3.0-or-later
// Gives the messages of one store to the folders that they go to, and keeps the books: every message of the index has
// one end, and every byte of the store is accounted for.
#pragma once

#include <functional>
#include <string>

#include "export/export_progress.h"
#include "export/export_result.h"
#include "export/folder_target.h"
#include "mail/store_survey.h"
#include "platform/file_system.h"
#include "text/code_page.h"

namespace quillbox {

/// A folder at the target that is opened when the first message goes there. Throws Error.
using LazyTarget = std::function<FolderTarget&()>;

class StoreExport {
 public:
  struct Places {
    FolderTarget& box;
    BoxResult& boxResult;
    LazyTarget recovered;
    BoxResult& recoveredResult;
    MessageSet* merged = nullptr;  ///< messages of all copies of the folder; nothing when copies are not merged
    bool isCopy = false;           ///< what another copy had is left out
  };

  StoreExport(FileSystem& files, const CodePage& page, ExportProgress& progress)
      : files_(files), page_(page), progress_(progress) {}

  /// Reads the store that `result` names into `places`, and fills `result`. Throws Error when the target cannot be
  /// written, and ExportCancelled.
  void Run(StoreResult& result, const std::string& shownName, const Places& places, bool recover);

 private:
  FileSystem& files_;
  const CodePage& page_;
  ExportProgress& progress_;
};

}  // namespace quillbox
