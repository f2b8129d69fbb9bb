// SPDX-License-Identifier: GPL-3.0-or-later
// Windows' hidden and system attributes of files on the host. Only some file systems keep them, each in its own way;
// where none does, nothing is hidden.
#pragma once

#include <string>

#include "host/host_folder.h"

namespace quillbox {

struct FileAttributes {
  bool isHidden = false;
  bool isSystem = false;
};

/// Reads attributes of the entries of one folder. The constructor finds out how the folder's file system keeps them, so
/// that entries cost nothing where it does not.
class AttributeReader {
 public:
  /// `folder` must stay open.
  explicit AttributeReader(const HostFolder& folder);
  /// The attributes of the entry `name`, those of a link being its own; none set when they cannot be read.
  FileAttributes Of(const std::string& name) const;

 private:
  std::string folder_;  ///< as a path, final separator included: some calls know attributes by path only
  const struct AttributeSource* source_ = nullptr;  ///< null when the file system keeps no attributes
};

}  // namespace quillbox
