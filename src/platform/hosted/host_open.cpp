// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/host_open.h"

#include "host/host_paths.h"

namespace quillbox {

namespace {

/// Throws for a failed call on `place`, which was found with `last`: where a link was the reason, with where it leads.
[[noreturn]] void ThrowAbout(const HostPlace& place, const std::error_code& code, LastStep last = LastStep::Follow) {
  if (!place.IsBeneathDrive() || code != std::errc::too_many_symbolic_link_levels) ThrowFault(code);
  const PlaceResult again = FindAgain(place, last);
  ThrowFault(again ? make_error_code(DiskFault::Changed) : again.Fault());
}

/// Refuses everything that is not an ordinary file; a disk's devices and pipes are not even opened.
void CheckOrdinary(const HostPlace& file, const EntryInfo& info) {
  if (info.IsLink()) ThrowAbout(file, SystemCode(std::errc::too_many_symbolic_link_levels));
  if (info.IsFolder()) ThrowFault(SystemCode(std::errc::is_a_directory));
  if (!info.IsFile()) ThrowFault(HostFault::NotOrdinary);
}

HostFile OpenEntry(const HostPlace& file, const OpenPlace& entry) try {
  return entry.folder.OpenFile(entry.name, entry.links);
} catch (const std::system_error& failure) {
  ThrowAbout(file, failure.code());
}

}  // namespace

HostFolder OpenFolder(const HostPlace& folder) try {
  if (!folder.IsBeneathDrive()) return HostFolder::Open(folder.Path());
  return HostFolder::OpenBeneath(folder.Drive().folder, folder.Names());
} catch (const std::system_error& failure) {
  ThrowAbout(folder, failure.code());
}

OpenPlace OpenFolderOf(const HostPlace& place) {
  if (place.IsRoot()) ThrowFault(SystemCode(std::errc::is_a_directory));
  return {OpenFolder(place.Folder()), place.Name(), place.IsBeneathDrive() ? Links::Keep : Links::Follow};
}

HostFile OpenForReading(const HostPlace& file) {
  if (!file.IsBeneathDrive()) return HostFile::Open(file.Path());
  const OpenPlace entry = OpenFolderOf(file);
  CheckOrdinary(file, entry.Info());
  HostFile opened = OpenEntry(file, entry);
  CheckOrdinary(file, opened.Info());
  return opened;
}

std::string ReadWholeFile(const HostPlace& file) {
  return OpenForReading(file).ReadWhole();
}

std::unique_ptr<NewFile> StartNewFile(const HostPlace& target) {
  if (!target.IsBeneathDrive()) return std::make_unique<NewFile>(target.Path());
  OpenPlace entry = OpenFolderOf(target);
  try {
    return std::make_unique<NewFile>(std::move(entry.folder), std::move(entry.name), Links::Keep);
  } catch (const std::system_error& failure) {
    ThrowAbout(target, failure.code(), LastStep::NoLink);
  }
}

bool IsStream(const HostPlace& file) {
  if (file.IsBeneathDrive()) return false;
  const std::optional<EntryInfo> existing = InfoOf(file);
  return existing && existing->kind == EntryKind::Other;
}

void RemoveAbandonedFilesIn(const HostPlace& folder) {
  try {
    RemoveAbandonedFiles(OpenFolder(folder));
  } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): a folder that is missing has no leftovers
  }
}

std::optional<EntryInfo> InfoOf(const HostPlace& place) {
  if (!place.IsBeneathDrive() || place.IsRoot()) return InfoOf(place.Path()).info;
  try {
    const HostFolder folder = HostFolder::OpenBeneath(place.Drive().folder, place.Names().Parent());
    return folder.Find(place.Name());
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

bool IsFolder(const HostPlace& place) {
  const std::optional<EntryInfo> info = InfoOf(place);
  return info && info->IsFolder();
}

bool IsSameEntry(const HostPlace& a, const HostPlace& b) {
  const std::optional<EntryInfo> entryA = InfoOf(a);
  const std::optional<EntryInfo> entryB = InfoOf(b);
  return entryA && entryB && entryA->id == entryB->id;
}

}  // namespace quillbox
