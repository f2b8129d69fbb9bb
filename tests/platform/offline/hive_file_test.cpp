#include "platform/offline/hive_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

#include "platform/offline/offline_fixture.h"
#include "registry/hive_tools.h"
#include "support/damaged_hive.h"
#include "support/file_size_limit.h"
#include "support/host_calls.h"
#include "support/ordinary_user.h"
#include "text/error.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kHive = "profile/NTUSER.DAT";
constexpr const char* kKept = "profile/NTUSER.DAT.before-quillbox";

class HiveFileTest : public testing::Test, protected OfflineFixture {
 protected:
  HiveFileTest() { MakeHiveFile(disk / kHive); }

  static std::string Value(const HiveFile& file) {
    const Bytes data = file.View().Value(file.View().Root(), "v").value().data;
    return {data.begin(), data.end()};
  }
  static void Set(HiveFile& file, std::string_view value) {
    file.Edit().SetValue(file.View().Root(), "v", 3, AsBytes(value));
  }
  void Change(std::string_view value) {
    HiveFile file = Open(kHive);
    Set(file, value);
    file.Commit(kTestTime + 1);
  }
  /// Opens the hive for a user who agrees to everything.
  HiveFile OpenAgreeing() {
    return {HostPlace::Anywhere(disk / kHive), HiveMode::Write, disk / "state", log,
            [this](const Hive&) { return ++asked > 0; }};
  }
  int asked = 0;
  std::ptrdiff_t FilesInProfile() const {
    return std::distance(fs::directory_iterator(disk / "profile"), fs::directory_iterator());
  }
};

/// A folder and the files in it that cannot be written, for an administrator too.
class ReadOnlyDisk {
 public:
  explicit ReadOnlyDisk(const TempFolder& disk) : profile_(disk / "profile") {
    fs::permissions(disk.Path(), fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add);
    fs::permissions(disk.Folder("state"), fs::perms::all);
    fs::permissions(profile_, fs::perms{0555});
    user_.emplace();
  }
  ~ReadOnlyDisk() {
    user_.reset();
    fs::permissions(profile_, fs::perms{0755});
  }
  ReadOnlyDisk(const ReadOnlyDisk&) = delete;
  ReadOnlyDisk& operator=(const ReadOnlyDisk&) = delete;

 private:
  fs::path profile_;
  std::optional<OrdinaryUser> user_;
};

TEST_F(HiveFileTest, TheFirstChangeKeepsTheOriginal) {
  const std::string original = disk.Read(kHive);
  { Open(kHive).Commit(kTestTime + 1); }
  EXPECT_EQ(FilesInProfile(), 1) << "nothing was changed";
  fs::permissions(disk / kHive, fs::perms{0640});
  Change("first");
  Change("second");
  EXPECT_EQ(disk.Read(kKept), original);
  EXPECT_EQ(Value(Open(kHive, HiveMode::Read)), "second");
  EXPECT_EQ(fs::status(disk / kHive).permissions(), fs::perms{0640});
  EXPECT_EQ(FilesInProfile(), 2);
}

TEST_F(HiveFileTest, AFailedWriteLeavesTheFileAndTheChanges) {
  const std::string original = disk.Read(kHive);
  HiveFile file = Open(kHive);
  Set(file, "new");
  {
    const FileSizeLimit full(1000);
    EXPECT_THROW(file.Commit(kTestTime + 1), Error);
  }
  EXPECT_EQ(disk.Read(kHive), original);
  EXPECT_EQ(FilesInProfile(), 2) << "the hive and what was kept of it";
  file.Commit(kTestTime + 2);
  EXPECT_EQ(Value(Open(kHive)), "new");
}

TEST_F(HiveFileTest, AKilledProgramLeavesAWholeHive) {
  const std::string original = disk.Read(kHive);
  for (int round = 0; round < 12; ++round) {
    const pid_t child = fork();
    if (child == 0) {
      HiveFile file = Open(kHive);
      for (char c = 'a';; c = c == 'z' ? 'a' : static_cast<char>(c + 1)) {
        Set(file, std::string(600'000, c));
        file.Commit(kTestTime + 1);
      }
    }
    usleep(static_cast<useconds_t>(5'000 + 1'700 * round));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const HiveFile file = Open(kHive);
    EXPECT_EQ(file.View().Origin(), HiveOrigin::Clean);
    const std::string value = Value(file);
    EXPECT_TRUE(value == "old" || value == std::string(600'000, value[0]));
  }
  EXPECT_EQ(disk.Read(kKept), original);
  Change("after");
  EXPECT_EQ(Value(Open(kHive)), "after");
}

TEST_F(HiveFileTest, ChangesOfAnotherProgramAreReadAndNeverOverwritten) {
  HiveFile file = Open(kHive);
  EXPECT_FALSE(file.Reload());
  Change("other");
  Set(file, "mine");
  EXPECT_THROW(file.Commit(kTestTime + 2), Error);
  EXPECT_TRUE(file.Reload());
  EXPECT_EQ(Value(file), "other");
  Set(file, "mine");
  file.Commit(kTestTime + 3);
  EXPECT_FALSE(file.Reload()) << "its own change";
  EXPECT_EQ(Value(Open(kHive)), "mine");
}

TEST_F(HiveFileTest, AReadOnlyDiskGetsAPrivateCopy) {
  const std::string original = disk.Read(kHive);
  {
    const ReadOnlyDisk readOnly(disk);
    HiveFile file = Open(kHive);
    HiveFile reader = Open(kHive, HiveMode::Read);
    EXPECT_TRUE(file.CanWrite() && file.IsPrivateCopy());
    Set(file, "private");
    file.Commit(kTestTime + 1);
    EXPECT_TRUE(reader.Reload());
    EXPECT_EQ(Value(reader), "private");
    EXPECT_EQ(Value(Open(kHive)), "private") << "at the next start";
  }
  EXPECT_EQ(disk.Read(kHive), original);
  EXPECT_EQ(FilesInProfile(), 1);

  MakeHiveFile(disk / kHive, "changed by Windows");
  const ReadOnlyDisk readOnly(disk);
  HiveFile file = Open(kHive);
  EXPECT_EQ(Value(file), "changed by Windows");
  const fs::path copy = file.TargetFile().Path();
  Set(file, "private again");
  file.Commit(kTestTime + 2);
  EXPECT_EQ(Value(Open(kHive)), "private again");
  EXPECT_EQ(Value(HiveFile(HostPlace::Anywhere(copy.string() + ".older-1"), HiveMode::Read, disk / "state", log)),
            "private");
  EXPECT_THAT(log.Text(), HasSubstr(".older-1"));
}

TEST_F(HiveFileTest, NothingOutsideTheDiskIsReadOrReplaced) {
  const TempFolder outside;
  outside.File("log", "the host's own");
  outside.File("hive", "the host's own");
  Bytes dirty = AsBytes(disk.Read(kHive));
  SetBase(dirty, BaseField::kSequence1, 7);
  disk.File(kHive, {reinterpret_cast<const char*>(dirty.data()), dirty.size()});
  fs::create_symlink(outside / "log", disk / "profile/ntuser.dat.log");
  const HostPlace place = HostPlace::DiskRoot(disk.Path()).Join("profile").Join("NTUSER.DAT");
  HiveFile file(place, HiveMode::Write, disk / "state", log, [this](const Hive& hive) {
    LogWhatIsMissing(hive, kHive, log);
    return true;
  });
  EXPECT_THAT(log.Text(), HasSubstr("ntuser.dat.log: not used, since it could not be read: it leads out of the disk"));

  Set(file, "new");
  fs::rename(disk / kHive, disk / "profile/moved");
  fs::create_symlink(outside / "hive", disk / kHive);
  EXPECT_THROW(file.Commit(kTestTime + 1), Error);
  EXPECT_EQ(outside.Read("hive"), "the host's own");
  EXPECT_TRUE(fs::is_symlink(disk / kHive));
  EXPECT_THAT(FaultOf([&] { HiveFile(place, HiveMode::Read, disk / "state", log); }),
              HasSubstr("NTUSER.DAT: it leads out of the disk"));
}

TEST_F(HiveFileTest, WithoutAnyPlaceToWriteNothingCanBeChanged) {
  const ReadOnlyDisk readOnly(disk);
  HiveFile file(HostPlace::Anywhere(disk / kHive), HiveMode::Write, disk / "profile/state", log);
  registry.Mount({RegistryRoot::CurrentUser, ""}, file);
  EXPECT_FALSE(file.CanWrite());
  EXPECT_EQ(registry.Open({}, Access::Read).status, Status::Success);
  EXPECT_EQ(registry.Open({}, Access::Full).status, Status::AccessDenied);
  EXPECT_EQ(registry.Create({RegistryRoot::CurrentUser, "x"}).status, Status::AccessDenied);
}

TEST_F(HiveFileTest, LogsAreKeptAsTheyAreBeforeTheFirstChange) {
  disk.File("profile/NTUSER.DAT.LOG", "an old log");
  disk.File("profile/ntuser.dat.LOG1", "a new log");
  Change("first");
  EXPECT_EQ(disk.Read("profile/NTUSER.DAT.LOG.before-quillbox"), "an old log");
  EXPECT_EQ(disk.Read("profile/ntuser.dat.LOG1.before-quillbox"), "a new log");
  disk.File("profile/NTUSER.DAT.LOG", "of the next Windows");
  disk.File("profile/ntuser.dat.LOG2", "one more");
  Change("second");
  EXPECT_EQ(disk.Read("profile/NTUSER.DAT.LOG.before-quillbox"), "an old log");
  EXPECT_EQ(disk.Read("profile/ntuser.dat.LOG2.before-quillbox"), "one more") << "each log counts by itself";
}

TEST_F(HiveFileTest, LogsThatAreNoFilesDoNoHarm) {
  ASSERT_EQ(mkfifo((disk / "profile/NTUSER.DAT.LOG").c_str(), 0600), 0);
  disk.Folder("profile/NTUSER.DAT.LOG1");
  disk.File("profile/NTUSER.DAT.LOG2");
  fs::resize_file(disk / "profile/NTUSER.DAT.LOG2", (256u << 20) + 1);
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
  const std::string original = disk.Read(kHive);
  EXPECT_THROW(Open(kHive), HiveRefused);
  HiveFile file = OpenAgreeing();
  EXPECT_EQ(disk.Read(kHive), original);
  EXPECT_TRUE(file.NeededConsent() && file.CanWrite() && !file.IsPrivateCopy());
  fs::last_write_time(disk / kHive, fs::file_time_type::clock::now() + std::chrono::seconds(5));
  EXPECT_TRUE(file.Reload());
  EXPECT_EQ(asked, 1);
  Set(file, "new");
  file.Commit(kTestTime + 1);
  EXPECT_EQ(disk.Read(kKept), original);
  EXPECT_EQ(disk.Read("profile/NTUSER.DAT.LOG.before-quillbox"), "no log");
  EXPECT_EQ(Value(Open(kHive)), "new") << "it is a clean hive now";
}

TEST_F(HiveFileTest, AFolderThatCannotBeFlushedIsToldAndTriedAgain) {
  HiveFile file = Open(kHive);
  Set(file, "new");
  const auto failing = [&](int code) {
    return [this, code](HostCall call, const std::string& name) {
      return call == HostCall::Flush && name == (disk / "profile").string() ? code : 0;
    };
  };
  {
    const HostCallGuard guard(failing(EIO));
    EXPECT_THAT(FaultOf([&] { file.Commit(kTestTime + 1); }),
                HasSubstr("its folder could not be flushed to the disk: Input/output error"));
    EXPECT_TRUE(file.NeedsWriting());
  }
  const HostCallGuard guard(failing(EINVAL));  // a file system that has no such flush
  file.Commit(kTestTime + 2);
  EXPECT_FALSE(file.NeedsWriting());
  EXPECT_EQ(Value(Open(kHive)), "new");
}

class DamagedHiveFileTest : public HiveFileTest {
 protected:
  DamagedHiveFileTest() {
    Hive hive = Hive::Create("root", kTestTime);
    hive.SetValue(hive.Root(), "v", 3, AsBytes("old"));
    for (const char* path : {"kept", "bad", "worse\\below"}) hive.CreatePath(hive.Root(), path);
    WriteHiveFile(disk / kHive, hive);
    DamageKeys(disk / kHive, {"bad", "worse\\below"});
  }
};

TEST_F(DamagedHiveFileTest, ItsChangesGoToAPrivateCopyThatIsSound) {
  const std::string original = disk.Read(kHive);
  EXPECT_THROW(Open(kHive), HiveRefused);
  {
    HiveFile file = OpenAgreeing();
    EXPECT_EQ(file.DamagedPlaces(), 2u);
    EXPECT_TRUE(file.IsPrivateCopy() && file.CanWrite());
    EXPECT_TRUE(file.View().Find(file.View().Root(), "kept"));
    EXPECT_FALSE(file.View().Find(file.View().Root(), "bad"));
    Set(file, "new");
    file.Commit(kTestTime + 1);
    EXPECT_EQ(Hive::Load(ReadBytes(file.TargetFile().Path()), "copy").Origin(), HiveOrigin::Clean);
  }
  EXPECT_EQ(disk.Read(kHive), original);
  EXPECT_EQ(FilesInProfile(), 1);
  const HiveFile again = Open(kHive);
  EXPECT_EQ(Value(again), "new");
  EXPECT_EQ(again.DamagedPlaces(), 2u) << "still without what was damaged";
  EXPECT_EQ(asked, 1);
}

TEST_F(DamagedHiveFileTest, AReloadAsksNobody) {
  HiveFile file = OpenAgreeing();
  {
    HiveFile editor = OpenAgreeing();  // as the registry editor does
    Set(editor, "by the editor");
    editor.Commit(kTestTime + 1);
  }
  EXPECT_TRUE(file.Reload());
  EXPECT_EQ(Value(file), "by the editor");
  EXPECT_EQ(file.DamagedPlaces(), 2u);
  EXPECT_EQ(asked, 2);
  HiveFile sound = Open(kHive);
  DamageKeys(sound.TargetFile().Path(), {"kept"});
  EXPECT_THROW(sound.Reload(), Error) << "nobody has agreed to that";
  EXPECT_EQ(Value(sound), "by the editor") << "what there was stays";
}

TEST_F(DamagedHiveFileTest, APrivateCopyThatIsDamagedItselfIsKept) {
  {
    HiveFile file = OpenAgreeing();
    Set(file, "one");
    file.Commit(kTestTime + 1);
  }
  const fs::path copy = Open(kHive, HiveMode::Read).TargetFile().Path();
  DamageKeys(copy, {"kept"});
  const Bytes damaged = ReadBytes(copy);
  HiveFile file = OpenAgreeing();
  EXPECT_EQ(file.DamagedPlaces(), 3u);
  Set(file, "two");
  file.Commit(kTestTime + 2);
  Set(file, "three");
  file.Commit(kTestTime + 3);
  EXPECT_EQ(ReadBytes(copy.string() + ".older-1"), damaged);
  EXPECT_FALSE(fs::exists(copy.string() + ".older-2"));
  EXPECT_EQ(Open(kHive).DamagedPlaces(), 3u);
}

}  // namespace
}  // namespace quillbox
