// The program: opens a disk, then the main window on it.
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "app/options.h"
#include "app/start_window.h"
#include "platform/offline/log.h"
#include "platform/offline/offline_platform.h"
#include "platform/offline/state_folder.h"
#include "text/error.h"
#include "ui/forms/program_windows.h"
#include "ui/wx/wx_app.h"
#include "ui/wx/wx_clipboard.h"
#include "ui/wx/wx_dialogs.h"

namespace quillbox {
namespace {

class Application {
 public:
  Application(WindowSystem& system, Options options) : system_(system), options_(std::move(options)) {}

  void Start() {
    DiskChoice disk = options_.disk;
    if (disk.folder.empty() && !options_.choose) disk = LoadLastDisk(StateFolder());
    if (disk.folder.empty()) return ShowStartWindow(disk);
    try {
      OpenDisk(disk);
    } catch (const Error& error) {
      log_.Write(Describe(error));
      ShowStartWindow(disk);
      start_->lblFault.caption = Describe(error);
    }
  }

 private:
  void ShowStartWindow(const DiskChoice& disk) {
    start_ = std::make_unique<StartWindow>(guard_, dialogs_, [this](const DiskChoice& choice) { OpenDisk(choice); });
    if (!disk.folder.empty()) start_->Look(disk);
    start_->onClosed = [this] { system_.Quit(); };
    start_->Show();
    system_.Attach(*start_);
  }

  void OpenDisk(const DiskChoice& disk) {
    OfflineOptions offline;
    offline.folder = disk.folder;
    offline.profile = disk.profile;
    offline.drives = disk.drives;
    auto platform = std::make_unique<OfflinePlatform>(offline, dialogs_, &clipboard_);
    platform_ = std::move(platform);
    dialogs_.UseHostPaths(platform_->GetDrives());
    try {
      SaveLastDisk(StateFolder(), disk);
    } catch (const Error& error) {
      log_.Write(Describe(error));
    }
    windows_ = std::make_unique<ProgramWindows>(*platform_);
    windows_->quit = [this] { system_.Quit(); };
    for (Form* form : windows_->All()) system_.Attach(*form);
    windows_->form1.Open();
    for (const std::string& warning : platform_->Warnings()) {
      dialogs_.Show({.text = warning, .icon = MessageIcon::Exclamation});
    }
  }

  WindowSystem& system_;
  Options options_;
  FileLog log_{StateFolder()};
  HostOnlyPaths hostOnly_;
  WxDialogs dialogs_{hostOnly_};
  WxClipboard clipboard_;
  HandlerGuard guard_{log_, dialogs_};
  std::unique_ptr<OfflinePlatform> platform_;
  std::unique_ptr<ProgramWindows> windows_;
  std::unique_ptr<StartWindow> start_;
};

int Run(const std::vector<std::string>& arguments) {
  auto parsed = ParseOptions(arguments);
  if (const auto* fault = std::get_if<CommandFault>(&parsed)) {
    std::fprintf(stderr, "quillbox: %s\n%s", fault->reason.c_str(), kUsage);
    return 2;
  }
  auto& options = std::get<Options>(parsed);
  switch (options.end) {
    case OptionsEnd::Help:
      std::fputs(kUsage, stdout);
      return 0;
    case OptionsEnd::Version:
      std::puts("quillbox " QUILLBOX_VERSION);
      return 0;
    case OptionsEnd::Run:
      break;
  }
  std::unique_ptr<Application> application;
  RunWindows([&](WindowSystem& system) {
    application = std::make_unique<Application>(system, std::move(options));
    application->Start();
  });
  return 0;
}

}  // namespace
}  // namespace quillbox

int main(int argc, char** argv) {
  try {
    return quillbox::Run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quillbox: %s\n", error.what());
    return 1;
  }
}
