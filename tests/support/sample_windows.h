// The program's windows on a small sample disk, without a display: what a test of a command needs to click and to look
// at what is then on the disk.
#pragma once

#include <memory>

#include "support/registry_snapshot.h"
#include "support/sample_platform.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

class SampleWindows : public SamplePlatform {
 protected:
  static constexpr const char* kBackup = "D:\\Backup";
  /// What the status bar says of "comp.lang.c++.dbx" in the first identity's store.
  static constexpr const char* kLeftOut = "1 file left out (full stop in its name)";

  void OpenDisk() override {
    windows.reset();
    SamplePlatform::OpenDisk();
    windows = std::make_unique<ProgramWindows>(*platform);
  }

  /// Makes D:\Backup and has it be the backup folder, then starts the program.
  Form1& Start() {
    std::filesystem::create_directories(BackupFolderOnHost());
    windows->session.backupFolder.Choose(WinPath(kBackup));
    windows->form1.Open();
    return windows->form1;
  }
  /// Stores a folder in the registry as a disk comes with it: nobody has chosen it here.
  void StoreBackupFolder(const std::string& folder) {
    Store().CreateKey(CurrentUser(kIdentitiesKey));
    Store().SetKeyValue(kIdentitiesKey, "Quillbox", folder, ValueType::Sz);
  }
  std::filesystem::path BackupFolderOnHost() const { return sample.driveD / "Backup"; }
  std::filesystem::path OnHost(const std::string& path) {
    return NativePath(platform->GetDrives().HostPathOf(WinPath(path)));
  }
  const std::vector<IdentityInfo>& Identities() { return windows->session.Catalogue().identities; }
  void SetUsername(const std::string& userId, const std::string& username) {
    Store().SetKeyValue(IdentityKey(userId), "Username", username, ValueType::Sz);
  }
  RegistrySnapshot Snapshot(const char* key = kIdentitiesKey) {
    return SnapshotOf(platform->GetRegistry(), CurrentUser(key));
  }

  /// From now on `statuses` gets each text that the main window's first panel shows.
  void WatchStatus() {
    statuses.clear();
    windows->form1.sb1.onChanged = [this] {
      const std::string& text = windows->form1.sb1.panels[0];
      if (!text.empty() && (statuses.empty() || statuses.back() != text)) statuses.push_back(text);
    };
  }
  /// The statuses without those of single stores, such as "Inbox.dbx Backup Complete".
  std::vector<std::string> StatusesButFiles(const std::string& ending) const {
    std::vector<std::string> rest;
    for (const std::string& text : statuses) {
      if (!text.ends_with(".dbx" + ending)) rest.push_back(text);
    }
    return rest;
  }

  std::unique_ptr<ProgramWindows> windows;
  std::vector<std::string> statuses;
};

}  // namespace quillbox
