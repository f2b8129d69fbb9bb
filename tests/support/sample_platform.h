// SPDX-License-Identifier: GPL-3.0-or-later
// The platform on what a small sample disk holds, with what it would show, start or open recorded: on that disk in a
// temporary folder, or on the Windows that the tests run on.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "support/faulty_copy_io.h"
#include "support/matchers.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"
#include "support/test_log.h"

#ifdef QUILLBOX_ON_RUNNING_WINDOWS
#include "running_windows/windows_sample.h"
#else
#include "support/offline_sample.h"
#endif

namespace quillbox {

/// Passes every command line on to the real registry editor and keeps it.
struct RecordingProcesses : Processes {
  explicit RecordingProcesses(Processes& toInner) : inner(toInner) {}
  ProcessEnd RunAndWait(const std::string& commandLine, ShowStyle style) override {
    commandLines.push_back(commandLine);
    if (!forward) return {.started = true, .exitCode = 0, .errors = {}};
    return inner.RunAndWait(ForThatEditor(commandLine), style);
  }
  Processes& inner;
  bool forward = true;
  std::vector<std::string> commandLines;
};

/// Keeps what would be opened in the host's file manager or browser; copies are real.
struct RecordingShell : Shell {
  explicit RecordingShell(Shell& toInner) : inner(&toInner) {}
  void Explore(const WinPath& folder, const std::string& parameters) override {
    explored.push_back(parameters.empty() ? folder.Text() : folder.Text() + "|" + parameters);
  }
  void OpenUrl(const std::string& url) override { urls.push_back(url); }
  void OpenManual() override { urls.push_back("the manual"); }
  void BeginCopyStep() override { inner->BeginCopyStep(); }
  void CopyFile(const CopyRequest& request) override { inner->CopyFile(request); }
  std::vector<CopyResult> FinishCopies() override { return inner->FinishCopies(); }
  Shell* inner;
  std::vector<std::string> explored;
  std::vector<std::string> urls;
};

struct RecordingPlatform : SampledPlatform {
  using SampledPlatform::SampledPlatform;
  /// From now on copies have the faults that are set in what this returns.
  FaultyCopyIo& CopyWithFaults() {
    auto io = std::make_unique<FaultyCopyIo>();
    FaultyCopyIo& faults = *io;
    faultyShell = std::make_unique<HostedShell>(GetFiles(), GetSystemFacts(), GetDialogs(), log, "", std::move(io));
    shell.inner = faultyShell.get();
    return faults;
  }
  Shell& GetShell() override { return shell; }
  Processes& GetProcesses() override { return processes; }
  Log& GetLog() override { return log; }
  void EndCommand() override {
    if (faultyShell) faultyShell->EndCommand();
    SampledPlatform::EndCommand();
  }

  RecordingProcesses processes{SampledPlatform::GetProcesses()};
  RecordingShell shell{SampledPlatform::GetShell()};
  TestLog log;
  std::unique_ptr<HostedShell> faultyShell;
};

/// Files of the sample by their drive and path there: "D/Backup/note.txt".
class SampledFiles : public FilesBelow {
 public:
  explicit SampledFiles(const SampleDisk& sample) : sample_(sample) {}
  std::filesystem::path operator/(std::string_view relative) const override {
    return (relative.front() == 'C' ? sample_.driveC : sample_.driveD) / PathOf(relative.substr(2));
  }

 private:
  const SampleDisk& sample_;
};

class SamplePlatform : public ::testing::Test {
 protected:
  void SetUp() override { MakeDisk(); }
  void MakeDisk() {
    sample = MakeSampled(temp);
    OpenDisk();
  }

  /// Opens the disk (again), as a new start of the program does.
  virtual void OpenDisk() {
    store.reset();
    platform.reset();
    platform = OpenSampled<RecordingPlatform>(sample, temp, dialogs,
                                              [this](std::string drive) { named.push_back(std::move(drive)); });
    store = std::make_unique<RegistryStore>(*platform);
  }

  RegistryStore& Store() { return *store; }
  RegValue Read(const std::string& subkey, const std::string& name) {
    return Store().RegistryGetKeyValue(CurrentUser(subkey), name);
  }

  static std::string Content(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  TempFolder temp;
  ScriptedDialogs dialogs;
  SampleDisk sample;
  SampledFiles onDisk{sample};
  std::vector<std::string> named;  ///< drives, on the spot
  std::unique_ptr<RecordingPlatform> platform;
  std::unique_ptr<RegistryStore> store;
};

}  // namespace quillbox
