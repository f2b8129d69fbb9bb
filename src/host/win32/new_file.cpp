// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_file.h"

#include <utility>

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/new_folder.h"
#include "host/temporary_name.h"
#include "host/win32/change_entry.h"
#include "host/win32/copy_attributes.h"
#include "host/win32/host_io.h"
#include "host/win32/open_entry.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

namespace {

constexpr int kMaxNameAttempts = 100;
constexpr std::size_t kLongestName = 255;  // UTF-16 units, on every file system
/// Virus scanners and indexers have a file open for moments only.
constexpr int kMaxRenameAttempts = 5;
constexpr DWORD kRenamePause = 50;  // milliseconds

/// What a file in the making is open for. Permission to set its permissions is not had everywhere.
constexpr DWORD kWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kWriteAll = kWrite | WRITE_DAC | WRITE_OWNER;
/// Others may read it, and it may get another name; RemoveAbandonedFiles wants more.
constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_DELETE;

HostHandle MakeFile(const HostPath& path) {
  const std::wstring system = SystemPath(path);
  for (const DWORD access : {kWriteAll, kWriteAll & ~DWORD{WRITE_OWNER}}) {
    HostHandle made =
        Owned(CreateFileW(system.c_str(), access, kShared, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (made || GetLastError() != ERROR_ACCESS_DENIED) return made;
  }
  return Owned(CreateFileW(system.c_str(), kWrite, kShared, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// The file that is replaced, open, or none; refuses what cannot be replaced by a file.
HostHandle OpenReplaced(const HostPath& target, Links links) {
  // The system would say it only when the file gets that name.
  if (Wide(target.Name()).size() > kLongestName) ThrowFault(SystemCode(std::errc::filename_too_long));
  const PathInfo existing = InfoOf(target, links);
  if (existing.fault == std::errc::no_such_file_or_directory) return {};
  if (existing.fault) ThrowFault(existing.fault);
  if (existing.info->IsLink()) ThrowFault(SystemCode(std::errc::too_many_symbolic_link_levels));
  if (existing.info->IsFolder()) ThrowFault(SystemCode(std::errc::is_a_directory));
  if (!existing.info->IsFile()) ThrowFault(HostFault::NotOrdinary);
  HostHandle replaced = OrThrow(OpenThere(target, {.access = kWrite | DELETE}, links));
  // Not every file system holds to it by itself.
  FILE_BASIC_INFO basic = {};
  if (GetFileInformationByHandleEx(Raw(replaced), FileBasicInfo, &basic, sizeof basic) &&
      (basic.FileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
    ThrowFault(SystemCode(std::errc::permission_denied));
  }
  return replaced;
}

}  // namespace

void NewFile::Begin(Links links) {
  const HostHandle replaced = OpenReplaced(folder_.Path().Join(name_), links);
  for (int attempt = 0; !handle_ && attempt < kMaxNameAttempts; ++attempt) {
    temporary_ = RandomTemporaryName();
    handle_ = MakeFile(folder_.Path().Join(temporary_));
    if (!handle_ && GetLastError() != ERROR_FILE_EXISTS) break;
  }
  if (!handle_) {
    const std::error_code fault = LastCode();
    temporary_.clear();
    ThrowFault(fault);
  }
  if (replaced) CopyAttributes({.from = Raw(replaced), .to = Raw(handle_)});
}

NewFile::~NewFile() {
  if (temporary_.empty()) return;
  handle_.Close();
  SetFileAttributesW(SystemPath(folder_.Path().Join(temporary_)).c_str(), FILE_ATTRIBUTE_NORMAL);
  folder_.Remove(temporary_);
}

void NewFile::Write(std::string_view bytes) {
  flushed_ = false;
  WriteAll(handle_, bytes, WriteAt::End);
}

// The system copies whole files only.
std::size_t NewFile::Append(const HostFile&, FilePart) {
  return 0;
}

void NewFile::BeginWriteBack(FilePart) {}

std::size_t NewFile::ReadAt(std::uint64_t offset, std::span<char> buffer) {
  return ReadUpToAt(handle_, offset, buffer);
}

EntryInfo NewFile::Info() const {
  return InfoOfHandle(Raw(handle_));
}

void NewFile::SetTimes(const HostTime& accessed, const HostTime& modified) {
  flushed_ = false;
  const FILETIME access = FileTimeOf(accessed);
  const FILETIME write = FileTimeOf(modified);
  if (!SetFileTime(Raw(handle_), nullptr, &access, &write)) ThrowLast();
}

void NewFile::TakeAttributesOf(const HostFile& like) {
  const FromTo files = {.from = Raw(like.Handle()), .to = Raw(handle_)};
  CopyOwner(files);
  CopyAttributes(files);
}

void NewFile::Flush() {
  if (flushed_) return;
  if (!FlushFileBuffers(Raw(handle_))) ThrowLast();
  flushed_ = true;
}

void NewFile::Commit() {
  Flush();
  std::error_code fault;
  for (int attempt = 0; attempt < kMaxRenameAttempts; ++attempt) {
    if (attempt > 0) Sleep(kRenamePause);
    fault = folder_.Rename({.from = temporary_, .to = name_});
    if (fault != HostFault::InUse) break;
  }
  if (fault) ThrowFault(fault);
  temporary_.clear();
  handle_.Close();  // it would keep others from the file
  folder_.Flush();
}

void RemoveAbandonedFiles(const HostFolder& folder) {
  folder.EachName([&](const std::string& name) {
    if (!IsTemporaryName(name)) return false;
    const std::optional<EntryInfo> info = folder.Find(name);
    if (info && info->IsFolder()) RemoveAbandonedFolder(folder, name);
    // Shared with nobody, it cannot be opened while it is being written.
    const std::wstring path = SystemPath(folder.Path().Join(name));
    const HostHandle file = Owned(CreateFileW(path.c_str(), DELETE | FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES, 0,
                                              nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!file || !InfoOfHandle(Raw(file)).IsFile()) return false;
    FILE_BASIC_INFO basic = {};
    basic.FileAttributes = FILE_ATTRIBUTE_NORMAL;  // a read-only one stays otherwise
    SetFileInformationByHandle(Raw(file), FileBasicInfo, &basic, sizeof basic);
    FILE_DISPOSITION_INFO gone = {.DeleteFile = TRUE};
    SetFileInformationByHandle(Raw(file), FileDispositionInfo, &gone, sizeof gone);
    return false;
  });
}

HostStream::HostStream(const HostPath& path)
    : handle_(OrThrow(OpenThere(path, {.access = GENERIC_WRITE}, Links::Follow))) {}

void HostStream::Write(std::string_view bytes) {
  WriteAll(handle_, bytes, WriteAt::Position);
}

}  // namespace quillbox
