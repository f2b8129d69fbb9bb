// SPDX-License-Identifier: GPL-3.0-or-later
// The program: opens a disk, then the main window on it.
#include <cstdio>
#include <ctime>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "app/disk_list.h"
#include "app/no_display.h"
#include "app/options.h"
#include "app/start_window.h"
#include "app/this_computer.h"
#include "host/host_paths.h"
#include "host/host_program.h"
#include "host/state_folder.h"
#include "platform/hosted/log.h"
#include "platform/hosted/opener.h"
#include "platform/offline/offline_platform.h"
#include "text/error.h"
#include "ui/forms/program_windows.h"
#include "ui/wx/wx_app.h"
#include "ui/wx/wx_clipboard.h"
#include "ui/wx/wx_dialogs.h"
#include "ui/wx/wx_runtime.h"

namespace quillbox {
namespace {

/// The time of one disk, or of this computer, from its choice to its end.
class Application {
 public:
  Application(WindowSystem& system, DiskChoice disk) : system_(system), disk_(std::move(disk)) {}

  /// Opens what was named, or this computer where its user has identities, or asks.
  void Start(const Options& options) {
    const bool namesNone = disk_.folder.Empty();
    const bool opensThis = options.thisComputer || (namesNone && !options.choose && HasIdentitiesHere());
    if (!opensThis && (options.choose || namesNone || IsForSeveral(disk_))) return ShowStartWindow();
    try {
      opensThis ? OpenComputer() : OpenDisk(disk_);
    } catch (const Error& error) {
      log_.Write(Describe(error));
      ShowStartWindow();
      if (!start_->lblFault.visible) start_->ShowFault(Describe(error));
    }
  }

  /// True when the windows have ended so that another disk can be opened.
  bool WantsAnotherDisk() const { return wantsAnother_; }

 private:
  /// Several profiles are a list to pick from.
  static bool IsForSeveral(const DiskChoice& disk) try {
    return disk.profile.empty() && FindWindowsDisk(disk.folder, disk.drives).profiles.size() > 1;
  } catch (const Error&) {
    return false;
  }

  void ShowStartWindow() {
    start_ = std::make_unique<StartWindow>(guard_, dialogs_, StateFolder());
    start_->onOpen = [this](const DiskChoice& choice) { OpenDisk(choice); };
    start_->onSearch = [this](const DiskChoice& choice) { SearchDisk(choice); };
    start_->onManual = [this] { opener_.OpenManual(ManualOf(ProgramFolder())); };
    start_->onThisComputer = [this] { OpenComputer(); };
    start_->onClosed = [this] { system_.Quit(); };
    if (!disk_.folder.Empty()) start_->Look(disk_);
    start_->Show();
    system_.Attach(*start_);
  }

  void OpenDisk(const DiskChoice& disk) {
    MakePlatform(disk, RegistryUse::OfTheDisk);
    disk_.profile = platform_->ProfileName();
    Remember();
    windows_->form1.Open();
    for (const std::string& warning : platform_->Warnings()) {
      dialogs_.Show({.text = warning, .icon = MessageIcon::Exclamation});
    }
  }

  void OpenComputer() {
    computer_ = OpenThisComputer(StateFolder(), dialogs_, clipboard_);
    computer_->onStartedAgain = [this] { system_.Quit(); };
    dialogs_.UseHostPaths(computer_->GetHostPaths());
    ShowWindows(computer_->GetPlatform());
    windows_->form1.Open();
    computer_->Greet();
  }

  void SearchDisk(const DiskChoice& disk) {
    MakePlatform(disk, RegistryUse::StandIn);
    windows_->OpenSearchAlone();
  }

  void MakePlatform(const DiskChoice& disk, RegistryUse registry) {
    OfflineOptions offline;
    offline.folder = disk.folder;
    offline.profile = disk.profile;
    offline.drives = disk.drives;
    offline.registry = registry;
    offline.driveNamed = [this](char letter, const HostPath& folder) {
      disk_.drives[letter] = folder;
      Remember();
    };
    platform_ = std::make_unique<OfflinePlatform>(offline, dialogs_, &clipboard_);
    disk_ = disk;
    dialogs_.UseHostPaths(platform_->GetDrives());
    ShowWindows(*platform_);
  }

  void ShowWindows(Platform& platform) {
    windows_ = std::make_unique<ProgramWindows>(platform);
    windows_->quit = [this] { system_.Quit(); };
    windows_->chooseDisk = [this] {
      wantsAnother_ = true;
      system_.Quit();
    };
    for (Form* form : windows_->All()) system_.Attach(*form);
  }

  void Remember() {
    try {
      RememberDisk(StateFolder(), {disk_, std::time(nullptr)});
    } catch (const Error& error) {
      log_.Write(Describe(error));
    }
  }

  WindowSystem& system_;
  DiskChoice disk_;
  bool wantsAnother_ = false;
  FileLog log_{StateFolder()};
  HostOnlyPaths hostOnly_;
  WxDialogs dialogs_{hostOnly_};
  WxClipboard clipboard_;
  HandlerGuard guard_{log_, dialogs_};
  Opener opener_{dialogs_, log_};
  std::unique_ptr<OfflinePlatform> platform_;
  std::unique_ptr<ThisComputer> computer_;
  std::unique_ptr<ProgramWindows> windows_;
  std::unique_ptr<StartWindow> start_;
};

/// Opens one disk, or this computer, after the other. Each is closed, its changes written and its lock released, before
/// the next is chosen: nothing of it is left for the next one.
void RunDisks(Options options) {
  for (bool another = true; another;) {
    std::unique_ptr<Application> application;
    RunWindows([&](WindowSystem& system) {
      application = std::make_unique<Application>(system, options.disk);
      application->Start(options);
    });
    another = application->WantsAnotherDisk();
    options = {};
    options.choose = true;
  }
}

int Run(const std::vector<std::string>& arguments) {
  auto parsed = ParseOptions(arguments);
  if (const auto* fault = std::get_if<CommandFault>(&parsed)) {
    const Utf8Output output;
    std::fprintf(stderr, "quillbox: %s\n%s", fault->reason.c_str(), kUsage);
    return 2;
  }
  const auto& options = std::get<Options>(parsed);
  if (options.end != OptionsEnd::Run) {
    const Utf8Output output;
    std::fputs(options.end == OptionsEnd::Help ? kUsage : "quillbox " QUILLBOX_VERSION "\n", stdout);
    return 0;
  }
  std::unique_ptr<WxRuntime> runtime;
  try {
    runtime = std::make_unique<WxRuntime>();
  } catch (const Error& error) {
    const Utf8Output output;
    std::fprintf(stderr, "quillbox: %s\n%s", Describe(error).c_str(), TextWithoutDisplay(options.disk).c_str());
    return 1;
  }
  RunDisks(options);
  return 0;
}

}  // namespace
}  // namespace quillbox

int main(int argc, char** argv) {
  try {
    return quillbox::Run(quillbox::ProgramArguments(argc, argv));
  } catch (const std::exception& error) {
    const quillbox::Utf8Output output;
    std::fprintf(stderr, "quillbox: %s\n", error.what());
    return 1;
  }
}
