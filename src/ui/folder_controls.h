// SPDX-License-Identifier: GPL-3.0-or-later
// The drive, folder and file lists for browsing a disk.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/drives.h"
#include "platform/file_system.h"
#include "text/win_path.h"
#include "ui/controls.h"

namespace quillbox {

/// Lists the existing drives ("C:\", "D:\").
class DriveListBox : public ComboBox {
 public:
  using ComboBox::ComboBox;
  void Fill(Drives& drives);
  /// Shows the drive of `path` without running a handler.
  void ShowDriveOf(const WinPath& path);
};

/// Shows the folders above a folder, the folder itself, and the folders in it. The window's handlers move to the
/// folder that is opened.
class DirListBox : public ListBox {
 public:
  using ListBox::ListBox;
  /// Moves to `folder`, which may be relative to the current directory, without running a handler.
  void SetPath(FileSystem& files, Drives& drives, const WinPath& folder);
  void Refresh(FileSystem& files);
  const WinPath& Path() const { return path_; }
  /// The folder that line `index` shows.
  WinPath FolderAt(std::size_t index) const { return folders_.at(index); }

 private:
  WinPath path_;
  std::vector<WinPath> folders_;
};

/// Lists the names of the files in a folder, hidden and system files left out.
class FileListBox : public ListBox {
 public:
  using ListBox::ListBox;
  /// `folder` is absolute.
  void SetPath(FileSystem& files, const WinPath& folder);
  void Refresh(FileSystem& files);
  const WinPath& Path() const { return path_; }

 private:
  WinPath path_;
};

}  // namespace quillbox
