// SPDX-License-Identifier: GPL-3.0-or-later
// The window that opens a disk: pick one of the last ones, or name a folder and see whose profiles are on it and how
// many identities each has. Where a profile's registry cannot be opened, the disk can be searched for mail files; and a
// sample disk can be made to try.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/disk_list.h"
#include "app/options.h"
#include "platform/dialogs.h"
#include "platform/host_paths.h"
#include "platform/offline/windows_disk.h"
#include "ui/form.h"

namespace quillbox {

/// Before a disk is open all paths are the host's own, seen as drive Z:.
class HostOnlyPaths : public HostPaths {
 public:
  HostPath HostPathOf(const WinPath& path) const override;
  WinPath WindowsPathOf(const HostPath& path) const override;
};

/// A profile and what its registry says: "Ann Miller — 3 identities".
std::string ProfileLine(const ProfileFolder& profile);

class StartWindow : public Form {
 public:
  /// The list of the last disks is in `stateFolder`.
  StartWindow(HandlerGuard& guard, Dialogs& dialogs, const HostPath& stateFolder);

  // In tab order: the list is first, so that Enter opens the last disk again. On a button it would press that one.
  Label lblWelcome;
  Label lblState;
  Label lblDisks;
  ListBox lstDisks;
  Label lblFolder;
  TextBox txtFolder;
  Button cmdChoose;
  Label lblProfiles;
  ListBox lstProfiles;
  Label lblDrives;
  ComboBox cmbLetter;
  TextBox txtDrive;
  Button cmdChooseDrive;
  Button cmdAddDrive;
  Button cmdRemoveDrive;
  Label lblFault;
  TextBox txtCommand;
  Button cmdOpen;
  Button cmdSearch;
  Button cmdSample;
  Button cmdThisComputer;
  Button cmdManual;
  Button cmdPrivateData;
  Button cmdClose;

  /// Shows what a folder holds: its profiles, or why none can be opened.
  void Look(const DiskChoice& disk);
  /// Says why the disk was not opened.
  void ShowFault(const std::string& fault);

  /// Opens a disk's profile, and throws Error when that fails; this window is closed when it has returned.
  std::function<void(const DiskChoice&)> onOpen = [](const DiskChoice&) {};
  /// The same for a search of the disk without its registry.
  std::function<void(const DiskChoice&)> onSearch = [](const DiskChoice&) {};
  /// Opens the Windows that the program runs on; as onOpen.
  std::function<void()> onThisComputer = [] {};
  /// Opens the manual.
  std::function<void()> onManual = [] {};
  /// Called when the person closes the window without opening a disk.
  std::function<void()> onClosed = [] {};

  LayoutNode Layout() override;

 private:
  /// A line of the list of profiles.
  struct Found {
    HostPath folder;
    std::string profile;
  };

  void SetHandlers();
  void ListDisks();
  void LookAtText();
  void ShowFolder(const DiskChoice& disk);
  void ShowWhyNot(const std::string& why);
  void ShowFound(const std::vector<WindowsDisk>& disks);
  void ShowDrives();
  bool HasTypedDrive() const;
  bool AddDrive();
  void Leave(const std::function<void()>& open);

  void cmdChoose_Click();
  void txtFolder_Change();
  void lstDisks_Click();
  void cmbLetter_Click();
  void cmdChooseDrive_Click();
  void cmdAddDrive_Click();
  void cmdRemoveDrive_Click();
  void cmdOpen_Click();
  void cmdSearch_Click();
  void cmdSample_Click();
  void cmdPrivateData_Click();

  Dialogs& dialogs_;
  HostPath stateFolder_;
  HostOnlyPaths paths_;
  std::vector<KnownDisk> disks_;
  DiskChoice choice_;
  std::optional<std::string> looked_;  ///< the text of txtFolder whose profiles are shown
  bool isOffer_ = false;               ///< what is shown was found near the folder
  std::vector<Found> found_;
};

}  // namespace quillbox
