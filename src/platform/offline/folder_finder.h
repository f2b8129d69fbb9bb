// The running enumeration of one host folder, entry by entry in the order in which the file system gives them.
#pragma once

#include <dirent.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/offline/file_attributes.h"
#include "platform/offline/host_place.h"

namespace quillbox {

/// A folder of the host, open and with its place, by which links in it are followed.
struct OpenedFolder {
  HostPlace place;
  int fd;
};
/// What is behind a folder's entry: what a link leads to, or the link itself where it leads nowhere or out of the disk.
/// Nothing when there is no such entry.
std::optional<struct stat> StatEntry(const OpenedFolder& folder, const std::string& storedName);

/// What the host says about a folder's entry under its stored name, as StatEntry. `attributes` may be null. The entry's
/// name is left empty.
std::optional<FileEntry> ReadHostEntry(const OpenedFolder& folder, const std::string& storedName,
                                       const AttributeReader* attributes);
FileEntry EntryOf(const struct stat& info);

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
  std::optional<FileEntry> Read(const dirent& entry) const;

  struct Close {
    void operator()(DIR* dir) const { closedir(dir); }
  };
  HostPlace place_;
  std::unique_ptr<DIR, Close> dir_;
  Wildcard pattern_;
  bool namesOnly_;
  int dotsGiven_;  ///< of "." and ".."
  std::optional<AttributeReader> attributes_;
};

}  // namespace quillbox
