// SPDX-License-Identifier: GPL-3.0-or-later
// The running enumeration of one host folder, entry by entry in the order in which the file system gives them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/file_attributes.h"
#include "host/host_folder.h"
#include "platform/file_system.h"
#include "platform/hosted/host_place.h"

namespace quillbox {

/// A folder of the host, open and with its place, by which links in it are followed.
struct OpenedFolder {
  HostPlace place;
  const HostFolder& folder;
};
/// What is behind a folder's entry: what a link leads to, or the link itself where it leads nowhere or out of the disk.
/// Nothing when there is no such entry.
std::optional<EntryInfo> InfoBehind(const OpenedFolder& folder, const std::string& storedName);

/// What the host says about a folder's entry under its stored name, as InfoBehind. `attributes` may be null. The
/// entry's name is left empty.
std::optional<FileEntry> ReadHostEntry(const OpenedFolder& folder, const std::string& storedName,
                                       const AttributeReader* attributes);
FileEntry EntryOf(const EntryInfo& info);

class FolderFinder : public FileFinder {
 public:
  struct Options {
    bool isRoot = false;     ///< a drive's root, which has no "." and ".."
    bool namesOnly = false;  ///< leaves out what costs a call for each entry
  };

  /// `pattern` is a Wildcard. A folder that cannot be read has no entries.
  FolderFinder(const HostPlace& folder, const std::string& pattern, Options options);

  std::optional<FileEntry> Next() override;

 private:
  std::optional<FileEntry> NextDots();
  bool ListMore();
  std::optional<FileEntry> Read(const ListedEntry& listed) const;

  HostPlace place_;
  HostFolder folder_;
  Wildcard pattern_;
  bool namesOnly_;
  int dotsGiven_;  ///< of "." and ".."
  std::optional<AttributeReader> attributes_;
  std::vector<ListedEntry> listed_;
  std::size_t next_ = 0;  ///< of those that are listed
};

}  // namespace quillbox
