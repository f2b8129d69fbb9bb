// SPDX-License-Identifier: GPL-3.0-or-later
// Files and folders under Windows' names. Paths may be relative to the current drive and directory.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"
#include "text/win_path.h"

namespace quillbox {

struct FileEntry {
  std::string name;  ///< as stored
  bool isDirectory = false;
  bool isHidden = false;
  bool isSystem = false;
  std::uint64_t size = 0;      ///< bytes
  std::uint64_t modified = 0;  ///< FILETIME: 100 ns since 1601 UTC
};

/// A running enumeration; destroying it ends it.
class FileFinder {
 public:
  virtual ~FileFinder() = default;
  /// The next entry in the order that the file system gives, or nothing at the end. As on the platform, "." and ".."
  /// come first in every folder but a root.
  virtual std::optional<FileEntry> Next() = 0;
};

/// The result of one step of a walk.
struct WalkStep {
  std::string folder;               ///< with its final backslash
  std::vector<std::string> files;   ///< names of files in it that match the pattern
  std::vector<std::string> unread;  ///< "folder: reason" of each that could not be read on the way here
};

/// A running walk through a folder and everything below it. A folder's own files come first, then its subfolders one
/// by one, each with what is below it, all in the order that the file system gives. Links to folders are not entered,
/// so that every walk ends.
class FolderWalk {
 public:
  virtual ~FolderWalk() = default;
  /// Does a piece of work that takes no noticeable time, whether or not it finds a file. False at the end.
  virtual bool Step(WalkStep& step) = 0;
};

/// A file that is read from its start, piece by piece.
class FileReader {
 public:
  virtual ~FileReader() = default;
  /// Fills `buffer` from its start, whole unless the file ends first; the bytes read. Throws Error.
  virtual std::size_t Read(std::span<char> buffer) = 0;
  /// The next Read starts at `offset` bytes from the file's start. Throws Error; a pipe cannot go back.
  virtual void GoTo(std::uint64_t offset) = 0;
};

/// A file in the making. Destroyed before Commit() it leaves no trace, and what was in its place stays. What was
/// written may be read by one thread while another one writes more.
class FileWriter {
 public:
  virtual ~FileWriter() = default;
  /// Throws Error when the bytes cannot be written.
  virtual void Write(std::string_view bytes) = 0;
  /// Fills `buffer` with what was written so far, from `offset` bytes on; the bytes read. Throws Error.
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<char> buffer) = 0;
  /// Puts the whole file in its place; throws Error when that fails. Nothing may be written afterwards.
  virtual void Commit() = 0;
};

/// The name of a file as the computer has it that the files are on. Windows' rules for names do not bind it, and it is
/// not translated: a Maildir's names need characters that Windows has not.
struct HostFileName {
  std::string text;
};

/// A folder in the making, for very many files that belong together. It gets its place whole: when there is no folder
/// of its name yet, it takes that name with Commit(), otherwise its files move into the one that is there, where they
/// replace nothing. Destroyed before that it leaves no trace. One thread may read files that were ended while another
/// one writes. All throw Error.
class FolderWriter {
 public:
  virtual ~FolderWriter() = default;
  /// The names in the folder that is there already, those of its subfolders included; none for a new one.
  virtual std::vector<HostFileName> NamesThere() = 0;
  /// One of those files.
  virtual std::unique_ptr<FileReader> OpenThere(const HostFileName& name) = 0;
  /// Whether the file system takes such a name.
  virtual bool Takes(const HostFileName& name) = 0;

  /// Begins a file. There must not be one of that name, here or there.
  virtual void StartFile(const HostFileName& name) = 0;
  virtual void Write(std::string_view bytes) = 0;
  /// Ends the file that was begun. It gets the time `modified` (FILETIME), if there is one.
  virtual void EndFile(std::optional<std::uint64_t> modified) = 0;
  /// A file that was ended.
  virtual std::unique_ptr<FileReader> Open(const HostFileName& name) = 0;

  /// Returns when the disk has all files and they have their place. Nothing may be written afterwards.
  virtual void Commit() = 0;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Entries of the pattern's folder whose names match its last component ("*.dbx", "*.*"), folders, hidden and
  /// system entries included. An unreadable or missing folder gives an enumeration without entries.
  virtual std::unique_ptr<FileFinder> Find(const WinPath& pattern) = 0;
  /// Walks the folder `root` for files whose names match `pattern` (without a folder). Paths are reported below `root`
  /// as it is written.
  virtual std::unique_ptr<FolderWalk> Walk(const WinPath& root, const std::string& pattern) = 0;
  /// The entry itself, or nothing when it does not exist.
  virtual std::optional<FileEntry> Stat(const WinPath& path) = 0;

  /// Why `path` may not be used although its names are possible ("it leads out of the disk"); nothing when it may,
  /// whether or not anything is there.
  virtual std::optional<std::string> RefusalOf(const WinPath& /*path*/) { return std::nullopt; }

  /// Makes one folder. FileExists, PathNotFound, AccessDenied, DiskFull, InvalidParameter (no possible name).
  virtual Status MakeDirectory(const WinPath& path) = 0;
  /// Makes every missing folder along the path; true when the folder is there afterwards.
  virtual bool MakePath(const WinPath& path) = 0;
  /// Removes an empty folder.
  virtual Status RemoveDirectory(const WinPath& path) = 0;
  virtual Status DeleteFile(const WinPath& path) = 0;

  /// A whole file; throws Error when it cannot be read.
  virtual std::string ReadFile(const WinPath& path) = 0;
  /// Makes or replaces a file, whole or not at all; throws Error when it cannot be written.
  virtual void WriteFile(const WinPath& path, std::string_view bytes) = 0;

  /// The same for files of any size. Both throw Error when the file cannot be opened or made.
  virtual std::unique_ptr<FileReader> OpenForReading(const WinPath& path) = 0;
  virtual std::unique_ptr<FileWriter> StartFile(const WinPath& path) = 0;
  /// Makes a folder with many files, or adds to it. The folder that it is in must be there. Throws Error.
  virtual std::unique_ptr<FolderWriter> StartFolder(const WinPath& path) = 0;
};

}  // namespace quillbox
