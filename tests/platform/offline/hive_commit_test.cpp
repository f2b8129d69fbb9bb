// SPDX-License-Identifier: GPL-3.0-or-later
// Two hives that change in one command: both or none, whatever fails and whenever the program is killed.
#include "platform/offline/hive_commit.h"

#include <algorithm>

#include "platform/offline/offline_fixture.h"
#include "support/host_calls.h"
#include "support/host_tricks.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;
using Values = std::pair<std::string, std::string>;

const Values kBefore = {"old", "old"};
const Values kAfter = {"new", "new"};

HostPlace At(const fs::path& file) {
  return HostPlace::Anywhere(file);
}

/// Which of the two hives write to their private copies.
struct Private {
  bool user = false, machine = false;
};

class HiveCommitTest : public testing::TestWithParam<Private>, protected OfflineFixture {
 protected:
  HiveCommitTest() { Renew(); }

  /// One run of the program on the disk.
  struct Run {
    Run(HiveCommitTest& test, Private copies)
        : user(At(test.kUser), HiveMode::Write, test.disk / "state", test.log),
          machine(At(test.kMachine), HiveMode::Write, test.disk / "state", test.log),
          hives(test.clock, test.files, test.log) {
      if (copies.user) user.LeaveDiskAlone();
      if (copies.machine) machine.LeaveDiskAlone();
      hives.Mount({RegistryRoot::CurrentUser, ""}, user);
      hives.Mount({RegistryRoot::LocalMachine, "SOFTWARE"}, machine);
    }
    void Change(std::string_view value) {
      for (HiveFile* hive : {&user, &machine}) SetRootValue(*hive, value);
    }
    HiveFile user, machine;
    OfflineRegistry hives;
  };

  /// What the next opening does, here as Bob's.
  std::vector<std::string> Reopen() {
    const fs::path state = disk / "state";
    std::vector<std::string> said = FinishInterruptedCommit(
        PlacesOf(At(kMachine), state), {PlacesOf(At(kBob), state), PlacesOf(At(kUser), state)}, log);
    for (const fs::path& hive : {kUser, kMachine}) {
      HiveFile file(At(hive), HiveMode::Write, state, log);
      file.RemoveLeftovers();
    }
    return said;
  }
  std::string Value(const fs::path& hive) { return RootValue({At(hive), HiveMode::Read, disk / "state", log}); }
  Values OnDisk() { return {Value(kUser), Value(kMachine)}; }

  /// Every file that is no hive and nothing that is kept for good.
  std::vector<std::string> Leftovers() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(disk.Path())) {
      const std::string name = entry.path().filename().string();
      const bool expected = entry.is_directory() || name == "NTUSER.DAT" || name == "software" ||
                            name.ends_with(".before-quillbox") || name.ends_with(".origin");
      if (!expected) names.push_back(entry.path().lexically_relative(disk.Path()).string());
    }
    return names;
  }
  void Renew() {
    fs::remove_all(disk / "state");
    fs::remove_all(disk / "c");
    for (const fs::path& hive : {kUser, kBob, kMachine}) MakeHiveFile(hive);
  }

  /// Runs `act` in another process that is killed before the first call for which `isLast` holds; true when there was
  /// none.
  template <typename Act, typename IsLast>
  bool Survives(Act act, IsLast isLast) {
    return RunInCopy([&] {
             const HostCallGuard guard([&](HostCall call, const std::string& file) {
               if (isLast(call, file)) KillThisProcess();
               return 0;
             });
             act();
           }) == 0;
  }
  /// The same with the call of that number.
  template <typename Act>
  bool SurvivesUntil(int last, Act act) {
    return Survives(act, [&last](HostCall, const std::string&) { return last-- == 0; });
  }
  /// Changes both hives in a program that is killed before it puts `hive` in place.
  void ChangeKilledBefore(const std::string& hive) {
    ASSERT_FALSE(Survives(
        [&] { Change("new"); },
        [&](HostCall call, const std::string& file) { return call == HostCall::Rename && file.ends_with(hive); }));
  }
  void Change(std::string_view value) {
    Run run(*this, GetParam());
    run.Change(value);
    run.hives.Commit();
  }

  const HostCallGuard quick{[](HostCall, const std::string&) { return 0; }};
  const fs::path kUser = disk / "c/Documents and Settings/Ann/NTUSER.DAT";
  const fs::path kBob = disk / "c/Documents and Settings/Bob/NTUSER.DAT";
  const fs::path kMachine = disk / "c/WINDOWS/system32/config/software";
};

INSTANTIATE_TEST_SUITE_P(Places, HiveCommitTest,
                         testing::Values(Private{}, Private{true, false}, Private{false, true}, Private{true, true}),
                         [](const auto& row) {
                           return std::string(row.param.user ? "UserPrivate" : "UserOnDisk") +
                                  (row.param.machine ? "MachinePrivate" : "MachineOnDisk");
                         });

TEST_P(HiveCommitTest, AKillAtAnyMomentGivesBothOrNone) {
  NEEDS(Forks);
  NEEDS(FailingCalls);
  int before = 0, after = 0;
  bool ended = false;
  for (int call = 0; !ended; ++call) {
    Renew();
    ended = SurvivesUntil(call, [&] { Change("new"); });
    EXPECT_TRUE(Reopen().empty()) << call;
    EXPECT_THAT(OnDisk(), AnyOf(kBefore, kAfter)) << call;
    EXPECT_THAT(Leftovers(), ElementsAre()) << call;
    (OnDisk() == kBefore ? before : after) += 1;
    Change("newer");
    EXPECT_EQ(OnDisk(), Values("newer", "newer")) << call;
  }
  EXPECT_GT(before, 3);
  EXPECT_GT(after, 3);
}

TEST_P(HiveCommitTest, AKillWhileItIsFinishedIsFinishedLater) {
  NEEDS(Forks);
  NEEDS(FailingCalls);
  bool ended = false;
  for (int call = 0; !ended; ++call) {
    Renew();
    ChangeKilledBefore("NTUSER.DAT");  // nothing is in place, and the record is written
    ended = SurvivesUntil(call, [&] { Reopen(); });
    Reopen();
    EXPECT_EQ(OnDisk(), kAfter) << call;
    EXPECT_THAT(Leftovers(), ElementsAre()) << call;
  }
}

TEST_P(HiveCommitTest, AFailureAtAnyStepIsToldAndMadeGoodByTheNextCommand) {
  NEEDS(Forks);
  NEEDS(FailingCalls);
  bool failed = true;
  for (int call = 0; failed; ++call) {
    Renew();
    Run run(*this, GetParam());
    run.Change("new");
    failed = false;
    {
      int left = call;
      const HostCallGuard guard(
          [&](HostCall kind, const std::string&) { return left-- == 0 && kind != HostCall::Remove ? EIO : 0; });
      try {
        run.hives.Commit();
        failed = left < 0;  // what could not be removed is no reason to fail
      } catch (const Error& error) {
        failed = true;
        const Values now = OnDisk();
        EXPECT_THAT(Describe(error), HasSubstr("Input/output error")) << call;
        if (now == kBefore) {
          EXPECT_THAT(error.Why(), HasSubstr("; nothing was written of ")) << call;
        }
        if (now == Values("new", "old")) {
          EXPECT_THAT(error.Why(),
                      MatchesRegex(".*; /.*NTUSER.DAT was written, /.*software was not; it is written when "
                                   "the next command ends, or when the disk is opened next"))
              << call;
        }
        EXPECT_NE(now, Values("old", "new")) << call;
      }
    }
    run.hives.Commit();
    EXPECT_EQ(OnDisk(), kAfter) << call;
    Reopen();
    EXPECT_THAT(Leftovers(), ElementsAre()) << call;
  }
}

using HiveRecord = HiveCommitTest;
INSTANTIATE_TEST_SUITE_P(Disk, HiveRecord, testing::Values(Private{}));

constexpr std::string_view kHead = "Quillbox was putting these registry hives in place together:\n";

TEST_P(HiveRecord, AForgedRecordTouchesNothingButTheHives) {
  NEEDS(Forks);
  NEEDS(FailingCalls);
  MakeHiveFile(disk / "victim", "mine");
  MakeHiveFile(disk / "victim.quillbox-new", "evil");
  MakeHiveFile(disk / "c/evil", "evil");
  const std::string staged = HiveStamp(At(disk / "c/evil")), old = HiveStamp(At(disk / "victim"));
  const std::string user = "disk " + old + " " + staged + " ../../../Documents and Settings/Ann/NTUSER.DAT\n";
  const std::string machine = "disk " + old + " " + old + " software\n";
  const std::string outside = "disk " + old + " " + staged + " ";
  const fs::path record = kMachine.parent_path() / ".quillbox-commit";
  const fs::path stagedUser = kUser.string() + ".quillbox-new";

  const std::string records[] = {
      std::string(kHead) + outside + (disk / "victim").string() + "\n" + machine + "end\n",
      std::string(kHead) + outside + "../../../../victim\n" + machine + "end\n",
      std::string(kHead) + user + outside + "../../../../victim\nend\n",
      std::string(kHead) + user + machine,                      // cut off
      std::string(kHead) + user + machine + machine + "end\n",  // a third hive
      std::string(kHead) + user + user + "end\n",
      std::string(kHead) + user + "copy " + machine.substr(5) + "end\n",  // the copies' record is elsewhere
      std::string(kHead) + "disk " + staged + " " + old + "\nend\n",
      std::string(kHead) + user + std::string(100'000, 'x') + "\n" + machine + "end\n",
      std::string(100'000, '\0'),
  };
  for (const std::string& text : records) {
    std::ofstream(record, std::ios::binary) << text;
    fs::copy_file(disk / "c/evil", stagedUser, fs::copy_options::overwrite_existing);
    Reopen();
    EXPECT_EQ(OnDisk(), kBefore) << text.substr(0, 400);
    EXPECT_EQ(Value(disk / "victim"), "mine");
    EXPECT_EQ(Value(disk / "victim.quillbox-new"), "evil");
  }

  // Well formed, but what is to be put in place is a link, a broken hive, or not what the record says.
  std::ofstream(record, std::ios::binary) << kHead << user << machine << "end\n";
  fs::remove(stagedUser);
  fs::create_symlink(disk / "c/evil", stagedUser);
  Reopen();
  EXPECT_EQ(OnDisk(), kBefore);
  EXPECT_EQ(Value(disk / "c/evil"), "evil");
  std::string broken = disk.Read("c/evil");
  broken[4096 + 36] ^= 0x55;
  std::ofstream(record, std::ios::binary) << kHead << user << machine << "end\n";
  std::ofstream(stagedUser, std::ios::binary) << broken;
  Reopen();
  EXPECT_EQ(OnDisk(), kBefore);

  // A record that is a pipe or leads elsewhere is not read.
  MakePipe(record);
  Reopen();
  fs::remove(record);
  fs::create_symlink(disk.File("c/elsewhere", std::string(kHead) + user + machine + "end\n"), record);
  fs::copy_file(disk / "c/evil", stagedUser);
  Reopen();
  EXPECT_EQ(OnDisk(), kBefore);
  EXPECT_TRUE(fs::exists(disk / "c/elsewhere"));
}

TEST_P(HiveRecord, WhatCannotBeMendedIsSaid) {
  NEEDS(Forks);
  NEEDS(FailingCalls);
  ChangeKilledBefore("software");
  MakeHiveFile(kMachine, "changed by Windows");
  Hive again = Hive::Load(ReadBytes(kMachine), "software");
  WriteBytes(kMachine, again.Image(kTestTime + 5));
  EXPECT_THAT(Reopen(),
              ElementsAre(AllOf(HasSubstr("config/software: a command was interrupted"), HasSubstr("Ann/NTUSER.DAT"))));
  EXPECT_EQ(OnDisk(), Values("new", "changed by Windows"));
  EXPECT_THAT(Leftovers(), ElementsAre());
  EXPECT_TRUE(Reopen().empty()) << "said once";
}

}  // namespace
}  // namespace quillbox
