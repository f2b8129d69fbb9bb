// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/file_search.h"

#include <iterator>
#include <utility>

namespace quillbox {

void FoundFiles::Add(const std::string& folder, std::vector<std::string> names) {
  if (names.empty()) return;
  if (folders_.empty() || folders_.back() != folder) folders_.push_back(folder);
  const auto number = static_cast<std::uint32_t>(folders_.size() - 1);
  for (std::string& name : names) files_.push_back({number, std::move(name)});
}

void FoundFiles::Clear() {
  folders_.clear();
  files_.clear();
}

void SearchFiles(FileSystem& files, const WinPath& root, const std::string& pattern, FoundFiles& found,
                 SearchReport& report, const SearchProgress& progress) {
  const std::unique_ptr<FolderWalk> walk = files.Walk(root, pattern);
  WalkStep step;
  while (walk->Step(step)) {
    found.Add(step.folder, std::move(step.files));
    std::move(step.unread.begin(), step.unread.end(), std::back_inserter(report.unread));
    report.cancelled = !progress(step.folder, found.Count());
    if (report.cancelled) return;
  }
}

}  // namespace quillbox
