// SPDX-License-Identifier: GPL-3.0-or-later
// A full or failing disk at every moment of a merge, a quick backup and a complete restore. Whatever call fails: each
// file is as before or as after, nothing is left behind, and the person hears of it.
#include <sys/wait.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <future>
#include <map>
#include <string>
#include <vector>

#include "faults/fault_plan.h"
#include "registry/hive_tools.h"
#include "sample/sample_disk.h"
#include "support/matchers.h"
#include "support/temp_folder.h"
#include "text/error.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

/// What is in a folder: relative paths with the bytes of files; of hives their keys and values. "folder" for a folder,
/// "damaged: ..." for a hive that does not open.
using DiskContent = std::map<std::string, std::string>;

enum class Broken {
  Once,     ///< the one call fails with EIO
  FromNow,  ///< it and all later ones fail with ENOSPC
};

/// How one run of the program ended.
struct FaultyRun {
  std::string failed;  ///< the call that failed first, with its path below the disk; empty when none did
  std::uint32_t calls = 0;
  int exitCode = 0;
  std::string out, err;
  DiskContent disk;  ///< when the next start, if there is one, has ended

  bool FlushFailed() const { return failed.starts_with("fsync "); }
};

/// A program to run on disks: the command line for a disk's folder and a state folder.
using CommandFor = std::function<std::string(const fs::path& disk, const fs::path& stateFolder)>;

/// Runs a command line; its exit code.
int RunShell(const std::string& command) {
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string Quoted(const fs::path& path) {
  return "'" + path.string() + "'";
}

std::string HiveContent(const std::string& bytes) try {
  std::string text;
  for (const std::string& line : Lines(Hive::Load(Bytes(bytes.begin(), bytes.end()), "hive"))) text += line + "\n";
  return text;
} catch (const Error& error) {
  return "damaged: " + Describe(error);
}

DiskContent ContentOf(const TempFolder& temp, const fs::path& folder) {
  DiskContent content;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string bytes = entry.is_directory() ? "folder" : temp.Read(entry.path().string());
    content[entry.path().lexically_relative(folder)] = bytes.starts_with("regf") ? HiveContent(bytes) : bytes;
  }
  return content;
}

/// True when `content` has each file as `expected` has it.
bool Holds(const DiskContent& content, const DiskContent& expected) {
  return std::includes(content.begin(), content.end(), expected.begin(), expected.end());
}

class FaultyRuns {
 public:
  /// `prepared`: the disk before; it is copied for each run. `nextStart`, where there is one, runs after the program on
  /// a disk that works again, and finishes or drops what was not done whole.
  FaultyRuns(fs::path prepared, CommandFor command, CommandFor nextStart = {})
      : prepared_(std::move(prepared)), command_(std::move(command)), nextStart_(std::move(nextStart)) {
    const FaultyRun whole = Run(0, Broken::Once, temp_ / "whole");
    EXPECT_EQ(whole.exitCode, 0) << whole.out << whole.err;
    after_ = whole.disk;
    calls_ = whole.calls;
    EXPECT_NE(before_, after_);
  }

  const DiskContent& Before() const { return before_; }
  const DiskContent& After() const { return after_; }
  std::uint32_t Calls() const { return calls_; }

  /// Runs the program once for each of its calls. `check` gives what was wrong in a run, a line each; all such lines
  /// become failures of the test. What every run has to keep is checked too: files are as before or as after, nothing
  /// else is left, and hives are readable.
  void Try(Broken how, const std::function<std::vector<std::string>(const FaultyRun&)>& check) const {
    std::atomic<std::uint32_t> next = 1, wrong = 0;
    const auto work = [&](const char* worker) {
      for (std::uint32_t failAt = 0; (failAt = next.fetch_add(kStep)) <= calls_ && wrong < kMostWrong;) {
        const FaultyRun run = Run(failAt, how, temp_ / worker);
        std::vector<std::string> faults = check(run);
        AddFaultsOfFiles(run.disk, faults);
        if (!faults.empty()) ++wrong;
        EXPECT_THAT(faults, IsEmpty()) << "call " << failAt << " of " << calls_ << " (" << run.failed << "), exit "
                                       << run.exitCode << "; " << run.out << run.err;
      }
    };
    auto other = std::async(std::launch::async, work, "one");
    work("two");
    other.get();
  }

 private:
  static constexpr std::uint32_t kMostWrong = 12;
#if defined(__SANITIZE_ADDRESS__)
  static constexpr std::uint32_t kStep = 7;  ///< every run takes several times as long
#else
  static constexpr std::uint32_t kStep = 1;
#endif

  FaultyRun Run(std::uint32_t failAt, Broken how, const fs::path& work) const {
    const fs::path disk = work / "disk", state = work / "state", planFile = work / "plan";
    fs::remove_all(work);
    fs::create_directories(work);
    fs::copy(prepared_, disk, fs::copy_options::recursive);
    FaultPlan* plan = MapPlan(planFile.c_str(), O_CREAT);
    if (plan == nullptr) throw std::system_error(errno, std::generic_category(), planFile.string());
    plan->failAt = failAt;
    plan->andAllAfter = how == Broken::FromNow ? 1 : 0;
    plan->code = how == Broken::FromNow ? ENOSPC : EIO;
    // The loader takes a blank in a path for the end of it.
    const fs::path library = work / "faults.so";
    fs::create_symlink(QUILLBOX_FAULT_LIBRARY, library);
    const std::string environment = "env LD_PRELOAD=" + library.string() + " " + std::string(kFaultPlanVariable) + "=" +
                                    Quoted(planFile) + " " + kFaultRootVariable + "=" +
                                    Quoted(fs::canonical(disk) / "") + " ASAN_OPTIONS=verify_asan_link_order=0 ";
    FaultyRun run;
    run.exitCode =
        RunShell("cd " + Quoted(work) + " && timeout 60 " + environment + command_(disk, state) + " >out 2>err");
    run.out = temp_.Read((work / "out").string());
    run.err = temp_.Read((work / "err").string());
    run.failed = plan->firstFailed.data();
    run.calls = plan->calls;
    munmap(plan, sizeof(FaultPlan));
    if (nextStart_ && RunShell(nextStart_(disk, state) + " >" + Quoted(work / "next") + " 2>&1") != 0) {
      run.err += "\nthe next start: " + temp_.Read((work / "next").string());
    }
    run.disk = ContentOf(temp_, disk);
    return run;
  }

  void AddFaultsOfFiles(const DiskContent& disk, std::vector<std::string>& faults) const {
    for (const auto& file : disk) {
      if (Holds(before_, {file}) || Holds(after_, {file})) continue;
      const bool isKnown = before_.contains(file.first) || after_.contains(file.first);
      faults.push_back((isKnown ? "neither as before nor as after: " : "left behind: ") + file.first + " " +
                       file.second.substr(0, 80));
    }
    for (const auto& [name, content] : before_) {
      if (!disk.contains(name) && after_.contains(name)) faults.push_back("gone: " + name);
    }
  }

  TempFolder temp_;
  fs::path prepared_;
  CommandFor command_, nextStart_;
  DiskContent before_ = ContentOf(temp_, prepared_), after_;
  std::uint32_t calls_ = 0;
};

std::string Disk(const fs::path& disk) {
  return "--disk " + Quoted(disk / "C") + " --profile 'Ann Miller' --drive D=" + Quoted(disk / "D") + " ";
}

std::string Merge(const fs::path& disk, const fs::path& state, const fs::path& file) {
  return "'" QUILLBOX_BIN_DIR "/regedit' " + Disk(disk) + "--state-folder " + Quoted(state) + " " + Quoted(file);
}

CommandFor Window(const std::string& command) {
  return [command](const fs::path& disk, const fs::path& state) {
    return "'" QUILLBOX_BIN_DIR "/fault_window' " + Quoted(disk) + " " + Quoted(state) + " " + command;
  };
}

class Faults : public testing::TestWithParam<Broken> {
 protected:
  Faults() { MakeSampleDisk(temp / "disk", {.smallStores = true}); }

  /// A disk with a backup of an earlier day, which differs from what the disk now holds.
  void PrepareEarlierBackup() {
    fs::create_directories(temp / "disk/D/Backup");
    Prepare(Window("prepare")(temp / "disk", temp / "state"));
    for (const auto& entry : fs::recursive_directory_iterator(temp / "disk")) {
      const bool isBackup = entry.path().string().find("/Backup/") != std::string::npos;
      if (entry.path().extension() == ".dbx" && !isBackup) std::ofstream(entry.path(), std::ios::app) << "later";
    }
    const fs::path later = temp.File("later.reg",
                                     "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Microsoft\\WAB]\n\"Later\"=\"1\"\n"
                                     "[HKEY_CURRENT_USER\\Software\\Microsoft\\Internet Account Manager\\Accounts]\n"
                                     "\"Later\"=\"1\"\n[HKEY_CURRENT_USER\\Identities]\n\"Last Username\"=\"Later\"\n"
                                     "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Outlook Express]\n\"Later\"=\"1\"\n");
    Prepare(Merge(temp / "disk", temp / "state", later));
  }
  void Prepare(const std::string& command) const {
    const std::string out = (temp / "prepared").string();
    ASSERT_EQ(RunShell(command + " >'" + out + "' 2>&1"), 0) << command << "\n" << temp.Read("prepared");
  }

  /// Gives the window `command` and looks at what it reports.
  void TryWindow(const std::string& command) {
    PrepareEarlierBackup();
    const FaultyRuns runs(temp / "disk", Window(command));
    ASSERT_GT(runs.Calls(), 40U);
    runs.Try(GetParam(), [&](const FaultyRun& run) {
      const bool silent =
          run.out.find("message: ") == std::string::npos && run.out.find("note: \n") != std::string::npos;
      std::vector<std::string> faults;
      if (silent && !Holds(run.disk, runs.After())) faults.emplace_back("something is missing and nothing was said");
      if (silent && run.FlushFailed()) faults.emplace_back("a flush failed and nothing was said");
      if (run.exitCode > 1) faults.emplace_back("the program did not end as it should");
      return faults;
    });
  }

  TempFolder temp;
};

TEST_P(Faults, OfAMergeLeaveBothHivesAsBeforeOrBothAsAfter) {
  const fs::path file = temp.File("both.reg",
                                  "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\New]\n\"a\"=\"1\"\n"
                                  "[HKEY_LOCAL_MACHINE\\SOFTWARE\\New]\n\"b\"=dword:2\n");
  const fs::path nothing = temp.File("nothing.reg", "REGEDIT4\n");
  const auto merge = [](const fs::path& merged) {
    return [merged](const fs::path& disk, const fs::path& state) { return Merge(disk, state, merged); };
  };
  const FaultyRuns runs(temp / "disk", merge(file), merge(nothing));
  ASSERT_GT(runs.Calls(), 8U);
  runs.Try(GetParam(), [&](const FaultyRun& run) {
    const bool after = Holds(run.disk, runs.After());
    // A hive that cannot be opened for writing is left alone, and the program says where its changes are.
    const bool elsewhere = run.err.find("changes go to ") != std::string::npos;
    std::vector<std::string> faults;
    if (!after && !elsewhere && !Holds(run.disk, runs.Before()))
      faults.emplace_back("one hive is as before and one as after");
    if (run.exitCode == 0 && !after && !elsewhere) faults.emplace_back("it ended well and did not merge");
    if (run.exitCode == 0 && run.FlushFailed()) faults.emplace_back("it ended well and a flush failed");
    if (run.exitCode != 0 && run.err.empty()) faults.emplace_back("it failed and gave no reason");
    if (run.exitCode > 1) faults.emplace_back("it did not end as it should");
    if (run.err.find("the next start: ") != std::string::npos) faults.emplace_back("the disk cannot be used any more");
    return faults;
  });
}

TEST_P(Faults, OfAQuickBackupAreToldAndLeaveTheEarlierBackup) {
  TryWindow("quick-backup");
}

TEST_P(Faults, OfACompleteRestoreAreToldAndLeaveEachFileWhole) {
  TryWindow("restore");
}

INSTANTIATE_TEST_SUITE_P(All, Faults, testing::Values(Broken::Once, Broken::FromNow), [](const auto& broken) {
  return std::string(broken.param == Broken::Once ? "FailingDisk" : "FullDisk");
});

}  // namespace
}  // namespace quillbox
