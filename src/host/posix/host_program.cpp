// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "host/host_fault.h"
#include "host/posix/posix.h"
#include "host/program_errors.h"

namespace quillbox {

namespace {

/// posix_spawn's two lists of what is different in the new process.
struct Differences {
  explicit Differences(const HostProgram& program) {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    // Duplicating a descriptor onto itself keeps it open across the exec.
    for (const HandleNumber number : program.passed) {
      posix_spawn_file_actions_adddup2(&actions, static_cast<int>(number), static_cast<int>(number));
    }
  }
  ~Differences() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }
  Differences(const Differences&) = delete;
  Differences& operator=(const Differences&) = delete;

  /// It writes its errors to the descriptor, and reads nothing.
  void WriteErrorsTo(int descriptor) {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, descriptor, STDERR_FILENO);
  }
  void GiveOwnSession() { posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID); }

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

pid_t Spawn(HostProgram program, const Differences& differences) {
  std::vector<char*> argv = {program.program.data()};
  for (std::string& argument : program.arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  pid_t process = 0;
  const int code = posix_spawnp(&process, argv[0], &differences.actions, &differences.attributes, argv.data(), environ);
  if (code != 0) ThrowErrno(code);
  return process;
}

int ExitCodeOf(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int WaitForEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return ExitCodeOf(status);
}

class Child : public StartedProgram {
 public:
  explicit Child(pid_t process) : process_(process) {}
  std::optional<int> ExitCode() override {
    if (exitCode_) return exitCode_;
    int status = 0;
    const pid_t ended = waitpid(process_, &status, WNOHANG);
    if (ended != 0) exitCode_ = ended < 0 ? -1 : ExitCodeOf(status);
    return exitCode_;
  }

 private:
  pid_t process_;
  std::optional<int> exitCode_;
};

}  // namespace

ProgramEnd RunToEnd(const HostProgram& program) {
  std::array<int, 2> ends = {-1, -1};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) ThrowErrno(errno);
  const HostFile readEnd{HostHandle(ends[0]), "errors"};
  HostHandle writeEnd(ends[1]);
  Differences differences(program);
  differences.WriteErrorsTo(Fd(writeEnd));
  const pid_t process = Spawn(program, differences);
  writeEnd.Close();
  std::string errors = ErrorsFrom(readEnd);
  return {.exitCode = WaitForEnd(process), .errors = std::move(errors)};
}

const char* const kSystemOpener = "xdg-open";

std::unique_ptr<StartedProgram> OpenForUser(const std::string& opener, const std::string& folderOrPage) {
  const HostProgram program{.program = opener.empty() ? kSystemOpener : opener, .arguments = {folderOrPage}};
  Differences differences(program);
  differences.GiveOwnSession();
  return std::make_unique<Child>(Spawn(program, differences));
}

std::vector<std::string> ProgramArguments(int count, char** arguments) {
  return {arguments + std::min(count, 1), arguments + count};
}

Utf8Output::Utf8Output() = default;
Utf8Output::~Utf8Output() = default;

}  // namespace quillbox
