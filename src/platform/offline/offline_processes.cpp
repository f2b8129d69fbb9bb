// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/offline_processes.h"

#include <string_view>
#include <system_error>
#include <utility>

#include "host/host_fault.h"
#include "host/host_paths.h"
#include "host/host_program.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::string_view kEditorName = "regedit";
/// From the program's folder to the editor's. The build knows it, since an installation decides it.
constexpr std::string_view kEditorFolder = QUILLBOX_EDITOR_FROM_PROGRAM;
constexpr const char* kLockOption = "--lock";

/// True when the command line's program is the registry editor, with or without ".exe".
bool IsEditorCommand(std::string_view commandLine) {
  if (!StartsWithIgnoreCase(commandLine, kEditorName)) return false;
  commandLine.remove_prefix(kEditorName.size());
  if (StartsWithIgnoreCase(commandLine, ".exe")) commandLine.remove_prefix(4);
  return commandLine.empty() || commandLine.front() == ' ' || commandLine.front() == '/';
}

}  // namespace

OfflineProcesses::OfflineProcesses(OfflineRegistry& registry, OfflineDrives& drives, Log& log, RegistryEditor editor)
    : registry_(registry), drives_(drives), log_(log), editor_(std::move(editor)) {}

ProcessEnd OfflineProcesses::RunAndWait(const std::string& commandLine, ShowStyle /*style*/) {
  if (!IsEditorCommand(commandLine)) {
    log_.Write("not started, since only the registry editor is known here: " + commandLine);
    return {};
  }
  registry_.Commit();
  ProcessEnd end = RunEditor(commandLine);
  if (end.started) registry_.Reload();
  return end;
}

ProcessEnd OfflineProcesses::RunEditor(const std::string& commandLine) {
  std::vector<std::string> arguments = editor_.diskArguments;
  for (const HandleNumber lock : editor_.locks) {
    arguments.insert(arguments.end(), {kLockOption, std::to_string(lock)});
  }
  arguments.insert(arguments.end(), {"--directory", drives_.CurrentDirectory().Text(), "--command-line", commandLine});

  ProcessEnd end;
  try {
    const ProgramEnd program = RunToEnd(
        {.program = Absolute(editor_.program).Text(), .arguments = std::move(arguments), .passed = editor_.locks});
    end = {.started = true, .exitCode = program.exitCode, .errors = program.errors};
  } catch (const std::system_error& failure) {
    log_.Write(editor_.program.Text() + " could not be started: " + ReasonOf(failure.code()));
    return {};
  }
  if (end.exitCode != 0) {
    log_.Write(commandLine + ": ended with code " + std::to_string(end.exitCode) + ": " + end.errors);
  } else if (!end.errors.empty()) {
    log_.Write(commandLine + ": " + end.errors);
  }
  return end;
}

HostPath RegistryEditorOf(const HostPath& programFolder) {
  const HostPath own = (programFolder / kEditorFolder).Normal();
  return (IsFolder(own) ? own : programFolder) / kEditorName;
}

}  // namespace quillbox
