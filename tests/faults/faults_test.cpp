// A full or failing disk at every moment of a merge, a quick backup and a complete restore. Whatever call fails: each
// file is as before or as after, nothing is left behind, and the person hears of it.
#include <gtest/gtest.h>

#include "faults/faulty_runs.h"
#include "sample/sample_disk.h"

namespace quillbox {
namespace {

namespace fs = std::filesystem;

std::string Disk(const fs::path& disk) {
  return "--disk '" + (disk / "C").string() + "' --profile 'Ann Miller' --drive 'D=" + (disk / "D").string() + "' ";
}

std::string Merge(const fs::path& disk, const fs::path& state, const fs::path& file) {
  return "'" QUILLBOX_BIN_DIR "/regedit' " + Disk(disk) + "--state-folder '" + state.string() + "' '" + file.string() +
         "'";
}

CommandFor Window(const std::string& command) {
  return [command](const fs::path& disk, const fs::path& state) {
    return "'" QUILLBOX_BIN_DIR "/fault_window' '" + disk.string() + "' '" + state.string() + "' " + command;
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
