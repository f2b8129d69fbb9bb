// The window that opens a disk: choose a folder, see whose profiles are on it and how many identities each has, open
// one of them, or make a sample disk to try.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "app/options.h"
#include "platform/dialogs.h"
#include "platform/host_paths.h"
#include "platform/offline/windows_disk.h"
#include "ui/form.h"

namespace quillbox {

/// Before a disk is open all paths are the host's own, seen as drive Z:.
class HostOnlyPaths : public HostPaths {
 public:
  std::filesystem::path HostPath(const WinPath& path) const override;
  WinPath WindowsPathOf(const std::filesystem::path& path) const override;
};

class StartWindow : public Form {
 public:
  /// `open` opens a disk's profile and throws Error when that fails; this window is closed when it has returned.
  StartWindow(HandlerGuard& guard, Dialogs& dialogs, std::function<void(const DiskChoice&)> open);

  // In tab order.
  Label lblWelcome;
  Label lblFolder;
  TextBox txtFolder;
  Button cmdChoose;
  Label lblProfiles;
  ListBox lstProfiles;
  Label lblFault;
  Button cmdOpen;
  Button cmdSample;
  Button cmdClose;

  /// Shows what a folder holds: its profiles, or why none can be opened.
  void Look(const DiskChoice& disk);
  /// Called when the person closes the window without opening a disk.
  std::function<void()> onClosed = [] {};

  LayoutNode Layout() override;

 private:
  void cmdChoose_Click();
  void cmdOpen_Click();
  void cmdSample_Click();
  void ShowFault(const std::string& fault);

  Dialogs& dialogs_;
  HostOnlyPaths paths_;
  std::function<void(const DiskChoice&)> open_;
  DiskChoice choice_;
  std::optional<WindowsDisk> disk_;
};

}  // namespace quillbox
