// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/volume.h"

#include <array>

#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

std::string LabelOfVolume(const HostPath& folder) {
  if (IsVirtualFolder(folder)) return {};
  std::wstring root = SystemPath(folder);
  if (!root.ends_with(L'\\')) root += L'\\';
  std::array<wchar_t, MAX_PATH + 1> label = {};
  // It fails for a folder on which no volume is mounted.
  if (!GetVolumeInformationW(root.c_str(), label.data(), static_cast<DWORD>(label.size()), nullptr, nullptr, nullptr,
                             nullptr, 0)) {
    return {};
  }
  return Narrow(label.data());
}

}  // namespace quillbox
