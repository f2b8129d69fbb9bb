// SPDX-License-Identifier: GPL-3.0-or-later
// Files and folders of the host under the names that a Windows path gives them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_system.h"
#include "platform/hosted/folder_sweep.h"
#include "platform/hosted/hosted_drives.h"

namespace quillbox {

class HostedFiles : public FileSystem {
 public:
  /// `drives` must outlive this object.
  explicit HostedFiles(HostedDrives& drives);

  HostedDrives& OnDrives() const { return drives_; }
  /// Removes abandoned temporary files from a host folder into which a file is about to be written.
  void Sweep(const HostPlace& folder) { sweep_.Sweep(folder); }
  void EndCommand() { sweep_.Forget(); }

  std::unique_ptr<FileFinder> Find(const WinPath& pattern) override;
  std::unique_ptr<FolderWalk> Walk(const WinPath& root, const std::string& pattern) override;
  std::optional<FileEntry> Stat(const WinPath& path) override;
  std::optional<std::string> RefusalOf(const WinPath& path) override;
  Status MakeDirectory(const WinPath& path) override;
  bool MakePath(const WinPath& path) override;
  Status RemoveDirectory(const WinPath& path) override;
  Status DeleteFile(const WinPath& path) override;
  std::string ReadFile(const WinPath& path) override;
  void WriteFile(const WinPath& path, std::string_view bytes) override;
  std::unique_ptr<FileReader> OpenForReading(const WinPath& path) override;
  std::unique_ptr<FileWriter> StartFile(const WinPath& path) override;
  std::unique_ptr<FolderWriter> StartFolder(const WinPath& path) override;

 private:
  HostPlace PlaceToWrite(const WinPath& absolute);

  HostedDrives& drives_;
  FolderSweep sweep_;
};

}  // namespace quillbox
