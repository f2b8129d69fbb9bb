// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/change_entry.h"

#include "host/entry.h"
#include "host/host_fault.h"
#include "host/win32/open_entry.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

std::error_code MoveEntry(const HostPath& from, const HostPath& to) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  const std::error_code fault = CodeUnless(MoveFileExW(SystemPath(from).c_str(), SystemPath(to).c_str(), kFlags));
  if (fault != std::errc::permission_denied) return fault;
  // The system says the same of a target that somebody has open.
  const std::error_code reason = ReplaceFaultOf(to);
  return reason ? reason : fault;
}

std::error_code RemoveEntry(const HostPath& entry) {
  const std::wstring path = SystemPath(entry);
  const DWORD attributes = GetFileAttributesW(path.c_str());
  const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (!isFolder) return CodeUnless(DeleteFileW(path.c_str()));
  const Opened itself = OpenForFacts(entry, Links::Keep);
  if (itself.fault) return itself.fault;
  if (!IsLink(Raw(itself.handle))) return SystemCode(std::errc::is_a_directory);
  return CodeUnless(RemoveDirectoryW(path.c_str()));
}

std::error_code ReplaceFaultOf(const HostPath& file) {
  const DWORD attributes = GetFileAttributesW(SystemPath(file).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return {};
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return SystemCode(std::errc::is_a_directory);
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return SystemCode(std::errc::permission_denied);
  // Shared with nobody: whoever has it open is in the way.
  return OpenThere(file, {.access = GENERIC_READ | GENERIC_WRITE | DELETE, .share = 0}, Links::Keep).fault;
}

}  // namespace quillbox
