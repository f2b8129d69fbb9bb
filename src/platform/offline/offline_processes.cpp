#include "platform/offline/offline_processes.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/offline/host_file.h"
#include "text/error.h"
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

struct ProgramRun {
  int startError = 0;  ///< an errno when it could not be started
  ProcessEnd end;      ///< the exit code is 128 and the signal's number when a signal ended it
};

/// Everything that comes out of a pipe, of which the first part is kept.
std::string Drain(int fd) {
  std::string kept;
  std::array<char, 4096> buffer = {};
  for (;;) {
    const ssize_t got = read(fd, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return kept;
    if (kept.size() < kMaxLoggedOutput) kept.append(buffer.data(), static_cast<std::size_t>(got));
  }
}

int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Runs a program to its end. `passedFds` stay open in it under their own numbers.
ProgramRun RunProgram(const fs::path& program, std::vector<std::string> arguments, const std::vector<int>& passedFds) {
  std::array<int, 2> ends = {-1, -1};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {errno, {}};
  const HostFd readEnd(ends[0]);
  HostFd writeEnd(ends[1]);

  arguments.insert(arguments.begin(), program.string());
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, writeEnd.Get(), STDERR_FILENO);
  // Duplicating a descriptor onto itself keeps it open across the exec.
  for (const int fd : passedFds) posix_spawn_file_actions_adddup2(&actions, fd, fd);
  ProgramRun run;
  pid_t child = 0;
  run.startError = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (run.startError != 0) return run;

  writeEnd.Close();
  run.end.started = true;
  run.end.errors = Drain(readEnd.Get());
  run.end.exitCode = WaitFor(child);
  return run;
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

  ProgramRun run = RunProgram(editor_.program, std::move(arguments), editor_.lockFds);
  if (run.startError != 0) {
    log_.Write(editor_.program.string() + " could not be started: " + SystemReason(run.startError));
  } else if (run.end.exitCode != 0) {
    log_.Write(commandLine + ": ended with code " + std::to_string(run.end.exitCode) + ": " + run.end.errors);
  } else if (!run.end.errors.empty()) {
    log_.Write(commandLine + ": " + run.end.errors);
  }
  return std::move(run.end);
}

fs::path RegistryEditorBesideProgram() {
  std::error_code code;
  return fs::read_symlink("/proc/self/exe", code).parent_path() / kEditorName;
}

}  // namespace quillbox
