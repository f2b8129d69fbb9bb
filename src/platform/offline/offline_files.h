// The file system of a Windows disk that isn't running: Windows' names, drives and current directories over folders of
// the host.
#pragma once

#include <filesystem>
#include <map>
#include <optional>

#include "platform/file_system.h"
#include "platform/host_paths.h"
#include "platform/offline/drive_map.h"
#include "platform/offline/environment.h"
#include "platform/offline/folder_sweep.h"
#include "text/code_page.h"

namespace quillbox {

class OfflineFiles : public FileSystem, public HostPaths {
 public:
  /// `environment` must outlive this object; it may be filled later. The current drive is C:, every current directory
  /// its drive's root.
  OfflineFiles(DriveMap drives, const Environment& environment);

  const DriveMap& Drives() const { return drives_; }
  /// From now on nothing is written on the disk's own drives: what a person asks for is refused with that reason.
  void LeaveDiskAlone() { drives_.LeaveDiskAlone(); }
  /// `path` made absolute with the current drive and directories.
  WinPath Absolute(const WinPath& path) const;
  /// Where `path` is on the host, whether it exists or not; why not, when it is on no drive of ours or leads out of the
  /// disk.
  PlaceResult PlaceOf(const WinPath& path, LastStep last = LastStep::Follow) const;
  std::filesystem::path HostPath(const WinPath& path) const override;
  WinPath WindowsPathOf(const std::filesystem::path& path) const override;
  void SetCodePageNumber(unsigned number) { codePage_ = number; }
  /// Frees a host folder, into which a file is about to be written, of abandoned temporary files.
  void Sweep(const HostPlace& folder) { sweep_.Sweep(folder); }
  void EndCommand() { sweep_.Forget(); }

  std::unique_ptr<FileFinder> Find(const WinPath& pattern) override;
  std::unique_ptr<FileFinder> FindNames(const WinPath& pattern) override;
  std::unique_ptr<FolderWalk> Walk(const WinPath& root, const std::string& pattern) override;
  std::optional<FileEntry> Stat(const WinPath& path) override;
  std::optional<std::string> RefusalOf(const WinPath& path) override;
  DriveType TypeOfDrive(const WinPath& root) override;
  bool IsOwnDrive(char letter) override;
  std::optional<std::string> VolumeLabel(const WinPath& root) override;
  std::string ExpandEnvironment(std::string_view text) override { return environment_.Expand(text); }
  Status MakeDirectory(const WinPath& path) override;
  bool MakePath(const WinPath& path) override;
  Status DeleteFile(const WinPath& path) override;
  Status SetCurrentDrive(char letter) override;
  Status SetCurrentDirectory(const WinPath& path) override;
  WinPath CurrentDirectory() override { return CurrentDirectoryOf(currentDrive_); }
  std::string ReadFile(const WinPath& path) override;
  void WriteFile(const WinPath& path, std::string_view bytes) override;
  std::unique_ptr<FileReader> OpenForReading(const WinPath& path) override;
  std::unique_ptr<FileWriter> StartFile(const WinPath& path) override;
  unsigned CodePageNumber() override { return codePage_; }

 private:
  WinPath CurrentDirectoryOf(char letter) const;
  std::unique_ptr<FileFinder> Find(const WinPath& pattern, bool namesOnly);

  DriveMap drives_;
  const Environment& environment_;
  FolderSweep sweep_;
  unsigned codePage_ = CodePage::kDefault;
  char currentDrive_ = DriveMap::kSystemDrive;
  std::map<char, WinPath> currentDirectories_;  ///< a drive without an entry is at its root
};

}  // namespace quillbox
