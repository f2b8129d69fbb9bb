// SPDX-License-Identifier: GPL-3.0-or-later
// What can be exported: the folders of an identity, or of any folder that has message stores. It works without the
// registry, and step by step, so that a window can show what it has while the rest is still being counted.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mail/folder_list.h"
#include "platform/file_system.h"

namespace quillbox {

/// A folder with message stores, and folders that may hold copies of them.
struct MailPlace {
  std::string name;  ///< what an export calls it: the identity's
  WinPath folder;
  std::vector<WinPath> copies = {};  ///< the identity's backup, recycle bins
};

/// A mail folder.
struct FoundFolder {
  MailFolder folder;
  std::optional<std::size_t> parent;  ///< its place in the list; nothing for one at the top
  std::size_t depth = 0;              ///< how many folders it is below
  bool isListed = false;              ///< in Folders.dbx
  std::optional<WinPath> store;       ///< nothing when the file is not there, or the folder has none
  std::uint64_t size = 0;             ///< of the store, in bytes
  bool isElsewhere = false;           ///< in one of the folders that may hold copies
  std::optional<std::size_t> copyOf;  ///< the folder whose store this one is a copy of, as far as its name says
  bool isCounted = false;             ///< what follows is known
  std::uint64_t messages = 0;         ///< that the store's tree leads to
  std::string fault;                  ///< why they cannot be counted, or the number not be trusted; mostly empty
};

class FoundFolders {
 public:
  /// `page` is that of the texts in Folders.dbx. Nothing is read yet.
  FoundFolders(FileSystem& files, MailPlace place, CodePage page);

  /// Does a piece of work; the first makes the list, each further one counts a folder. False at the end.
  bool Step();

  const MailPlace& Place() const { return place_; }
  const std::vector<FoundFolder>& All() const { return folders_; }
  /// What is wrong with the list of folders, in words: "Folders.dbx is not there"; empty when nothing is.
  const std::string& ListFault() const { return listFault_; }

 private:
  using Entries = std::vector<FileEntry>;

  Entries EntriesOf(const WinPath& folder);
  void MakeList();
  FolderList ReadList(const Entries& entries);
  void Take(const FolderList& list, std::size_t listed, const Entries& entries);
  void FindCopies();
  void AddCopiesIn(const WinPath& folder);
  std::optional<std::size_t> OriginalOf(const std::string& file) const;
  void Count(FoundFolder& folder);

  FileSystem& files_;
  MailPlace place_;
  CodePage page_;
  std::vector<FoundFolder> folders_;
  std::string listFault_;
  bool isListMade_ = false;
  std::size_t counted_ = 0;
};

/// What is exported unless the user chooses: all folders, and with `withCopies` the copies of them. Copies are not
/// mixed in unasked. Ascending.
std::vector<std::size_t> UsualChoice(const FoundFolders& folders, bool withCopies);

/// The folders of the recycle bins on the drive of `folder`, as Windows has named them over time: one a user.
std::vector<WinPath> RecycleBinsBeside(FileSystem& files, const WinPath& folder);

}  // namespace quillbox
