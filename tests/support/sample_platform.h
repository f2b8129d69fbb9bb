// The offline platform on a small sample disk in a temporary folder, with what it would show, start or open recorded.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/identity_catalogue.h"
#include "core/registry_store.h"
#include "platform/offline/offline_platform.h"
#include "sample/sample_disk.h"
#include "support/faulty_copy_io.h"
#include "support/matchers.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"
#include "support/test_log.h"

namespace quillbox {

/// Passes every command line on to the real registry editor and keeps it.
struct RecordingProcesses : Processes {
  explicit RecordingProcesses(Processes& toInner) : inner(toInner) {}
  ProcessEnd RunAndWait(const std::string& commandLine, ShowStyle style) override {
    commandLines.push_back(commandLine);
    if (!forward) return {.started = true, .exitCode = 0, .errors = {}};
    return inner.RunAndWait(commandLine, style);
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
  void BeginCopyStep() override { inner->BeginCopyStep(); }
  void CopyFile(const CopyRequest& request) override { inner->CopyFile(request); }
  std::vector<CopyResult> FinishCopies() override { return inner->FinishCopies(); }
  Shell* inner;
  std::vector<std::string> explored;
  std::vector<std::string> urls;
};

struct RecordingPlatform : OfflinePlatform {
  using OfflinePlatform::OfflinePlatform;
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
    OfflinePlatform::EndCommand();
  }

  RecordingProcesses processes{OfflinePlatform::GetProcesses()};
  RecordingShell shell{OfflinePlatform::GetShell()};
  TestLog log;
  std::unique_ptr<HostedShell> faultyShell;
};

class SamplePlatform : public ::testing::Test {
 protected:
  void SetUp() override { MakeDisk(); }
  void MakeDisk() {
    sample = MakeSampleDisk(temp / "disk", {.smallStores = true});
    OpenDisk();
  }

  /// Opens the disk (again), as a new start of the program does.
  virtual void OpenDisk() {
    store.reset();
    platform.reset();
    OfflineOptions options;
    options.folder = sample.driveC;
    options.profile = sample.profile;
    options.drives = {{'D', sample.driveD}};
    options.stateFolder = temp / "state";
    options.driveNamed = [this](char letter, const HostPath& folder) {
      named.push_back(std::string(1, letter) + "=" + folder.Text());
    };
    options.registryEditor = HostPath(QUILLBOX_BIN_DIR "/regedit");
    platform = std::make_unique<RecordingPlatform>(options, dialogs);
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
  std::vector<std::string> named;  ///< drives, on the spot
  std::unique_ptr<RecordingPlatform> platform;
  std::unique_ptr<RegistryStore> store;
};

}  // namespace quillbox
