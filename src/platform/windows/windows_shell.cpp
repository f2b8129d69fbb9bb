// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/windows_shell.h"

#include <windows.h>
// After it.
#include <shellapi.h>

#include "platform/windows/system_text.h"

namespace quillbox {

void WindowsShell::ShowFolder(const HostPath& folder, const std::string& parameters) {
  const std::wstring file = WideText(folder.Text());
  const std::wstring wideParameters = WideText(parameters);
  SHELLEXECUTEINFOW info = {};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
  info.lpVerb = L"explore";
  info.lpFile = file.c_str();
  info.lpParameters = wideParameters.empty() ? nullptr : wideParameters.c_str();
  info.nShow = SW_SHOWNORMAL;
  if (!ShellExecuteExW(&info)) HostedShell::ShowFolder(folder, parameters);
}

}  // namespace quillbox
