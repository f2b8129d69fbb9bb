// Running a program on copies of a disk with each of its changes failing in turn, and holding what is then on the disk
// against what was there before and what should be there after.
#pragma once

#include <gmock/gmock.h>
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
#include "support/temp_folder.h"
#include "text/error.h"

namespace quillbox {

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
using CommandFor =
    std::function<std::string(const std::filesystem::path& disk, const std::filesystem::path& stateFolder)>;

/// Runs a command line; its exit code.
inline int RunShell(const std::string& command) {
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

inline std::string Quoted(const std::filesystem::path& path) {
  return "'" + path.string() + "'";
}

inline std::string HiveContent(const std::string& bytes) try {
  std::string text;
  for (const std::string& line : Lines(Hive::Load(Bytes(bytes.begin(), bytes.end()), "hive"))) text += line + "\n";
  return text;
} catch (const Error& error) {
  return "damaged: " + Describe(error);
}

inline DiskContent ContentOf(const TempFolder& temp, const std::filesystem::path& folder) {
  DiskContent content;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string bytes = entry.is_directory() ? "folder" : temp.Read(entry.path().string());
    content[entry.path().lexically_relative(folder)] = bytes.starts_with("regf") ? HiveContent(bytes) : bytes;
  }
  return content;
}

/// True when `content` has each file as `expected` has it.
inline bool Holds(const DiskContent& content, const DiskContent& expected) {
  return std::includes(content.begin(), content.end(), expected.begin(), expected.end());
}

class FaultyRuns {
 public:
  /// `prepared`: the disk before; it is copied for each run. `nextStart`, where there is one, runs after the program on
  /// a disk that works again, and finishes or drops what was not done whole.
  FaultyRuns(std::filesystem::path prepared, CommandFor command, CommandFor nextStart = {})
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
        EXPECT_THAT(faults, testing::IsEmpty()) << "call " << failAt << " of " << calls_ << " (" << run.failed
                                                << "), exit " << run.exitCode << "; " << run.out << run.err;
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

  FaultyRun Run(std::uint32_t failAt, Broken how, const std::filesystem::path& work) const {
    const std::filesystem::path disk = work / "disk", state = work / "state", planFile = work / "plan";
    std::filesystem::remove_all(work);
    std::filesystem::create_directories(work);
    std::filesystem::copy(prepared_, disk, std::filesystem::copy_options::recursive);
    FaultPlan* plan = MapPlan(planFile.c_str(), O_CREAT);
    if (plan == nullptr) throw std::system_error(errno, std::generic_category(), planFile.string());
    plan->failAt = failAt;
    plan->andAllAfter = how == Broken::FromNow ? 1 : 0;
    plan->code = how == Broken::FromNow ? ENOSPC : EIO;
    const std::string environment = "env LD_PRELOAD='" QUILLBOX_FAULT_LIBRARY "' " + std::string(kFaultPlanVariable) +
                                    "=" + Quoted(planFile) + " " + kFaultRootVariable + "=" +
                                    Quoted(std::filesystem::canonical(disk) / "") +
                                    " ASAN_OPTIONS=verify_asan_link_order=0 ";
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
  std::filesystem::path prepared_;
  CommandFor command_, nextStart_;
  DiskContent before_ = ContentOf(temp_, prepared_), after_;
  std::uint32_t calls_ = 0;
};

}  // namespace quillbox
