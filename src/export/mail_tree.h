// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of folders at the target, in each of the formats: which name each folder gets there, and the place for its
// messages.
//
// Everything is below one folder with the name of the identity: so that two identities don't mix, and that a mail
// program does not send what an "Unsent Messages" among its own folders would be.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "export/file_source.h"
#include "export/folder_target.h"
#include "export/found_folders.h"

namespace quillbox {

enum class MailFormat {
  Mbox,     ///< a file a folder, subfolders in NAME.sbd: as Thunderbird has it
  Files,    ///< an .eml file a message
  Maildir,  ///< a Maildir with its folders beside "cur", called ".Folder.Subfolder"
};

/// The names of a folder and those above it at the target, the identity's first.
using TargetPath = std::vector<std::string>;

/// Where the messages of a folder go, and what is recovered from its stores.
struct TargetNames {
  TargetPath folder;
  TargetPath recovered;
};

/// The names for all folders of a place, the same in every export of it, whichever of them are chosen. No two are the
/// same as any file system sees it.
std::vector<TargetNames> NamesAtTarget(const FoundFolders& folders, MailFormat format);

class MailTree {
 public:
  struct Options {
    WinPath target;  ///< a folder, made when it is missing
    MailFormat format = MailFormat::Mbox;
    CodePage page = CodePage();  ///< of the stores' texts
  };

  MailTree(FileSystem& files, Options options, ReadTick tick);

  /// Makes the folders above and opens the place. Throws Error.
  std::unique_ptr<FolderTarget> Open(const TargetPath& path);
  /// Puts what was opened for `path` in its place. Throws Error.
  void Commit(FolderTarget& folder, const TargetPath& path);
  /// Removes the folders that were made since the last commit and are empty. What was opened must be gone.
  void RemoveUnused();
  /// The file or folder that has the messages of a folder, when they are there.
  WinPath PlaceOf(const TargetPath& path) const;

 private:
  void MakeFolders(const WinPath& folder);
  void MakeFilesAbove(const TargetPath& path);

  FileSystem& files_;
  Options options_;
  ReadTick tick_;
  std::vector<WinPath> made_;  ///< since the last commit
};

}  // namespace quillbox
