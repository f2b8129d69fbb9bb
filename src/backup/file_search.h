// SPDX-License-Identifier: GPL-3.0-or-later
// Finds files by a pattern in a folder and everything below it, and keeps what was found small enough for lists of
// hundreds of thousands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace quillbox {

/// Files in the order in which they were found.
class FoundFiles {
 public:
  void Add(const std::string& folder, std::vector<std::string> names);
  void Clear();

  std::size_t Count() const { return files_.size(); }
  const std::string& Name(std::size_t index) const { return files_[index].name; }
  /// The file's folder, final backslash included.
  const std::string& Folder(std::size_t index) const { return folders_[files_[index].folder]; }

 private:
  struct File {
    std::uint32_t folder;  ///< position in folders_
    std::string name;
  };
  std::vector<std::string> folders_;
  std::vector<File> files_;
};

struct SearchReport {
  bool cancelled = false;
  std::vector<std::string> unread;  ///< "folder: reason" of each folder that could not be read
};

/// Told the folder that was reached and the number of files found so far, many times a second. False cancels.
using SearchProgress = std::function<bool(const std::string& folder, std::size_t found)>;

/// Adds every file below `root` whose name matches `pattern` to `found`, and what happened to `report`. A root that
/// is not there has no files. Cancelled, the search leaves what it has found so far.
void SearchFiles(FileSystem& files, const WinPath& root, const std::string& pattern, FoundFiles& found,
                 SearchReport& report, const SearchProgress& progress);

}  // namespace quillbox
