// SPDX-License-Identifier: GPL-3.0-or-later
// Calls on the host's disk for hive files: replace a file and keep its owner, permissions and attributes, keep the
// original beside it, find out whether it can be written or has changed.
#pragma once

#include <cstdint>
#include <string>
#include <system_error>

#include "host/entry.h"
#include "platform/hosted/host_place.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

/// An Error of a call on a host file, with its code.
class HostFileError : public Error {
 public:
  HostFileError(std::string doing, const HostPlace& file, const std::error_code& code, bool inPlace = false);
  /// True when the file is in its place, but may not stay there if the power fails.
  bool IsInPlace() const { return inPlace_; }
  /// True when the disk or the permissions forbid the write, as opposed to a full or failing disk.
  bool IsReadOnly() const;

 private:
  std::error_code code_;
  bool inPlace_;
};

/// What distinguishes one state of a file from another. All zero for a file that is not there.
struct FileState {
  FileId id;
  std::uint64_t size = 0;
  HostTime modified;
  bool operator==(const FileState&) const = default;
};
FileState StateOf(const HostPlace& file);

/// What changes in a hive whenever it is written: the sequence numbers and the time in its first block, as hexadecimal
/// digits. "none" when there is no such file.
std::string HiveStamp(const HostPlace& hive);

/// The whole file, which must be an ordinary one, and no larger than any hive. Throws Error; `doing` as there.
Bytes ReadHostFile(const HostPlace& file, const std::string& doing);

/// Writes `file` with `bytes` as its content, whole or not at all. Owner, permissions, extended attributes
/// (Windows' own ones and the time of creation among them) are taken from `like`, where it exists, as far as the system
/// lets them. Throws HostFileError, with no temporary file left, and with the file as it was unless IsInPlace().
void ReplaceHostFile(const HostPlace& file, ByteView bytes, const std::string& doing, const HostPlace& like);

/// The entry beside `file` whose name is the file's with `suffix` at the end.
HostPlace Beside(const HostPlace& file, const char* suffix);
/// A file and the name that it gets, in the same folder.
struct HostMove {
  const HostPlace& from;
  const HostPlace& to;
};
/// Gives `move.from` the name of `move.to` in one step, and flushes the folder. Throws HostFileError.
void MoveIntoPlace(const HostMove& move, const std::string& doing);
/// True for an ordinary file under this very name; false for a link to one.
bool IsOrdinaryEntry(const HostPlace& file);
/// Removes a file or a link itself. The reason when it stays.
std::error_code RemoveEntry(const HostPlace& file);

enum class KeepHow {
  SecondName,  ///< a hard link where there are any, else a copy: for a file that will be replaced, never overwritten
  Copy,
};
/// Keeps what `file` holds now as `kept`; false when there is a `kept`, which is left alone. Throws HostFileError.
bool KeepBeside(const HostPlace& file, const HostPlace& kept, KeepHow how);

/// True when new files can be made in `folder`. Leaves nothing behind, not even a changed time.
bool CanWriteFolder(const HostPlace& folder);
/// True when `file` may be written and replaced. Asks the file system, not only the permissions, since an
/// administrator may ignore those. A failing disk does not make it false, or one bad moment would send all changes to a
/// private copy; the write itself then reports what is wrong.
bool CanReplaceFile(const HostPlace& file);

}  // namespace quillbox
