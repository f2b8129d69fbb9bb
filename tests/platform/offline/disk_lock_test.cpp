#include "platform/offline/disk_lock.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/offline/offline_fixture.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

/// Why another process cannot lock the folders; "(done)" when it can.
std::string WhyNotElsewhere(const std::vector<fs::path>& folders, const std::vector<int>& inherited) {
  const TempFolder temp;
  const pid_t child = fork();
  if (child == 0) {
    TestLog log;
    temp.File("why", FaultOf([&] { DiskLock(folders, inherited, log); }));
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  return temp.Read("why");
}

TEST(DiskLock, LetsInOneProgramAndThoseItHandsTheLockTo) {
  const TempFolder disk;
  const std::vector<fs::path> folders = {disk.Folder("profile"), disk.Folder("config"), disk / "profile/../profile"};
  {
    TestLog log;
    const DiskLock lock(folders, {}, log);
    const std::vector<int> numbers = lock.Descriptors();
    ASSERT_EQ(numbers.size(), 2u);
    // The system keeps 15 characters of a program's name.
    const auto inUse = testing::HasSubstr("offline_registr (process " + std::to_string(getpid()) + ")");
    EXPECT_EQ(fcntl(numbers[0], F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(WhyNotElsewhere(folders, numbers), "(done)");
    EXPECT_THAT(WhyNotElsewhere(folders, {}), inUse) << "the end of that process must not have ended the lock";
    EXPECT_THAT(WhyNotElsewhere(folders, {numbers[0]}), inUse);
    EXPECT_THAT(WhyNotElsewhere(folders, {STDIN_FILENO, 999}), inUse);
    EXPECT_TRUE(log.lines.empty());
  }
  EXPECT_EQ(WhyNotElsewhere(folders, {}), "(done)");
  EXPECT_TRUE(fs::is_empty(folders[0]));
}

}  // namespace
}  // namespace quillbox
