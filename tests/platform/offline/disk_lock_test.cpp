#include "platform/offline/disk_lock.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "platform/offline/offline_fixture.h"
#include "text/error.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

enum Answer { LetIn, ToldWho, Refused };

/// What another process gets to hear when it locks the folders.
int LockInAnotherProcess(const std::vector<fs::path>& folders, const std::vector<int>& inherited) {
  const pid_t child = fork();
  if (child == 0) {
    std::string name;
    std::getline(std::ifstream("/proc/self/comm"), name);
    const std::string who = name + " (process " + std::to_string(getppid()) + ")";
    TestLog log;
    try {
      const DiskLock lock(folders, inherited, log);
      _exit(LetIn);
    } catch (const Error& error) {
      _exit(error.Why().find(who) != std::string::npos ? ToldWho : Refused);
    }
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(DiskLock, LetsInOneProgramAndThoseItHandsTheLockTo) {
  const TempFolder disk;
  const std::vector<fs::path> folders = {disk.Folder("profile"), disk.Folder("config"), disk / "profile/../profile"};
  {
    TestLog log;
    const DiskLock lock(folders, {}, log);
    const std::vector<int> numbers = lock.Descriptors();
    ASSERT_EQ(numbers.size(), 2u);
    EXPECT_EQ(fcntl(numbers[0], F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(LockInAnotherProcess(folders, numbers), LetIn);
    EXPECT_EQ(LockInAnotherProcess(folders, {}), ToldWho) << "the end of that process must not have ended the lock";
    EXPECT_EQ(LockInAnotherProcess(folders, {numbers[0]}), ToldWho);
    EXPECT_EQ(LockInAnotherProcess(folders, {STDIN_FILENO, 999}), ToldWho);
    EXPECT_TRUE(log.lines.empty());
  }
  EXPECT_EQ(LockInAnotherProcess(folders, {}), LetIn);
  EXPECT_TRUE(fs::is_empty(folders[0]));
}

}  // namespace
}  // namespace quillbox
