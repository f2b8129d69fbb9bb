// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/folder_controls.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "text/unicode.h"

namespace quillbox {
namespace {

std::vector<std::string> SortedNames(FileSystem& files, const WinPath& folder, bool directories) {
  std::vector<std::string> names;
  const auto finder = files.Find(folder.Join("*.*"));
  while (const auto entry = finder->Next()) {
    if (entry->isDirectory != directories || entry->isHidden || entry->isSystem) continue;
    if (entry->name != "." && entry->name != "..") names.push_back(entry->name);
  }
  std::sort(names.begin(), names.end(),
            [](const std::string& a, const std::string& b) { return UpperCase(a) < UpperCase(b); });
  return names;
}

}  // namespace

void DriveListBox::Fill(Drives& drives) {
  std::vector<std::string> roots;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string root = std::string(1, letter) + ":\\";
    if (drives.TypeOfDrive(WinPath(root)) > DriveType::NoRoot) roots.push_back(root);
  }
  items = std::move(roots);
}

void DriveListBox::ShowDriveOf(const WinPath& path) {
  if (path.Drive() != 0) text = std::string(1, path.Drive()) + ":\\";
}

void DirListBox::SetPath(FileSystem& files, Drives& drives, const WinPath& folder) {
  path_ = Resolve(folder, drives.CurrentDirectory());
  Refresh(files);
}

void DirListBox::Refresh(FileSystem& files) {
  folders_.clear();
  for (WinPath above = path_; !above.Empty(); above = above.Parent()) {
    folders_.insert(folders_.begin(), above);
    if (above == above.Parent()) break;
  }
  const std::size_t ownLine = folders_.empty() ? 0 : folders_.size() - 1;
  for (const std::string& name : SortedNames(files, path_, true)) folders_.push_back(path_.Join(name));

  std::vector<std::string> lines;
  for (std::size_t i = 0; i < folders_.size(); ++i) {
    const std::size_t depth = std::min(i, ownLine + 1);
    const std::string name = folders_[i].Name();
    lines.push_back(std::string(2 * depth, ' ') + (name.empty() ? folders_[i].Text() : name));
  }
  items = std::move(lines);
  if (!folders_.empty()) selected = ownLine;
}

void FileListBox::SetPath(FileSystem& files, const WinPath& folder) {
  path_ = folder;
  Refresh(files);
}

void FileListBox::Refresh(FileSystem& files) {
  items = SortedNames(files, path_, false);
}

}  // namespace quillbox
