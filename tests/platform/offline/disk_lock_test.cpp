#include "platform/offline/disk_lock.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <functional>
#include <string>

#include "platform/offline/offline_fixture.h"
#include "text/error.h"

namespace quillbox {
namespace {

using testing::HasSubstr;

/// Runs `work` in another process; its result is that process's exit code.
int InAnotherProcess(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(DiskLock, ASecondProgramIsToldWhoHasTheDisk) {
  const TempFolder disk;
  KeptLog log;
  std::array<int, 2> ready = {}, done = {};
  ASSERT_EQ(pipe(ready.data()) | pipe(done.data()), 0);
  const pid_t holder = fork();
  if (holder == 0) {
    const DiskLock lock({disk.Path()}, {}, log);
    char byte = 0;
    close(done[1]);
    _exit(write(ready[1], "x", 1) == 1 && read(done[0], &byte, 1) == 0 ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  try {
    const DiskLock lock({disk.Path()}, {}, log);
    ADD_FAILURE() << "locked twice";
  } catch (const Error& error) {
    std::string name;
    std::getline(std::ifstream("/proc/self/comm"), name);
    EXPECT_THAT(error.Why(), HasSubstr(name + " (process " + std::to_string(holder) + ")"));
  }
  close(done[1]);
  waitpid(holder, nullptr, 0);
  EXPECT_NO_THROW(DiskLock({disk.Path()}, {}, log)) << "the lock ends with its process";
  EXPECT_TRUE(std::filesystem::is_empty(disk.Path()));
  EXPECT_EQ(log.text, "");
}

TEST(DiskLock, AChildWithTheDescriptorsIsLetIn) {
  const TempFolder disk;
  KeptLog log;
  const auto profile = disk.Folder("profile"), config = disk.Folder("config");
  const DiskLock lock({profile, config, disk / "profile/../profile"}, {}, log);
  const std::vector<int> numbers = lock.Descriptors();
  ASSERT_EQ(numbers.size(), 2u);
  EXPECT_EQ(fcntl(numbers[0], F_GETFD), FD_CLOEXEC);
  const auto opens = [&](const std::vector<int>& inherited) {
    return InAnotherProcess([&] {
      try {
        const DiskLock again({profile, config}, inherited, log);
        return 0;
      } catch (const Error&) {
        return 1;
      }
    });
  };
  EXPECT_EQ(opens(numbers), 0);
  EXPECT_EQ(opens({}), 1) << "the child's end must not have ended the lock";
  EXPECT_EQ(opens({numbers[0]}), 1);
  EXPECT_EQ(opens({STDIN_FILENO, 999}), 1);
}

}  // namespace
}  // namespace quillbox
