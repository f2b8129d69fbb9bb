// SPDX-License-Identifier: GPL-3.0-or-later
// The registry editor as a program: opens a disk, carries out one command on it, and ends.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "app/console_dialogs.h"
#include "host/host_paths.h"
#include "host/host_program.h"
#include "platform/offline/offline_platform.h"
#include "regedit/run.h"

namespace quillbox {
namespace {

// The program that starts the editor hands it the disk's lock, and has asked the person itself.
Salvage SalvageOf(const RegeditDisk& disk) {
  if (!disk.salvage) return Salvage::Ask;
  return disk.locks.empty() ? Salvage::Agreed : Salvage::AgreedBefore;
}

// An export leaves the registry alone, so it also works while another program has the disk.
OfflineOptions DiskOptions(const RegeditRequest& request) {
  OfflineOptions options;
  options.folder = HostPath(request.disk.folder);
  options.profile = request.disk.profile;
  for (const auto& [letter, folder] : request.disk.drives) options.drives.emplace(letter, folder);
  options.locks = request.disk.locks;
  options.currentDirectory = request.disk.directory;
  options.stateFolder = HostPath(request.disk.stateFolder);
  options.readOnly = request.command.action == RegeditAction::Export;
  options.salvage = SalvageOf(request.disk);
  return options;
}

RegeditExit Run(const std::vector<std::string>& arguments) {
  RegeditRequest request = ParseArguments(arguments);
  if (request.fault) {
    std::cerr << "regedit: " << request.fault->reason << '\n' << kRegeditUsage;
    return RegeditExit::WrongCommand;
  }
  ConsoleDialogs dialogs;
  OfflinePlatform platform(DiskOptions(request), dialogs);
  // The editor of an old Windows knows the 8-bit form only.
  if (platform.IsOldWindows()) request.command.form = RegFileForm::Regedit4;
  const std::string& given = request.command.file;
  const WinPath file =
      request.command.isHostFile ? platform.GetDrives().WindowsPathOf(Absolute(HostPath(given))) : WinPath(given);
  return RunRegedit(platform, request.command, file, std::cout, std::cerr);
}

}  // namespace
}  // namespace quillbox

int main(int argc, char** argv) {
  const quillbox::Utf8Output output;
  try {
    return static_cast<int>(quillbox::Run(quillbox::ProgramArguments(argc, argv)));
  } catch (const quillbox::HiveRefused& error) {
    std::cerr << "regedit: " << error.what()
              << "\nregedit: nothing was done; with --salvage it is opened all the same\n";
    return static_cast<int>(quillbox::RegeditExit::Failed);
  } catch (const std::exception& error) {
    std::cerr << "regedit: " << error.what() << '\n';
    return static_cast<int>(quillbox::RegeditExit::Failed);
  }
}
