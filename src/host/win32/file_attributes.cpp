// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/file_attributes.h"

#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

// Every file system that Windows has keeps them; roots of drives, which have them as well, are never hidden.
AttributeReader::AttributeReader(const HostFolder& folder) {
  if (IsVirtualFolder(folder.Path())) return;
  folder_ = Narrow(SystemPath(folder.Path()));
  if (!folder_.ends_with('\\')) folder_ += '\\';
}

FileAttributes AttributeReader::Of(const std::string& name) const {
  if (folder_.empty()) return {};
  const DWORD attributes = GetFileAttributesW(Wide(folder_ + name).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return {};
  return {(attributes & FILE_ATTRIBUTE_HIDDEN) != 0, (attributes & FILE_ATTRIBUTE_SYSTEM) != 0};
}

}  // namespace quillbox
