// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/hosted_files.h"

#include <optional>
#include <system_error>
#include <utility>

#include "host/host_names.h"
#include "platform/hosted/folder_finder.h"
#include "platform/hosted/host_open.h"
#include "platform/hosted/host_streams.h"
#include "platform/hosted/host_walk.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

/// Of a path whose folders are all made, in bytes: more is a mistake.
constexpr std::size_t kMaxMadePath = 4096;

class NoEntries : public FileFinder {
 public:
  std::optional<FileEntry> Next() override { return std::nullopt; }
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

/// The walk through a folder that is refused or not there: reports why, and ends.
class RefusedWalk : public FolderWalk {
 public:
  /// Nothing for a folder that is only not there.
  explicit RefusedWalk(std::optional<std::string> why) : why_(std::move(why)) {}
  bool Step(WalkStep& step) override {
    step = {};
    if (!why_) return false;
    step.unread.push_back(*std::exchange(why_, std::nullopt));
    return true;
  }

 private:
  std::optional<std::string> why_;
};

}  // namespace

HostedFiles::HostedFiles(HostedDrives& drives) : drives_(drives) {}

std::unique_ptr<FileFinder> HostedFiles::Find(const WinPath& pattern) {
  const std::string& text = pattern.Text();
  const std::size_t nameStart = text.find_last_of(pattern.Drive() != 0 ? "\\/:" : "\\/") + 1;
  std::string name = text.substr(nameStart);
  if (name.empty()) return std::make_unique<NoEntries>();
  if (name.find_first_of("*?") == std::string::npos) return std::make_unique<OneEntry>(Stat(pattern));

  const WinPath folder = drives_.Absolute(WinPath(text.substr(0, nameStart)));
  const PlaceResult place = drives_.PlaceOf(folder);
  if (!place) return std::make_unique<NoEntries>();
  return std::make_unique<FolderFinder>(*place, std::move(name), FolderFinder::Options{.isRoot = IsRoot(folder)});
}

std::unique_ptr<FolderWalk> HostedFiles::Walk(const WinPath& root, const std::string& pattern) {
  if (root.Empty()) return std::make_unique<RefusedWalk>(std::nullopt);
  const PlaceResult place = drives_.PlaceOf(root);
  if (place) return std::make_unique<HostWalk>(*place, root, pattern);
  std::optional<std::string> refusal = RefusalOf(root);
  if (refusal) refusal = WithBackslash(root.Text()) + ": " + *refusal;
  return std::make_unique<RefusedWalk>(std::move(refusal));
}

std::optional<FileEntry> HostedFiles::Stat(const WinPath& path) {
  const WinPath absolute = drives_.Absolute(path);
  const PlaceResult place = drives_.PlaceOf(absolute, LastStep::Keep);
  if (!place) return std::nullopt;
  if (place->IsRoot()) {
    const std::optional<EntryInfo> info = InfoOf(*place);
    return info ? std::optional(EntryOf(*info)) : std::nullopt;
  }
  try {
    const OpenPlace opened = OpenFolderOf(*place);
    const AttributeReader attributes(opened.folder);
    std::optional<FileEntry> entry = ReadHostEntry({place->Folder(), opened.folder}, opened.name, &attributes);
    if (entry) entry->name = WindowsName(opened.name);
    return entry;
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

std::optional<std::string> HostedFiles::RefusalOf(const WinPath& path) {
  const PlaceResult place = drives_.PlaceOf(path);
  if (place || place.Fault() == DiskFault::NoSuchDrive || place.Fault() == DiskFault::ImpossibleName) {
    return std::nullopt;
  }
  return ReasonOf(place.Fault());
}

Status HostedFiles::MakeDirectory(const WinPath& path) {
  const WinPath absolute = drives_.Absolute(path);
  const PlaceResult place = drives_.PlaceOf(absolute, LastStep::Keep);
  if (!place) return StatusOf(place.Fault());
  if (place->IsRoot() || InfoOf(*place)) return Status::FileExists;
  if (!IsFolder(place->Folder())) return Status::PathNotFound;
  if (FileNameFault(absolute.Name())) return Status::InvalidParameter;
  if (drives_.IsLeftAlone(absolute.Drive())) return Status::AccessDenied;
  try {
    const OpenPlace made = OpenFolderOf(*place);
    return StatusOf(made.folder.MakeFolder(made.name));
  } catch (const std::system_error& failure) {
    return StatusOf(failure.code());
  }
}

bool HostedFiles::MakePath(const WinPath& path) {
  const WinPath absolute = drives_.Absolute(path);
  const PlaceResult place = drives_.PlaceOf(absolute);
  if (!place || place->Path().Text().size() > kMaxMadePath) return false;
  if (IsFolder(*place)) return true;
  if (IsRoot(absolute) || !MakePath(absolute.Parent())) return false;
  return MakeDirectory(absolute) == Status::Success;
}

Status HostedFiles::RemoveDirectory(const WinPath& path) {
  const PlaceResult place = drives_.PlaceOf(path, LastStep::Keep);
  if (!place) return StatusOf(place.Fault());
  if (place->IsRoot() || drives_.IsLeftAlone(drives_.Absolute(path).Drive())) return Status::AccessDenied;
  try {
    const OpenPlace gone = OpenFolderOf(*place);
    return StatusOf(gone.folder.RemoveFolder(gone.name));
  } catch (const std::system_error& failure) {
    return StatusOf(failure.code());
  }
}

Status HostedFiles::DeleteFile(const WinPath& path) {
  const PlaceResult place = drives_.PlaceOf(path, LastStep::Keep);
  if (!place) return place.Fault() == DiskFault::LeadsOut ? Status::AccessDenied : Status::PathNotFound;
  if (place->IsRoot()) return Status::AccessDenied;
  if (!IsFolder(place->Folder())) return Status::PathNotFound;
  if (IsFolder(*place) || drives_.IsLeftAlone(drives_.Absolute(path).Drive())) return Status::AccessDenied;
  try {
    const OpenPlace gone = OpenFolderOf(*place);
    return StatusOf(gone.folder.Remove(gone.name));
  } catch (const std::system_error& failure) {
    return StatusOf(failure.code());
  }
}

std::string HostedFiles::ReadFile(const WinPath& path) {
  return WithName(kReading, path.Text(), [&] { return ReadWholeFile(drives_.PlaceOf(path).OrThrow()); });
}

void HostedFiles::WriteFile(const WinPath& path, std::string_view bytes) {
  const std::unique_ptr<FileWriter> file = StartFile(path);
  file->Write(bytes);
  file->Commit();
}

std::unique_ptr<FileReader> HostedFiles::OpenForReading(const WinPath& path) {
  return OpenHostFile(WithName(kReading, path.Text(), [&] { return drives_.PlaceOf(path).OrThrow(); }), path.Text());
}

/// The place of a file or folder that is about to be made; throws Error for one that cannot be.
HostPlace HostedFiles::PlaceToWrite(const WinPath& absolute) {
  HostPlace place =
      WithName(kWriting, absolute.Text(), [&] { return drives_.PlaceOf(absolute, LastStep::NoLink).OrThrow(); });
  if (const auto fault = FileNameFault(absolute.Name()); fault && !InfoOf(place)) {
    throw Error(kWriting, {absolute.Text(), {}, {}}, "no file can have that name: " + fault->reason);
  }
  return place;
}

std::unique_ptr<FileWriter> HostedFiles::StartFile(const WinPath& path) {
  const WinPath absolute = drives_.Absolute(path);
  const HostPlace place = PlaceToWrite(absolute);
  if (!IsStream(place)) Sweep(place.Folder());
  return StartHostFile(place, absolute.Text());
}

std::unique_ptr<FolderWriter> HostedFiles::StartFolder(const WinPath& path) {
  const WinPath absolute = drives_.Absolute(path);
  const HostPlace place = PlaceToWrite(absolute);
  Sweep(place.Folder());
  if (IsFolder(place)) Sweep(place);
  return StartHostFolder(place, absolute.Text());
}

}  // namespace quillbox
