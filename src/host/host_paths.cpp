// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_paths.h"

namespace quillbox {

bool Exists(const HostPath& path) {
  return InfoOf(path).info.has_value();
}

bool IsFolder(const HostPath& path) {
  const PathInfo there = InfoOf(path);
  return there.info && there.info->IsFolder();
}

bool IsSameEntry(const HostPath& a, const HostPath& b) {
  const PathInfo entryA = InfoOf(a);
  const PathInfo entryB = InfoOf(b);
  return entryA.info && entryB.info && entryA.info->id == entryB.info->id;
}

}  // namespace quillbox
