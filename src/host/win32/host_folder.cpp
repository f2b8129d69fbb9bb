// SPDX-License-Identifier: GPL-3.0-or-later
// A folder's handle keeps its path as it is: while it is open, nobody can give the folder or one above it another name,
// or replace it. So work on the entries by their paths is work in this folder.
#include "host/host_folder.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/temporary_name.h"
#include "host/win32/change_entry.h"
#include "host/win32/open_entry.h"
#include "host/win32/reparse_point.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::size_t kListBytes = std::size_t{64} * 1024;

EntryKind KindOf(const FILE_ID_BOTH_DIR_INFO& entry) {
  if (IsLink(entry.FileAttributes, entry.EaSize)) return EntryKind::Link;  // a reparse point has its tag in that field
  return (entry.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

/// The drives at the root; network shares have names that nobody can list.
void ListVirtual(const HostPath& folder, std::vector<ListedEntry>& entries) {
  const DWORD drives = folder.IsRoot() ? GetLogicalDrives() : 0;
  for (unsigned letter = 0; letter < 26; ++letter) {
    if ((drives >> letter & 1u) != 0)
      entries.push_back({std::string(1, static_cast<char>('A' + letter)), EntryKind::Folder});
  }
}

/// Links in a folder's own path are followed once: later they may lead elsewhere.
HostPath PathOf(const HostHandle& folder, const HostPath& asked) {
  const HostPath whole = Absolute(asked);
  return IsVirtualFolder(whole) ? whole : PathOfHandle(Raw(folder)).value_or(whole);
}

}  // namespace

HostFolder HostFolder::Open(const HostPath& path) {
  HostHandle handle = OrThrow(OpenAsFolder(path, Links::Follow, FolderUse::Names));
  HostPath real = PathOf(handle, path);
  return HostFolder(std::move(handle), std::move(real));
}

// NOLINTNEXTLINE(bugprone-easily-swappable-parameters): the second is relative to the first
HostFolder HostFolder::OpenBeneath(const HostPath& root, const HostPath& below) {
  HostFolder folder = Open(root);
  std::vector<HostFolder> above;  // open to the end, so that no name of the way can become a link
  for (const std::string& name : below.Names()) {
    HostFolder next = folder.OpenFolder(name);
    above.push_back(std::move(folder));
    folder = std::move(next);
  }
  return folder;
}

EntryInfo HostFolder::Info() const {
  return IsVirtualFolder(path_) ? InfoOfVirtual(path_) : InfoOfHandle(Raw(handle_));
}

EntryInfo HostFolder::InfoOf(const std::string& name, Links links) const {
  const PathInfo there = quillbox::InfoOf(path_.Join(name), links);
  if (!there.info) ThrowFault(there.fault);
  return *there.info;
}

std::optional<EntryInfo> HostFolder::Find(const std::string& name, Links links) const {
  return quillbox::InfoOf(path_.Join(name), links).info;
}

std::string HostFolder::StoredName(const std::string& name) const {
  if (path_.IsRoot()) return UpperCase(name);  // drives
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW(SystemPath(path_.Join(name)).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return name;
  FindClose(search);
  return Narrow(found.cFileName);
}

std::optional<HostPath> HostFolder::ReadLink(const std::string& name) const {
  const Opened link = OpenForFacts(path_.Join(name), Links::Keep);
  return link.fault ? std::nullopt : TargetOfLink(Raw(link.handle));
}

HostFolder HostFolder::OpenFolder(const std::string& name, Links links, FolderUse use) const {
  HostPath path = path_.Join(name);
  HostHandle handle = OrThrow(OpenAsFolder(path, links, use));
  if (links == Links::Follow) path = PathOf(handle, path);
  return HostFolder(std::move(handle), std::move(path));
}

HostFile HostFolder::OpenFile(const std::string& name, Links links) const {
  return {OrThrow(OpenThere(path_.Join(name), {}, links)), name};
}

bool HostFolder::ListSome(std::vector<ListedEntry>& entries) const {
  entries.clear();
  if (IsVirtualFolder(path_)) {
    if (WaitForSingleObject(Raw(handle_), 0) != WAIT_TIMEOUT) return false;
    SetEvent(Raw(handle_));
    ListVirtual(path_, entries);
    return !entries.empty();
  }
  std::vector<std::uint64_t> buffer(kListBytes / sizeof(std::uint64_t));  // aligned as the entries must be
  while (entries.empty()) {
    if (!GetFileInformationByHandleEx(Raw(handle_), FileIdBothDirectoryInfo, buffer.data(), kListBytes)) {
      const DWORD error = GetLastError();
      if (error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND) return false;
      ThrowFault(CodeOf(error));
    }
    const auto* at = reinterpret_cast<const std::byte*>(buffer.data());
    for (std::size_t step = 1; step != 0; at += step) {
      const auto& stored = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(at);
      const std::wstring_view name(stored.FileName, stored.FileNameLength / sizeof(wchar_t));
      if (name != L"." && name != L"..") entries.push_back({Narrow(name), KindOf(stored)});
      step = stored.NextEntryOffset;
    }
  }
  return true;
}

HostFolder HostFolder::OpenAgain() const {
  return HostFolder(OrThrow(OpenAsFolder(path_, Links::Follow, FolderUse::Listing)), path_);
}

std::error_code HostFolder::MakeFolder(const std::string& name) const {
  return CodeUnless(CreateDirectoryW(SystemPath(path_.Join(name)).c_str(), nullptr));
}

std::error_code HostFolder::Remove(const std::string& name) const {
  return RemoveEntry(path_.Join(name));
}

std::error_code HostFolder::RemoveFolder(const std::string& name) const {
  return CodeUnless(RemoveDirectoryW(SystemPath(path_.Join(name)).c_str()));
}

std::error_code HostFolder::Rename(const EntryRename& rename) const {
  return MoveEntry(path_.Join(rename.from), path_.Join(rename.to));
}

std::error_code HostFolder::MoveNew(const std::string& name, const HostFolder& to) const {
  return CodeUnless(
      MoveFileExW(SystemPath(path_.Join(name)).c_str(), SystemPath(to.path_.Join(name)).c_str(), DWORD{0}));
}

std::error_code HostFolder::Link(const std::string& name, const HostFolder& folder, const std::string& second) const {
  const std::wstring first = SystemPath(path_.Join(name));
  return CodeUnless(CreateHardLinkW(SystemPath(folder.path_.Join(second)).c_str(), first.c_str(), nullptr));
}

std::error_code HostFolder::WriteFaultOf(const std::string& name, Links links) const {
  return OpenThere(path_.Join(name), {.access = GENERIC_READ | GENERIC_WRITE}, links).fault;
}

void HostFolder::Flush() const {
  if (IsVirtualFolder(path_)) return;
  // Only some file systems let a folder be opened for this.
  const Opened folder = OpenThere(path_, {.access = GENERIC_WRITE}, Links::Keep);
  if (folder.fault || FlushFileBuffers(Raw(folder.handle))) return;
  const std::error_code fault = LastCode();
  if (IsUnreadablePlace(fault) || IsFull(fault)) throw FolderFlushError(fault);
}

// Only administrators may flush a volume.
void HostFolder::FlushFileSystem() const {}

bool HostFolder::MayWrite() const {
  return !IsVirtualFolder(path_) && !OpenThere(path_, {.access = FILE_ADD_FILE}, Links::Keep).fault;
}

bool HostFolder::CanMakeFiles() const {
  if (IsVirtualFolder(path_)) return false;
  const Opened itself = OpenThere(path_, {.access = FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES}, Links::Keep);
  FILE_BASIC_INFO before = {};
  const bool keepsTimes =
      !itself.fault && GetFileInformationByHandleEx(Raw(itself.handle), FileBasicInfo, &before, sizeof before);
  const std::wstring path = SystemPath(path_.Join(RandomTemporaryName()));
  const bool made = static_cast<bool>(Owned(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                                        FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr)));
  if (made && keepsTimes) SetFileInformationByHandle(Raw(itself.handle), FileBasicInfo, &before, sizeof before);
  return made;
}

}  // namespace quillbox
