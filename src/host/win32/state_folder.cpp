// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/state_folder.h"

#include <windows.h>
// After it.
#include <shlobj.h>

#include "host/host_fault.h"
#include "host/host_folder.h"
#include "host/host_paths.h"
#include "host/win32/private_security.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

namespace {

constexpr const char* kFolderName = "Quillbox";

HostPath FromEnvironment(const wchar_t* variable) {
  std::wstring value(GetEnvironmentVariableW(variable, nullptr, 0), L'\0');
  if (!value.empty()) value.resize(GetEnvironmentVariableW(variable, value.data(), static_cast<DWORD>(value.size())));
  HostPath path(Narrow(value));
  return path.IsAbsolute() ? path : HostPath();  // a relative one is to be ignored
}

/// What the system knows of the user; empty when it knows nothing.
HostPath KnownFolder(const KNOWNFOLDERID& id) {
  wchar_t* text = nullptr;
  const bool known = SUCCEEDED(SHGetKnownFolderPath(id, KF_FLAG_DONT_VERIFY, nullptr, &text));
  HostPath path(known ? Narrow(text) : std::string());
  CoTaskMemFree(text);
  return path;
}

/// Why no file can be made in a folder that is there.
std::error_code WriteFaultIn(const HostPath& folder) try {
  return HostFolder::Open(folder).CanMakeFiles() ? std::error_code() : SystemCode(std::errc::permission_denied);
} catch (const std::system_error& failure) {
  return failure.code();
}

}  // namespace

HostPath HomeFolder() {
  HostPath home = FromEnvironment(L"USERPROFILE");
  if (home.Empty()) home = KnownFolder(FOLDERID_Profile);
  return home.Empty() ? HostPath::Root() : home;
}

HostPath StateFolder() {
  HostPath state = FromEnvironment(L"LOCALAPPDATA");
  if (state.Empty()) state = KnownFolder(FOLDERID_LocalAppData);
  return (state.Empty() ? HomeFolder() : state) / kFolderName;
}

bool MakePrivateFolder(const HostPath& folder) {
  if (IsFolder(folder)) return true;
  if (folder.HasName() && !MakePrivateFolder(folder.Parent())) return false;
  PrivateSecurity security;
  return CreateDirectoryW(SystemPath(folder).c_str(), security.Attributes()) || IsFolder(folder);
}

std::optional<std::string> StateFolderFault(const HostPath& folder) {
  if (MakePrivateFolder(folder) && !WriteFaultIn(folder)) return std::nullopt;
  // Why it could not be made is known by its nearest parent that is there.
  HostPath there = folder;
  while (!Exists(there) && there.HasName()) there = there.Parent();
  const std::error_code fault = IsFolder(there) ? WriteFaultIn(there) : SystemCode(std::errc::not_a_directory);
  return there.Text() + " cannot be written: " + ReasonOf(fault ? fault : SystemCode(std::errc::not_a_directory));
}

}  // namespace quillbox
