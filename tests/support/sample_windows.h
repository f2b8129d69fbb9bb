// SPDX-License-Identifier: GPL-3.0-or-later
// The program's windows on a small sample disk, without a display: what a test of a command needs to click and to look
// at what is then on the disk.
#pragma once

#include <memory>

#include "support/golden_text.h"
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
    for (Form* form : windows->All()) {
      for (Control* control : form->Controls()) {
        if (auto* bar = dynamic_cast<StatusBar*>(control)) bar->onChanged = [this, bar] { Keep(*bar); };
      }
    }
  }
  /// Keeps what the bar shows, and the statuses of the main window.
  void Keep(const StatusBar& bar) {
    for (std::size_t panel = 0; panel < bar.panels.size(); ++panel) {
      const std::string& text = bar.panels[panel];
      if (!text.empty()) dialogs.looks.insert(text + " [panel " + std::to_string(panel + 1) + "]");
    }
    const std::string& text = bar.panels[0];
    const bool isMain = &bar == &windows->form1.sb1;
    if (isMain && !text.empty() && (statuses.empty() || statuses.back() != text)) statuses.push_back(text);
  }
  void TearDown() override { ExpectInGolden(dialogs.looks, "ui/forms/messages_golden.txt"); }

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

  /// From now on `statuses` has each text that the main window's first panel shows.
  void WatchStatus() { statuses.clear(); }
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
