// SPDX-License-Identifier: GPL-3.0-or-later
// An open folder of the host, and work on its entries by their names: what happens to the folder's own path meanwhile
// makes no difference. Names are ones that cannot leave it. Failures are std::system_error unless a call says
// otherwise.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/entry.h"
#include "host/host_file.h"
#include "host/host_handle.h"
#include "host/host_path.h"

namespace quillbox {

/// The folder could not be flushed to the disk: the file that was made or replaced in it has its name, but may lose it
/// when the power fails.
class FolderFlushError : public std::system_error {
 public:
  using std::system_error::system_error;
};

/// An entry of a folder that is listed. The kind is none where the file system does not say it along with the name.
struct ListedEntry {
  std::string name;
  std::optional<EntryKind> kind;
};

/// Work on the folder's entries: "rename `from` to `to`".
struct EntryRename {
  const std::string& from;
  const std::string& to;
};

/// What a folder is opened for.
enum class FolderUse {
  Names,    ///< work on its entries by their names, for which one that may not be read is good as well
  Listing,  ///< fails for a folder that may not be read
};

class HostFolder {
 public:
  HostFolder() = default;
  /// Opens a folder, links followed. One that may not be read is opened for work by names only.
  static HostFolder Open(const HostPath& path);
  /// Opens the folder `below` (relative, without ".."; empty for the folder itself) beneath the folder `root`, whose
  /// own links are followed, and none on the way down from it: a link fails with too_many_symbolic_link_levels. This
  /// call is what guarantees that nothing on a disk leads out of it.
  static HostFolder OpenBeneath(const HostPath& root, const HostPath& below);
  /// A handle of a folder.
  explicit HostFolder(HostHandle handle, HostPath path = {}) : handle_(std::move(handle)), path_(std::move(path)) {}

  explicit operator bool() const { return static_cast<bool>(handle_); }
  const HostHandle& Handle() const { return handle_; }
  /// Where it is, on hosts that cannot work by the handle; none on others.
  const HostPath& Path() const { return path_; }
  void Close() { handle_.Close(); }

  EntryInfo Info() const;
  /// Throws when there is no such entry.
  EntryInfo InfoOf(const std::string& name, Links links = Links::Keep) const;
  /// Nothing when there is none, or it cannot be seen.
  std::optional<EntryInfo> Find(const std::string& name, Links links = Links::Keep) const;
  /// The name under which an entry is stored: a file system that has no case finds it by other spellings, too.
  std::string StoredName(const std::string& name) const;
  /// Where a link leads to, as it is written there; nothing when it cannot be read.
  std::optional<HostPath> ReadLink(const std::string& name) const;

  HostFolder OpenFolder(const std::string& name, Links links = Links::Keep, FolderUse use = FolderUse::Names) const;
  /// For reading; never waits for a pipe's other end.
  HostFile OpenFile(const std::string& name, Links links = Links::Keep) const;

  /// Puts the next entries into `entries`, as many as one call of the system gives, without "." and ".."; false at the
  /// end. Each object lists its folder once.
  bool ListSome(std::vector<ListedEntry>& entries) const;
  /// Calls `see` with each name but "." and ".." in the order in which the file system has them, from the first on,
  /// until it returns true. False when the folder cannot be read.
  bool EachName(const std::function<bool(const std::string& name)>& see) const;

  /// These give the reason when they fail, and no code when they have done their work.
  std::error_code MakeFolder(const std::string& name) const;
  /// Removes a file, or a link itself.
  std::error_code Remove(const std::string& name) const;
  /// Removes an empty folder.
  std::error_code RemoveFolder(const std::string& name) const;
  /// In one step; replaces a file of that name.
  std::error_code Rename(const EntryRename& rename) const;
  /// Moves an entry to another folder of the same file system, where it replaces nothing: file_exists.
  std::error_code MoveNew(const std::string& name, const HostFolder& to) const;
  /// A second name for a file, in another folder of the same file system.
  std::error_code Link(const std::string& name, const HostFolder& folder, const std::string& second) const;
  /// What keeps a file from being opened for writing; it is not changed.
  std::error_code WriteFaultOf(const std::string& name, Links links) const;

  /// Flushes the folder, so that the names in it last. File systems that have no such call, and folders that may not be
  /// read, are passed over. Throws FolderFlushError.
  void Flush() const;
  /// Brings all that was written on the folder's file system to the disk, where the system has a call for that: for
  /// very many files that is much faster than one call for each.
  void FlushFileSystem() const;
  /// By the permissions alone.
  bool MayWrite() const;
  /// True when new files can be made in it. Leaves nothing behind, not even a changed time.
  bool CanMakeFiles() const;

 private:
  /// The same folder for listing.
  HostFolder OpenAgain() const;

  HostHandle handle_;
  HostPath path_;
};

}  // namespace quillbox
