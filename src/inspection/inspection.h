// SPDX-License-Identifier: GPL-3.0-or-later
// What the check of a backup found: each file with its kind and state, what is missing, and how it compares with the
// disk. There is no "whole" to set: the end follows from what was found.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "text/win_path.h"

namespace quillbox {

/// What a file is by its content; of a damaged one that cannot be told by it, what its name says.
enum class FileKind {
  MessageStore,
  FolderList,  ///< Folders.dbx
  OtherStore,  ///< a store without messages (Pop3uidl.dbx, Offline.dbx), whose content nothing here knows
  OldStore,    ///< of Outlook Express 4
  AddressBook,
  RegistryText,  ///< a .reg file of either form
  Hive,
  OldHive,  ///< of Windows 95, 98 or Me
  Other,
};
inline constexpr std::size_t kFileKinds = 9;

enum class CheckState {
  NotReached,  ///< the check was cancelled before
  Whole,
  Damaged,
  NotReadable,  ///< it could not be read to its end
  NotChecked,   ///< it was read to its end, but nothing here knows what must be in it
};

/// How a file compares with the disk.
enum class DiskMatch {
  NotAsked,
  Equal,
  Differs,
  NotOnDisk,    ///< the disk has no such file or key any more
  NotCompared,  ///< InspectedFile::difference says why
};

struct InspectedFile {
  /// More faults are counted only.
  static constexpr std::size_t kMaxListed = 1000;

  WinPath path = {};
  std::uint64_t size = 0;  ///< bytes
  FileKind kind = FileKind::Other;
  CheckState state = CheckState::NotReached;
  std::string contents = {};             ///< "12 messages"; empty where nothing is known
  std::vector<std::string> faults = {};  ///< each a clause with its place: "offset 0x1E254: the tree node ..."
  std::uint64_t faultCount = 0;
  DiskMatch onDisk = DiskMatch::NotAsked;
  std::string difference = {};  ///< a clause: where it differs, or why it was not compared

  void AddFault(std::string fault);
  /// Nothing is to be said against it: it is whole, and as on the disk where that was compared.
  bool IsGood() const;
};

/// A store that is named by a Folders.dbx beside it, or should be there for another reason, and is not.
struct MissingFile {
  WinPath path;
  std::string why;  ///< "Folders.dbx has it for the folder Inbox, with 12 messages"
};

/// Something of the disk that the backup does not have.
struct NotInBackup {
  std::string what;
  std::string why = {};  ///< empty where nothing is known
  bool isUsual = false;  ///< backups leave it out on purpose, and no message is lost with it
};

enum class InspectionEnd {
  Whole,         ///< all files that can be checked are whole, and none is missing
  NotWhole,      ///< a file is damaged, unreadable or missing
  NotAllSeen,    ///< nothing wrong was found, but not everything could be looked at
  NothingFound,  ///< no file there is of a kind that a backup has
  Cancelled,
};

enum class ComparisonEnd {
  NotAsked,
  Equal,  ///< everything is on the disk as in the backup, and the backup has all that it should have of the disk
  Different,
  NotAll,  ///< no difference was found, but not everything could be compared
};

struct Inspection {
  WinPath folder;
  bool isCompared = false;  ///< with the disk
  std::vector<InspectedFile> files;
  std::vector<MissingFile> missing;
  std::vector<NotInBackup> notInBackup;
  std::vector<std::string> notSeen;  ///< folders that could not be looked into, each with the reason
  bool cancelled = false;

  std::size_t Count(CheckState state) const;
  std::size_t Count(DiskMatch match) const;
  /// What of the disk should be in the backup and isn't.
  std::size_t MissingOfDisk() const;
  InspectionEnd End() const;
  ComparisonEnd Comparison() const;
  /// All files that can be checked are whole, and where a disk was compared, it has the same.
  bool IsGood() const;
};

}  // namespace quillbox
