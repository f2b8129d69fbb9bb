// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/file_helpers.h"

namespace quillbox {

bool DirExists(FileSystem& files, const WinPath& path) {
  const auto finder = files.Find(path.Join("*.*"));
  while (const auto entry = finder->Next()) {
    if (!entry->isHidden && !entry->isSystem) return true;
  }
  return false;
}

std::string WhyNoFolder(FileSystem& files, const WinPath& path) {
  const std::optional<std::string> refusal = files.RefusalOf(path);
  return refusal ? "cannot be used: " + *refusal : "does not exist";
}

std::vector<std::string> FileList(FileSystem& files, const WinPath& pattern) {
  std::vector<std::string> names;
  const auto finder = files.Find(pattern);
  while (const auto entry = finder->Next()) {
    if (!entry->isDirectory && !entry->isHidden && !entry->isSystem) names.push_back(entry->name);
  }
  if (names.empty()) names.emplace_back();
  return names;
}

}  // namespace quillbox
