// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/windows_processes.h"

#include <windows.h>

#include <array>

#include "platform/windows/system_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::string_view kEditorName = "regedit";
/// ERROR_ELEVATION_REQUIRED, which older headers lack.
constexpr DWORD kElevationRequired = 740;

/// The system's registry editor; empty for any other command, whose program the system looks for.
std::wstring ProgramOf(const std::string& commandLine) {
  if (!StartsWithIgnoreCase(commandLine, std::string(kEditorName) + " ")) return {};
  std::array<wchar_t, MAX_PATH> folder = {};
  const UINT length = GetSystemWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return std::wstring(folder.data(), length) + L"\\regedit.exe";
}

}  // namespace

SystemProcessEnd RunInSystem(const std::string& commandLine, const HostPath& directory, ShowStyle style) {
  std::wstring command = WideText(commandLine);
  const std::wstring program = ProgramOf(commandLine);
  const std::wstring folder = WideText(directory.Text());
  STARTUPINFOW info = {};
  info.cb = sizeof info;
  info.dwFlags = STARTF_USESHOWWINDOW;
  info.wShowWindow = static_cast<WORD>(style);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(program.empty() ? nullptr : program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                      folder.c_str(), &info, &process)) {
    return {.error = GetLastError()};
  }
  CloseHandle(process.hThread);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD exitCode = 0;
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hProcess);
  return {.exitCode = static_cast<int>(exitCode)};
}

ProcessEnd WindowsProcesses::RunAndWait(const std::string& commandLine, ShowStyle style) {
  const SystemProcessEnd end = run_(commandLine, drives_.HostPathOf(drives_.CurrentDirectory()), style);
  if (end.error == 0) {
    if (end.exitCode != 0) log_.Write(commandLine + ": ended with code " + std::to_string(end.exitCode));
    return {.started = true, .exitCode = end.exitCode, .errors = {}};
  }
  log_.Write(commandLine + ": could not be started: error " + std::to_string(end.error) + " of the system");
  if (end.error == kElevationRequired) elevation_.OfferForEditor();
  return {};
}

}  // namespace quillbox
