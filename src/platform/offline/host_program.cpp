#include "platform/offline/host_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/offline/host_fault.h"

namespace quillbox {

namespace {

/// posix_spawn's two lists of what is different in the new process.
struct Differences {
  explicit Differences(const HostProgram& program) {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    if (program.ownSession) posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    if (program.standardError >= 0) {
      posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
      posix_spawn_file_actions_adddup2(&actions, program.standardError, STDERR_FILENO);
    }
    // Duplicating a descriptor onto itself keeps it open across the exec.
    for (const int fd : program.passedFds) posix_spawn_file_actions_adddup2(&actions, fd, fd);
  }
  ~Differences() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }
  Differences(const Differences&) = delete;
  Differences& operator=(const Differences&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

int ExitCode(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

pid_t StartProgram(HostProgram program) {
  std::vector<char*> argv = {program.program.data()};
  for (std::string& argument : program.arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const Differences differences(program);
  pid_t process = 0;
  const int code = posix_spawnp(&process, argv[0], &differences.actions, &differences.attributes, argv.data(), environ);
  if (code != 0) ThrowErrno(code);
  return process;
}

int WaitForEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return ExitCode(status);
}

std::optional<int> EndOf(pid_t process) {
  int status = 0;
  const pid_t ended = waitpid(process, &status, WNOHANG);
  if (ended == 0) return std::nullopt;
  return ended < 0 ? -1 : ExitCode(status);
}

}  // namespace quillbox
