#include "platform/offline/offline_processes.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/offline/host_fault.h"
#include "platform/offline/host_fd.h"
#include "platform/offline/host_io.h"
#include "platform/offline/host_program.h"
#include "text/unicode.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEditorName = "regedit";
constexpr std::size_t kMaxLoggedOutput = std::size_t{16} * 1024;

/// True when the command line's program is the registry editor, with or without ".exe".
bool IsEditorCommand(std::string_view commandLine) {
  if (!StartsWithIgnoreCase(commandLine, kEditorName)) return false;
  commandLine.remove_prefix(kEditorName.size());
  if (StartsWithIgnoreCase(commandLine, ".exe")) commandLine.remove_prefix(4);
  return commandLine.empty() || commandLine.front() == ' ' || commandLine.front() == '/';
}

/// Everything that comes out of a pipe, of which the first part is kept.
std::string Drain(int fd) try {
  std::string kept;
  std::array<char, 4096> buffer = {};
  while (const std::size_t got = ReadUpTo(fd, buffer)) {
    if (kept.size() < kMaxLoggedOutput) kept.append(buffer.data(), got);
  }
  return kept;
} catch (const std::system_error& failure) {
  return "(what it wrote cannot be read: " + ReasonOf(failure.code()) + ")";
}

/// Runs a program to its end. Throws std::system_error when it cannot be started.
ProcessEnd RunProgram(HostProgram program) {
  std::array<int, 2> ends = {-1, -1};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) ThrowErrno(errno);
  const HostFd readEnd(ends[0]);
  HostFd writeEnd(ends[1]);
  program.standardError = writeEnd.Get();
  const pid_t process = StartProgram(std::move(program));
  writeEnd.Close();
  std::string errors = Drain(readEnd.Get());
  return {.started = true, .exitCode = WaitForEnd(process), .errors = std::move(errors)};
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
  for (const int fd : editor_.lockFds) arguments.insert(arguments.end(), {"--lock-fd", std::to_string(fd)});
  arguments.insert(arguments.end(), {"--directory", drives_.CurrentDirectory().Text(), "--command-line", commandLine});

  ProcessEnd end;
  try {
    end = RunProgram(
        {.program = fs::absolute(editor_.program), .arguments = std::move(arguments), .passedFds = editor_.lockFds});
  } catch (const std::system_error& failure) {
    log_.Write(editor_.program.string() + " could not be started: " + ReasonOf(failure.code()));
    return {};
  }
  if (end.exitCode != 0) {
    log_.Write(commandLine + ": ended with code " + std::to_string(end.exitCode) + ": " + end.errors);
  } else if (!end.errors.empty()) {
    log_.Write(commandLine + ": " + end.errors);
  }
  return end;
}

fs::path RegistryEditorBesideProgram() {
  std::error_code code;
  return fs::read_symlink("/proc/self/exe", code).parent_path() / kEditorName;
}

}  // namespace quillbox
