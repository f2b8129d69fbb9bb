// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/host_tricks.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>

namespace quillbox {

namespace {

constexpr uid_t kNobody = 65534;

std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void Become(uid_t user) {
  if (seteuid(user) != 0) ADD_FAILURE() << "cannot become user " << user;
}

}  // namespace

std::string WhyNot(Trick /*trick*/) {
  return {};
}

int QuotaErrno() {
  return EDQUOT;
}

void MakePipe(const std::filesystem::path& path) {
  if (mkfifo(path.c_str(), S_IRUSR | S_IWUSR) != 0) ADD_FAILURE() << "cannot make the pipe " << path;
}

bool SetServerAttribute(const std::filesystem::path& file, const std::string& value) {
  return setxattr(file.c_str(), "user.DOSATTRIB", value.data(), value.size(), 0) == 0;
}

void SetVariable(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
  tzset();
}

int RunInCopy(const std::function<void()>& act) {
  const pid_t child = fork();
  if (child == 0) {
    act();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void KillThisProcess() {
  raise(SIGKILL);
  std::abort();
}

unsigned long ProcessNumber() {
  return static_cast<unsigned long>(getpid());
}

ProgramRun RunProgram(const std::filesystem::path& program, std::vector<std::string> arguments,
                      const std::filesystem::path& folder) {
  std::string name = program.string();
  std::vector<char*> argv = {name.data()};
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "out", O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "err", O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t child = 0;
  int status = -1;
  if (posix_spawn(&child, name.c_str(), &actions, nullptr, argv.data(), environ) == 0) waitpid(child, &status, 0);
  posix_spawn_file_actions_destroy(&actions);
  return {WEXITSTATUS(status), ContentOf(folder / "out"), ContentOf(folder / "err")};
}

std::uint64_t MostMemoryOfPrograms() {
  rusage used = {};
  getrusage(RUSAGE_CHILDREN, &used);
  return static_cast<std::uint64_t>(used.ru_maxrss) * 1024;
}

LockedFile::LockedFile(const std::filesystem::path& file) : handle_(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
  EXPECT_EQ(flock(static_cast<int>(handle_), LOCK_EX), 0);
}

LockedFile::~LockedFile() {
  close(static_cast<int>(handle_));
}

struct FileSizeLimit::Before {
  rlimit limit = {};
  void (*onTooLarge)(int) = nullptr;
};

FileSizeLimit::FileSizeLimit(std::uint64_t bytes) : before_(std::make_unique<Before>()) {
  before_->onTooLarge = std::signal(SIGXFSZ, SIG_IGN);
  getrlimit(RLIMIT_FSIZE, &before_->limit);
  const rlimit limited = {bytes, before_->limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limited);
}

FileSizeLimit::~FileSizeLimit() {
  setrlimit(RLIMIT_FSIZE, &before_->limit);
  std::signal(SIGXFSZ, before_->onTooLarge);
}

OrdinaryUser::OrdinaryUser() : administrator_(geteuid() == 0) {
  if (administrator_) Become(kNobody);
}

OrdinaryUser::~OrdinaryUser() {
  if (administrator_) Become(0);
}

}  // namespace quillbox
