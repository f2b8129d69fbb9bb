// Running a program on copies of a disk with each of its changes failing in turn, and holding what is then on the disk
// against what was there before and what should be there after.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace quillbox {

/// What is in a folder: relative paths with the bytes of files; of hives their keys and values. "folder" for a folder,
/// "damaged: ..." for a hive that does not open.
using DiskContent = std::map<std::string, std::string>;
DiskContent ContentOf(const std::filesystem::path& folder);

enum class Broken {
  Once,     ///< the one call fails with EIO
  FromNow,  ///< it and all later ones fail with ENOSPC
};

/// How one run of the program ended.
struct FaultyRun {
  std::uint32_t failAt = 0;
  std::string failed;  ///< the call that failed first, with its path below the disk; empty when none did
  int exitCode = 0;
  std::string out, err;
  DiskContent disk;  ///< when the next start, if there is one, has ended

  bool FlushFailed() const { return failed.starts_with("fsync "); }
};

/// A program to run on disks: the command line for a disk's folder and a state folder.
using CommandFor =
    std::function<std::string(const std::filesystem::path& disk, const std::filesystem::path& stateFolder)>;

class FaultyRuns {
 public:
  /// `prepared`: the disk before; it is copied for each run. `nextStart`, where there is one, runs after the program on
  /// a disk that works again, and finishes or drops what was not done whole.
  FaultyRuns(std::filesystem::path prepared, CommandFor command, CommandFor nextStart = {});

  const DiskContent& Before() const { return before_; }
  const DiskContent& After() const { return after_; }
  std::uint32_t Calls() const { return calls_; }

  /// Runs the program once for each of its calls. `check` gives what was wrong in a run, a line each; all such lines
  /// become failures of the test. What every run has to keep is checked too: files are as before or as after, nothing
  /// else is left, and hives are readable, in a sample of runs also for programs of others.
  void Try(Broken how, const std::function<std::vector<std::string>(const FaultyRun&)>& check) const;

 private:
  FaultyRun Run(std::uint32_t failAt, Broken how, const std::filesystem::path& work) const;
  std::vector<std::string> FaultsOf(const FaultyRun& run) const;

  std::filesystem::path prepared_;
  CommandFor command_, nextStart_;
  TempFolder temp_;
  DiskContent before_, after_;
  std::uint32_t calls_ = 0;
};

/// True when `content` has each file as `expected` has it.
bool Holds(const DiskContent& content, const DiskContent& expected);

/// Runs a command line; its exit code.
int RunShell(const std::string& command);

}  // namespace quillbox
