// SPDX-License-Identifier: GPL-3.0-or-later
// What the host says about an entry of a folder.
#pragma once

#include <cstdint>

namespace quillbox {

enum class EntryKind {
  File,
  Folder,
  Link,   ///< a symbolic link; on Windows a junction as well
  Other,  ///< a device, pipe or socket
};

/// Tells one file from another, whatever it is called.
struct FileId {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;
  bool operator==(const FileId&) const = default;
};

/// A moment: since 1970 UTC.
struct HostTime {
  std::int64_t seconds = 0;
  std::uint32_t nanoseconds = 0;
  bool operator==(const HostTime&) const = default;
};

struct EntryInfo {
  EntryKind kind = EntryKind::File;
  std::uint64_t size = 0;  ///< in bytes; a link's is that of its target's text
  HostTime modified;
  HostTime accessed;
  FileId id;

  bool IsFile() const { return kind == EntryKind::File; }
  bool IsFolder() const { return kind == EntryKind::Folder; }
  bool IsLink() const { return kind == EntryKind::Link; }
};

/// What becomes of a link that a call comes upon as the last name.
enum class Links {
  Follow,
  Keep,  ///< the link itself is meant; where it cannot be, the call fails with too_many_symbolic_link_levels
};

}  // namespace quillbox
