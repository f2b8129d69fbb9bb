// SPDX-License-Identifier: GPL-3.0-or-later
// Files that are written whole or not at all. Failures are std::system_error.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/host_file.h"
#include "host/host_folder.h"

namespace quillbox {

/// Bytes of a file.
struct FilePart {
  std::uint64_t offset;
  std::size_t size;
};

/// A file in the making: written under a temporary name beside its target, and in the target's place with Commit(),
/// after a flush to the disk. Destroyed before that, it leaves what was there. Everything happens in the folder that
/// was there at the beginning, also when that is renamed meanwhile. The permissions of a file that is replaced are
/// kept.
class NewFile {
 public:
  /// The file `name` in `folder`. With Links::Keep a target that is a link is refused (too_many_symbolic_link_levels);
  /// otherwise only NewFile(HostPath) replaces what it leads to.
  NewFile(HostFolder folder, std::string name, Links links);
  /// Anywhere on the host; a link is followed, and the file that it leads to is replaced.
  explicit NewFile(const HostPath& target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void Write(std::string_view bytes);
  /// Appends a part of `from`, or its beginning, without bringing it here; the bytes copied. 0 when the system cannot
  /// copy between these files, or cannot read there: a read then reports the reason.
  std::size_t Append(const HostFile& from, FilePart part);
  /// Asks the system to begin to bring a part to the disk, and does not wait. Who does so for each kWriteBackPiece
  /// while more is made waits less for Flush().
  void BeginWriteBack(FilePart part);
  static constexpr std::uint64_t kWriteBackPiece = std::uint64_t{2} * 1024 * 1024;
  /// Reads what was written so far.
  std::size_t ReadAt(std::uint64_t offset, std::span<char> buffer);
  EntryInfo Info() const;

  void SetTimes(const HostTime& accessed, const HostTime& modified);
  /// Owner, permissions and attributes of another file, Windows' own ones and the time of creation among them, as far
  /// as the file system has them and the system lets them.
  void TakeAttributesOf(const HostFile& like);
  /// Another name for the file, in the same folder.
  void SetName(const std::string& name) { name_ = name; }
  /// Returns when the disk has what was written so far. Costs nothing when nothing was written since the last time.
  void Flush();
  /// Flushes, gives the file its name and flushes the folder; with FolderFlushError the file is in its place.
  void Commit();

 private:
  void Begin(Links links);

  HostFolder folder_;
  std::string name_;
  std::string temporary_;  ///< empty when there is none (any more)
  HostHandle handle_;
  bool flushed_ = false;
};

/// Removes what killed programs have left in a folder: temporary files of NewFile, and folders of NewFolder, that
/// nobody is writing any more.
void RemoveAbandonedFiles(const HostFolder& folder);

/// A device, pipe or terminal that is written to and never replaced.
class HostStream {
 public:
  explicit HostStream(const HostPath& path);
  void Write(std::string_view bytes);

 private:
  HostHandle handle_;
};

}  // namespace quillbox
