// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/hive_file.h"

#include <chrono>

#include "platform/offline/disk_lock.h"
#include "platform/offline/offline_fixture.h"
#include "support/host_calls.h"
#include "support/host_tricks.h"
#include "support/read_only_folder.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

constexpr const char* kHive = "profile/NTUSER.DAT";

class HiveFileTest : public testing::Test, protected OfflineFixture {
 protected:
  HiveFileTest() {
    MakeHiveFile(disk / kHive);
    fs::permissions(disk.Folder("state"), fs::perms::all);
  }
  static void Change(HiveFile& file, std::string_view value) {
    SetRootValue(file, value);
    file.Commit(kTestTime + 1);
  }
  void Change(std::string_view value) {
    HiveFile file = Open(kHive);
    Change(file, value);
  }
  /// Opens the hive for a user who agrees to everything.
  HiveFile OpenAgreeing() {
    return {HostPlace::Anywhere(disk / kHive), HiveMode::Write, disk / "state", log,
            [this](const Hive&) { return ++asked > 0; }};
  }
  int asked = 0;
  std::ptrdiff_t FilesInProfile() const { return std::distance(fs::directory_iterator(disk / "profile"), {}); }
};

TEST_F(HiveFileTest, TheFirstChangeKeepsTheOriginalAndItsLogs) {
  const std::string original = disk.Read(kHive);
  disk.File("profile/NTUSER.DAT.LOG", "an old log");
  disk.File("profile/ntuser.dat.LOG1", "a new log");
  { Open(kHive).Commit(kTestTime + 1); }
  EXPECT_EQ(FilesInProfile(), 3) << "nothing was changed";
  fs::permissions(disk / kHive, fs::perms{0640});
  Change("first");
  disk.File("profile/NTUSER.DAT.LOG", "of the next Windows");
  disk.File("profile/ntuser.dat.LOG2", "one more");
  Change("second");
  EXPECT_EQ(disk.Read("profile/NTUSER.DAT.before-quillbox"), original);
  EXPECT_EQ(disk.Read("profile/NTUSER.DAT.LOG.before-quillbox"), "an old log");
  EXPECT_EQ(disk.Read("profile/ntuser.dat.LOG1.before-quillbox"), "a new log");
  EXPECT_EQ(disk.Read("profile/ntuser.dat.LOG2.before-quillbox"), "one more") << "each log counts by itself";
  EXPECT_EQ(RootValue(Open(kHive, HiveMode::Read)), "second");
  const bool hasMode = fs::status(disk / kHive).permissions() == fs::perms{0640};
  EXPECT_TRUE(hasMode || !WhyNot(Trick::Modes).empty());
}

TEST_F(HiveFileTest, AReadOnlyDiskGetsAPrivateCopy) {
  NEEDS(Modes);
  const std::string original = disk.Read(kHive);
  {
    const ReadOnlyFolder readOnly(disk, "profile");
    HiveFile file = Open(kHive);
    HiveFile reader = Open(kHive, HiveMode::Read);
    EXPECT_TRUE(file.CanWrite() && file.IsPrivateCopy());
    Change(file, "private");
    EXPECT_FALSE(file.Reload()) << "its own change";
    EXPECT_TRUE(reader.Reload());
    EXPECT_EQ(RootValue(reader), "private");
    EXPECT_EQ(RootValue(Open(kHive)), "private") << "at the next start";
  }
  EXPECT_EQ(disk.Read(kHive), original);
  EXPECT_EQ(FilesInProfile(), 1);

  MakeHiveFile(disk / kHive, "changed by Windows");
  const ReadOnlyFolder readOnly(disk, "profile");
  HiveFile file = Open(kHive);
  EXPECT_EQ(RootValue(file), "changed by Windows");
  Change(file, "private again");
  EXPECT_EQ(RootValue(Open(kHive)), "private again");
  const fs::path older = NativePath(file.TargetFile().Path()).string() + ".older-1";
  EXPECT_EQ(RootValue(HiveFile(HostPlace::Anywhere(older), HiveMode::Read, disk / "state", log)), "private");
  EXPECT_THAT(log.Text(), HasSubstr(".older-1"));
}

TEST_F(HiveFileTest, NothingOutsideTheDiskIsReadOrReplaced) {
  NEEDS(Links);
  const TempFolder outside;
  outside.File("log", "the host's own");
  outside.File("hive", "the host's own");
  LeaveUnclosed(disk / kHive);
  fs::create_symlink(outside / "log", disk / "profile/ntuser.dat.log");
  const HostPlace place = HostPlace::DiskRoot(disk.Path()).Join("profile").Join("NTUSER.DAT");
  HiveFile file(place, HiveMode::Write, disk / "state", log, [this](const Hive& hive) {
    LogWhatIsMissing(hive, kHive, log);
    return true;
  });
  EXPECT_THAT(log.Text(), HasSubstr("ntuser.dat.log: not used, since it could not be read: it leads out of the disk"));

  SetRootValue(file, "new");
  fs::rename(disk / kHive, disk / "profile/moved");
  fs::create_symlink(outside / "hive", disk / kHive);
  EXPECT_THROW(file.Commit(kTestTime + 1), Error);
  EXPECT_EQ(outside.Read("hive"), "the host's own");
  EXPECT_TRUE(fs::is_symlink(disk / kHive));
}

TEST_F(HiveFileTest, WithoutAnyPlaceToWriteNothingCanBeChanged) {
  NEEDS(Modes);
  const ReadOnlyFolder readOnly(disk, "profile");
  HiveFile file(HostPlace::Anywhere(disk / kHive), HiveMode::Write, disk / "profile/state", log);
  registry.Mount({RegistryRoot::CurrentUser, ""}, file);
  EXPECT_FALSE(file.CanWrite());
  EXPECT_EQ(registry.Open({}, Access::Read).status, Status::Success);
  EXPECT_EQ(registry.Open({}, Access::Full).status, Status::AccessDenied);
  EXPECT_EQ(registry.Create({RegistryRoot::CurrentUser, "x"}).status, Status::AccessDenied);
}

TEST_F(HiveFileTest, LogsThatAreNotFilesDoNoHarm) {
  NEEDS(Pipes);
  MakePipe(disk / "profile/NTUSER.DAT.LOG");
  disk.Folder("profile/NTUSER.DAT.LOG1");
  fs::resize_file(disk.File("profile/NTUSER.DAT.LOG2"), (256u << 20) + 1);
  Change("first");
  EXPECT_THAT(log.Text(), HasSubstr("NTUSER.DAT.LOG: not kept, since it is not an ordinary file"));
  EXPECT_EQ(FilesInProfile(), 5) << "the hive, what was kept of it, and three logs";

  LeaveUnclosed(disk / kHive);
  EXPECT_THAT(FaultOf([&] { Open(kHive); }),
              HasSubstr("profile/NTUSER.DAT: it was not closed cleanly, and its logs cannot be used "
                        "(NTUSER.DAT.LOG: it could not be read: it is not an ordinary file; NTUSER.DAT.LOG1: "
                        "it could not be read: it is not an ordinary file; NTUSER.DAT.LOG2: it could not be "
                        "read: it is larger than 256 MB); Windows might still apply them"));
}

TEST_F(HiveFileTest, AHiveWithoutItsLogsNeedsConsentOnce) {
  disk.File("profile/NTUSER.DAT.LOG", "no log");
  LeaveUnclosed(disk / kHive);
  HiveFile file = OpenAgreeing();
  EXPECT_TRUE(file.NeededConsent() && file.CanWrite() && !file.IsPrivateCopy());
  fs::last_write_time(disk / kHive, fs::file_time_type::clock::now() + std::chrono::seconds(5));
  EXPECT_TRUE(file.Reload());
  EXPECT_EQ(asked, 1);
}

TEST_F(HiveFileTest, AFolderThatCannotBeFlushedIsReportedAndTriedAgain) {
  NEEDS(FailingCalls);
  HiveFile file = Open(kHive);
  SetRootValue(file, "new");
  int code = EIO;
  const HostCallGuard guard([&](HostCall call, const std::string& name) {
    return call == HostCall::Flush && name == (disk / "profile").string() ? code : 0;
  });
  EXPECT_THAT(FaultOf([&] { file.Commit(kTestTime + 1); }),
              HasSubstr("its folder could not be flushed to the disk: Input/output error"));
  EXPECT_TRUE(file.NeedsWriting());
  code = EINVAL;  // a file system that has no such flush
  file.Commit(kTestTime + 2);
  EXPECT_FALSE(file.NeedsWriting());
}

TEST_F(HiveFileTest, APrivateCopyThatIsDamagedItselfIsKeptAndNeedsConsent) {
  Hive hive = Hive::Create("root", kTestTime);
  hive.SetValue(hive.Root(), "v", 3, AsBytes("old"));
  for (const char* path : {"kept", "bad", "worse\\below"}) hive.CreatePath(hive.Root(), path);
  WriteHiveFile(disk / kHive, hive);
  DamageKeys(disk / kHive, {"bad", "worse\\below"});
  {
    HiveFile file = OpenAgreeing();
    Change(file, "one");
  }
  HiveFile sound = Open(kHive);
  const fs::path copy = NativePath(sound.TargetFile().Path());
  DamageKeys(copy, {"kept"});
  EXPECT_THROW(sound.Reload(), Error) << "nobody has agreed to that";
  EXPECT_EQ(RootValue(sound), "one") << "what there was stays";
  const Bytes damaged = ReadBytes(copy);
  HiveFile file = OpenAgreeing();
  EXPECT_EQ(file.DamagedPlaces(), 3u);
  Change(file, "two");
  Change(file, "three");
  EXPECT_EQ(ReadBytes(copy.string() + ".older-1"), damaged);
  EXPECT_FALSE(fs::exists(copy.string() + ".older-2"));
  EXPECT_EQ(Open(kHive).DamagedPlaces(), 3u);
}

/// Why another process cannot lock the folders; "(done)" when it can.
std::string WhyNotElsewhere(const std::vector<HostPath>& folders, const std::vector<HandleNumber>& inherited) {
  const TempFolder temp;
  RunInCopy([&] {
    TestLog log;
    temp.File("why", FaultOf([&] { DiskLock(folders, inherited, log); }));
  });
  return temp.Read("why");
}

TEST(DiskLock, LetsInOneProgramAndThoseItHandsTheLockTo) {
  NEEDS(Forks);
  const TempFolder disk;
  const std::vector<HostPath> folders = {disk.Folder("profile"), disk.Folder("config"), disk / "profile/../profile"};
  {
    TestLog log;
    const DiskLock lock(folders, {}, log);
    const std::vector<HandleNumber> numbers = lock.Numbers();
    ASSERT_EQ(numbers.size(), 2u);
    // The system keeps 15 characters of a program's name.
    const auto inUse = HasSubstr("offline_registr (process " + std::to_string(ProcessNumber()) + ")");
    EXPECT_EQ(WhyNotElsewhere(folders, numbers), "(done)");
    EXPECT_THAT(WhyNotElsewhere(folders, {}), inUse) << "the end of that process must not have ended the lock";
    EXPECT_THAT(WhyNotElsewhere(folders, {numbers[0]}), inUse);
    EXPECT_THAT(WhyNotElsewhere(folders, {0, 999}), inUse);
    EXPECT_TRUE(log.lines.empty());
  }
  EXPECT_EQ(WhyNotElsewhere(folders, {}), "(done)");
  EXPECT_TRUE(fs::is_empty(NativePath(folders[0])));
}

}  // namespace
}  // namespace quillbox
