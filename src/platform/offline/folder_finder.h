// The running enumeration of one host folder, entry by entry in the order in which the file system gives them.
#pragma once

#include <dirent.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/offline/file_attributes.h"

namespace quillbox {

/// What the host says about the entry of a folder under its stored name; links are followed as far as they lead.
/// Nothing when it does not exist. `attributes` may be null. The entry's name is left empty.
std::optional<FileEntry> ReadHostEntry(int folderFd, const std::string& storedName, const AttributeReader* attributes);

class FolderFinder : public FileFinder {
 public:
  struct Options {
    bool isRoot = false;     ///< a drive's root, which has no "." and ".."
    bool namesOnly = false;  ///< leaves out what costs a call for each entry
  };

  /// `pattern` is a Wildcard. A folder that cannot be read has no entries.
  FolderFinder(const std::filesystem::path& folder, const std::string& pattern, Options options);

  std::optional<FileEntry> Next() override;

 private:
  std::optional<FileEntry> NextDots();
  std::optional<FileEntry> Read(const dirent& entry) const;

  struct Close {
    void operator()(DIR* dir) const { closedir(dir); }
  };
  std::unique_ptr<DIR, Close> dir_;
  Wildcard pattern_;
  bool namesOnly_;
  int dotsGiven_;  ///< 2 when "." and ".." are done with
  std::optional<AttributeReader> attributes_;
};

}  // namespace quillbox
