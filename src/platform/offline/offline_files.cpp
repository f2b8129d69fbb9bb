#include "platform/offline/offline_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <system_error>
#include <utility>

#include "platform/offline/folder_finder.h"
#include "platform/offline/host_file.h"
#include "platform/offline/host_streams.h"
#include "platform/offline/host_walk.h"
#include "platform/offline/volume_label.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kNewFolderMode = 0777;
constexpr const char* kNoSuchPlace = "there is no such drive or folder";

class NoEntries : public FileFinder {
 public:
  std::optional<FileEntry> Next() override { return std::nullopt; }
};

class NoWalk : public FolderWalk {
 public:
  bool Step(WalkStep& /*step*/) override { return false; }
};

class OneEntry : public FileFinder {
 public:
  explicit OneEntry(std::optional<FileEntry> entry) : entry_(std::move(entry)) {}
  std::optional<FileEntry> Next() override { return std::exchange(entry_, std::nullopt); }

 private:
  std::optional<FileEntry> entry_;
};

bool IsRoot(const WinPath& absolute) {
  return absolute.IsAbsolute() && absolute.Text().size() == 3;
}

bool IsFolder(const fs::path& path) {
  std::error_code code;
  return fs::is_directory(path, code);
}

bool Exists(const fs::path& path) {
  std::error_code code;
  return fs::exists(fs::symlink_status(path, code));
}

}  // namespace

OfflineFiles::OfflineFiles(DriveMap drives, const Environment& environment)
    : drives_(std::move(drives)), environment_(environment) {}

WinPath OfflineFiles::CurrentDirectoryOf(char letter) const {
  const auto directory = currentDirectories_.find(letter);
  return directory != currentDirectories_.end() ? directory->second : WinPath(std::string{letter, ':', '\\'});
}

WinPath OfflineFiles::Absolute(const WinPath& path) const {
  const char letter = path.Drive() != 0 ? path.Drive() : currentDrive_;
  return Resolve(path, CurrentDirectoryOf(letter));
}

std::optional<fs::path> OfflineFiles::HostPathOf(const WinPath& path) const {
  return drives_.HostPath(Absolute(path));
}

WinPath OfflineFiles::WindowsPathOf(const fs::path& path) const {
  return drives_.WindowsPathOf(path).value_or(WinPath());
}

std::unique_ptr<FileFinder> OfflineFiles::Find(const WinPath& pattern) {
  return Find(pattern, false);
}

std::unique_ptr<FileFinder> OfflineFiles::FindNames(const WinPath& pattern) {
  return Find(pattern, true);
}

std::unique_ptr<FileFinder> OfflineFiles::Find(const WinPath& pattern, bool namesOnly) {
  const std::string& text = pattern.Text();
  const std::size_t nameStart = text.find_last_of(pattern.Drive() != 0 ? "\\/:" : "\\/") + 1;
  std::string name = text.substr(nameStart);
  if (name.empty()) return std::make_unique<NoEntries>();
  if (name.find_first_of("*?") == std::string::npos) return std::make_unique<OneEntry>(Stat(pattern));

  const WinPath folder = Absolute(WinPath(text.substr(0, nameStart)));
  const std::optional<fs::path> host = drives_.HostPath(folder);
  if (!host) return std::make_unique<NoEntries>();
  return std::make_unique<FolderFinder>(*host, std::move(name), FolderFinder::Options{IsRoot(folder), namesOnly});
}

std::unique_ptr<FolderWalk> OfflineFiles::Walk(const WinPath& root, const std::string& pattern) {
  const std::optional<fs::path> host = root.Empty() ? std::nullopt : HostPathOf(root);
  if (!host) return std::make_unique<NoWalk>();
  return std::make_unique<HostWalk>(*host, WithBackslash(root.Text()), pattern);
}

std::optional<FileEntry> OfflineFiles::Stat(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const std::optional<fs::path> host = drives_.HostPath(absolute);
  if (!host) return std::nullopt;
  if (IsRoot(absolute)) return ReadHostEntry(AT_FDCWD, host->string(), nullptr);

  const fs::path folder = host->parent_path();
  const HostFd fd(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!fd) return std::nullopt;
  const std::string stored = host->filename().string();
  const AttributeReader attributes(folder);
  std::optional<FileEntry> entry = ReadHostEntry(fd.Get(), stored, &attributes);
  if (entry) entry->name = WindowsName(stored);
  return entry;
}

DriveType OfflineFiles::TypeOfDrive(const WinPath& root) {
  const fs::path* folder = drives_.FolderOf(root.Drive());
  if (folder == nullptr || !IsFolder(*folder)) return DriveType::NoRoot;
  return drives_.IsHostDrive(root.Drive()) ? DriveType::Remote : DriveType::Fixed;
}

std::optional<std::string> OfflineFiles::VolumeLabel(const WinPath& root) {
  const fs::path* folder = drives_.FolderOf(root.Drive());
  if (folder == nullptr || !IsFolder(*folder)) return std::nullopt;
  return LabelOfMount(*folder);
}

Status OfflineFiles::MakeDirectory(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const std::optional<fs::path> host = drives_.HostPath(absolute);
  if (!host) return drives_.FolderOf(absolute.Drive()) == nullptr ? Status::PathNotFound : Status::InvalidParameter;
  if (IsRoot(absolute) || Exists(*host)) return Status::FileExists;
  if (!IsFolder(host->parent_path())) return Status::PathNotFound;
  if (!FileNameFault(absolute.Name()).empty()) return Status::InvalidParameter;
  return StatusOfErrno(mkdir(host->c_str(), kNewFolderMode) == 0 ? 0 : errno);
}

bool OfflineFiles::MakePath(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const std::optional<fs::path> host = drives_.HostPath(absolute);
  if (!host || host->native().size() > PATH_MAX) return false;
  if (IsFolder(*host)) return true;
  if (IsRoot(absolute) || !MakePath(absolute.Parent())) return false;
  return MakeDirectory(absolute) == Status::Success;
}

Status OfflineFiles::DeleteFile(const WinPath& path) {
  const std::optional<fs::path> host = HostPathOf(path);
  if (!host || !IsFolder(host->parent_path())) return Status::PathNotFound;
  if (IsFolder(*host)) return Status::AccessDenied;
  return StatusOfErrno(unlink(host->c_str()) == 0 ? 0 : errno);
}

Status OfflineFiles::SetCurrentDrive(char letter) {
  const char upper = WinPath(std::string{letter, ':'}).Drive();
  if (drives_.FolderOf(upper) == nullptr) return Status::PathNotFound;
  currentDrive_ = upper;
  return Status::Success;
}

Status OfflineFiles::SetCurrentDirectory(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const std::optional<fs::path> host = drives_.HostPath(absolute);
  if (path.Empty() || !host || !IsFolder(*host)) return Status::PathNotFound;
  currentDirectories_[absolute.Drive()] = absolute;
  return Status::Success;
}

std::string OfflineFiles::ReadFile(const WinPath& path) {
  const std::optional<fs::path> host = HostPathOf(path);
  if (!host) throw Error(kReading, {path.Text(), {}, {}}, kNoSuchPlace);
  try {
    return ReadWholeFile(*host);
  } catch (const std::system_error& failure) {
    throw Error(kReading, {path.Text(), {}, {}}, SystemReason(failure.code().value()));
  }
}

void OfflineFiles::WriteFile(const WinPath& path, std::string_view bytes) {
  const std::unique_ptr<FileWriter> file = StartFile(path);
  file->Write(bytes);
  file->Commit();
}

std::unique_ptr<FileReader> OfflineFiles::OpenForReading(const WinPath& path) {
  const std::optional<fs::path> host = HostPathOf(path);
  if (!host) throw Error(kReading, {path.Text(), {}, {}}, kNoSuchPlace);
  return OpenHostFile(*host, path.Text());
}

std::unique_ptr<FileWriter> OfflineFiles::StartFile(const WinPath& path) {
  const WinPath absolute = Absolute(path);
  const ErrorPlace place{absolute.Text(), {}, {}};
  const std::optional<fs::path> host = drives_.HostPath(absolute);
  if (!host) throw Error(kWriting, place, kNoSuchPlace);
  if (const std::string fault = FileNameFault(absolute.Name()); !fault.empty() && !Exists(*host)) {
    throw Error(kWriting, place, "no file can have that name: " + fault);
  }
  return StartHostFile(*host, absolute.Text());
}

}  // namespace quillbox
