// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/windows_drives.h"

#include <windows.h>

#include <array>
#include <string>

#include "platform/windows/system_text.h"

namespace quillbox {
namespace {

char SystemDrive() {
  std::array<wchar_t, MAX_PATH> folder = {};
  const UINT length = GetSystemWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  const char letter = WinPath(InnerText({folder.data(), length})).Drive();
  return letter != 0 ? letter : 'C';
}

bool HasDrive(char letter) {
  return letter >= 'A' && letter <= 'Z' && ((GetLogicalDrives() >> (letter - 'A')) & 1) != 0;
}

}  // namespace

WindowsDrives::WindowsDrives() : HostedDrives(SystemDrive()) {}

DriveType WindowsDrives::TypeOfDrive(const WinPath& root) {
  return static_cast<DriveType>(GetDriveTypeW(WideText(WithBackslash(root.Text())).c_str()));
}

bool WindowsDrives::IsOwnDrive(char letter) {
  return HasDrive(WinPath(std::string{letter, ':'}).Drive());
}

std::optional<HostPath> WindowsDrives::FolderOf(char letter) const {
  return HasDrive(letter) ? std::optional(HostPath(std::string{letter, ':', '\\'})) : std::nullopt;
}

PlaceResult WindowsDrives::PlaceOfAbsolute(const WinPath& path, LastStep last) const {
  const char letter = path.Drive();
  if (letter != 0 ? !HasDrive(letter) : !path.Text().starts_with("\\\\")) return DiskFault::NoSuchDrive;
  const HostPath root = HostPath::Root().Join(letter != 0 ? std::string{letter} : std::string("UNC"));
  return FindPlace(HostPlace::Anywhere(root), path.Names(), last);
}

}  // namespace quillbox
