// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/open_entry.h"

#include <array>
#include <cstdint>
#include <functional>
#include <utility>

#include "host/host_fault.h"
#include "host/win32/reparse_point.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"
#include "text/file_time.h"

namespace quillbox {

namespace {

constexpr auto kUnitsPerSecond = static_cast<std::int64_t>(kFileTimePerSecond);
constexpr std::uint32_t kNanosecondsPerUnit = 100;
/// Of the volume that does not exist, on which the virtual folders are.
constexpr std::uint64_t kVirtualVolume = ~std::uint64_t{0};

/// A folder's handles: the first that the permissions let have is taken. Each counts for the system as one that reads,
/// but for the last.
constexpr std::array<DWORD, 3> kFolderAccess = {FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                                FILE_TRAVERSE | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                                FILE_READ_ATTRIBUTES};

Opened OpenPath(const std::wstring& path, const OpenMode& mode, DWORD flags) {
  if (IsNowhere(path)) return {{}, SystemCode(std::errc::no_such_file_or_directory)};
  HostHandle handle = Owned(CreateFileW(path.c_str(), mode.access, mode.share, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
  if (handle) return {std::move(handle), {}};
  return {{}, LastCode()};
}

/// A folder that only this program shows has nothing that could be opened: an event is a handle as well, and remembers
/// whether it was listed.
Opened OpenVirtual() {
  HostHandle handle = Owned(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  if (handle) return {std::move(handle), {}};
  return {{}, LastCode()};
}

std::uint64_t Joined(DWORD high, DWORD low) {
  return std::uint64_t{high} << 32 | low;
}

std::uint64_t TextSizeOf(HANDLE link) {
  const std::optional<HostPath> target = TargetOfLink(link);
  return target ? target->Text().size() : 0;
}

EntryKind KindOf(HANDLE entry, DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLink(entry)) return EntryKind::Link;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

}  // namespace

HostHandle OrThrow(Opened opened) {
  if (opened.fault) ThrowFault(opened.fault);
  return std::move(opened.handle);
}

Opened OpenThere(const HostPath& path, const OpenMode& mode, Links links) {
  const std::wstring system = SystemPath(path);
  if (links == Links::Follow) return OpenPath(system, mode, 0);
  Opened itself = OpenPath(system, mode, FILE_FLAG_OPEN_REPARSE_POINT);
  FILE_ATTRIBUTE_TAG_INFO info = {};
  if (itself.fault || !GetFileInformationByHandleEx(Raw(itself.handle), FileAttributeTagInfo, &info, sizeof info) ||
      (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return itself;
  }
  if (IsLink(info.FileAttributes, info.ReparseTag)) {
    return {{}, SystemCode(std::errc::too_many_symbolic_link_levels)};
  }
  Opened content = OpenPath(system, mode, 0);
  if (!content.fault && InfoOfHandle(Raw(content.handle)).id != InfoOfHandle(Raw(itself.handle)).id) {
    return {{}, SystemCode(std::errc::too_many_symbolic_link_levels)};
  }
  return content;
}

Opened OpenForFacts(const HostPath& path, Links links) {
  return OpenPath(SystemPath(path), {.access = FILE_READ_ATTRIBUTES},
                  links == Links::Keep ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
}

Opened OpenAsFolder(const HostPath& path, Links links, FolderUse use) {
  if (IsVirtualFolder(path)) return OpenVirtual();
  Opened opened;
  for (const DWORD access : kFolderAccess) {
    opened = OpenThere(path, {.access = access, .share = FILE_SHARE_READ | FILE_SHARE_WRITE}, links);
    if (opened.fault != std::errc::permission_denied || use == FolderUse::Listing) break;
  }
  if (!opened.fault && !InfoOfHandle(Raw(opened.handle)).IsFolder()) {
    return {{}, SystemCode(std::errc::not_a_directory)};
  }
  return opened;
}

bool IsLink(DWORD attributes, DWORD tag) {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(tag);
}

bool IsLink(HANDLE entry) {
  FILE_ATTRIBUTE_TAG_INFO info = {};
  return GetFileInformationByHandleEx(entry, FileAttributeTagInfo, &info, sizeof info) != FALSE &&
         IsLink(info.FileAttributes, info.ReparseTag);
}

EntryInfo InfoOfHandle(HANDLE entry) {
  BY_HANDLE_FILE_INFORMATION info = {};
  EntryInfo other;
  other.kind = EntryKind::Other;
  if (GetFileType(entry) != FILE_TYPE_DISK) return other;
  if (!GetFileInformationByHandle(entry, &info)) {
    // A whole disk counts for a file, but is not in a folder.
    const std::error_code fault = LastCode();
    if (fault == std::errc::not_supported || fault == std::errc::invalid_argument) return other;
    ThrowFault(fault);
  }
  const EntryKind kind = KindOf(entry, info.dwFileAttributes);
  return {.kind = kind,
          .size = kind == EntryKind::Link ? TextSizeOf(entry) : Joined(info.nFileSizeHigh, info.nFileSizeLow),
          .modified = TimeOf(info.ftLastWriteTime),
          .accessed = TimeOf(info.ftLastAccessTime),
          .id = {info.dwVolumeSerialNumber, Joined(info.nFileIndexHigh, info.nFileIndexLow)}};
}

EntryInfo InfoOfVirtual(const HostPath& folder) {
  EntryInfo info;
  info.kind = EntryKind::Folder;
  info.id = {kVirtualVolume, std::hash<std::string>()(folder.Text())};
  return info;
}

std::optional<HostPath> PathOfHandle(HANDLE entry) {
  std::wstring buffer(MAX_PATH, L'\0');
  // A volume without a letter has a number.
  for (const DWORD form : {VOLUME_NAME_DOS, VOLUME_NAME_GUID}) {
    DWORD size = GetFinalPathNameByHandleW(entry, buffer.data(), static_cast<DWORD>(buffer.size()), form);
    if (size >= buffer.size()) {
      buffer.resize(size + 1);
      size = GetFinalPathNameByHandleW(entry, buffer.data(), static_cast<DWORD>(buffer.size()), form);
    }
    if (size > 0 && size < buffer.size()) return PathOfSystem(std::wstring_view(buffer).substr(0, size));
  }
  return std::nullopt;
}

HostTime TimeOf(const FILETIME& time) {
  const auto units = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
  return {units / kUnitsPerSecond - kSecondsFrom1601To1970,
          static_cast<std::uint32_t>(units % kUnitsPerSecond) * kNanosecondsPerUnit};
}

FILETIME FileTimeOf(const HostTime& time) {
  const auto units = static_cast<std::uint64_t>((time.seconds + kSecondsFrom1601To1970) * kUnitsPerSecond +
                                                time.nanoseconds / kNanosecondsPerUnit);
  return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

}  // namespace quillbox
