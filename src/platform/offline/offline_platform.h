// SPDX-License-Identifier: GPL-3.0-or-later
// The platform over a Windows disk that isn't running: finds the disk and the person's profile, locks it, opens its
// registry, and puts the pieces of this folder together.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/hosted/hosted_files.h"
#include "platform/hosted/hosted_services.h"
#include "platform/hosted/hosted_shell.h"
#include "platform/hosted/log.h"
#include "platform/offline/disk_lock.h"
#include "platform/offline/folder_memory.h"
#include "platform/offline/hive_file.h"
#include "platform/offline/missing_drives.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/offline_processes.h"
#include "platform/offline/offline_registry.h"
#include "platform/offline/system_services.h"
#include "platform/offline/windows_disk.h"
#include "platform/platform.h"

namespace quillbox {

/// Whether hives are used that are damaged or whose logs cannot be used.
enum class Salvage {
  Ask,           ///< ask the user for each
  Agreed,        ///< the user has asked for it; what is missing is logged
  AgreedBefore,  ///< the program that started this one has asked, and has logged it
};

/// Which registry is worked on.
enum class RegistryUse {
  OfTheDisk,
  StandIn,  ///< an empty one of the program's own: for a disk whose registry cannot be opened
};

struct OfflineOptions {
  HostPath folder;                       ///< the host folder that is C:\ .
  std::string profile = {};              ///< may be empty where there is only one
  std::map<char, HostPath> drives = {};  ///< further drives by upper-case letter
  std::vector<HandleNumber> locks = {};  ///< the disk's lock, from the program that started this one
  WinPath currentDirectory = {};         ///< empty for C:\ .
  HostPath stateFolder = {};             ///< empty for the user's own
  HostPath registryEditor = {};          ///< empty for the one beside the running program
  bool readOnly = false;                 ///< changes nothing, and needs no lock
  Salvage salvage = Salvage::Ask;
  RegistryUse registry = RegistryUse::OfTheDisk;
  LogEcho logEcho = LogEcho::StandardError;
  /// Called when the user has named a drive that the disk's registry asked for.
  std::function<void(char letter, const HostPath& folder)> driveNamed = {};
};

class OfflinePlatform : public Platform {
 public:
  /// Throws Error when the disk, the profile or its hive cannot be opened, when several profiles are there and none is
  /// named, when a drive's folder is not there, and when another program has the disk. A machine hive that cannot be
  /// used is a warning. HiveRefused when the user does not want a hive used that is damaged or whose logs cannot be
  /// used; nothing has been written to the disk until then. `dialogs` and `clipboard` must outlive the platform.
  OfflinePlatform(const OfflineOptions& options, Dialogs& dialogs, Clipboard* clipboard = nullptr);
  ~OfflinePlatform() override;
  OfflinePlatform(const OfflinePlatform&) = delete;
  OfflinePlatform& operator=(const OfflinePlatform&) = delete;

  Registry& GetRegistry() override { return registry_; }
  HostedFiles& GetFiles() override { return files_; }
  OfflineDrives& GetDrives() override { return drives_; }
  SystemFacts& GetSystemFacts() override { return facts_; }
  Shell& GetShell() override { return shell_; }
  Processes& GetProcesses() override { return processes_; }
  Dialogs& GetDialogs() override { return dialogs_; }
  Clock& GetClock() override { return clock_; }
  Guids& GetGuids() override { return guids_; }
  Clipboard& GetClipboard() override { return clipboard_ != nullptr ? *clipboard_ : noClipboard_; }
  Log& GetLog() override { return log_; }
  ChosenFolders& GetChosenFolders() override { return chosenFolders_; }
  void EndCommand() override;
  std::string SystemDescription() override;
  std::string WriteProtection(std::initializer_list<RegistryRoot> roots) override;

  /// The folder's name of the profile that is open.
  const std::string& ProfileName() const { return profile_.name; }
  /// Problems of the disk that did not prevent its opening, a sentence each.
  const std::vector<std::string>& Warnings() const { return warnings_; }
  /// True for Windows 95, 98 and Me.
  bool IsOldWindows() const { return profile_.oldWindows.has_value(); }
  /// True when a hive's changes go to a private copy in the state folder, since the disk cannot or must not be written.
  bool UsesPrivateCopy() const;

 private:
  void AskForMissingDrives(const OfflineOptions& options);
  void FinishInterrupted();
  void MountHives(HiveMode mode, RegistryUse use);
  /// A hive of the machine and where it is shown.
  struct MachineHive {
    const std::optional<FoundHive>& file;
    const char* key;    ///< below HKEY_LOCAL_MACHINE
    const char* shown;  ///< in questions
    std::optional<OldRegistryFile> old = {};
  };
  void MountUserHive(HiveMode mode);
  void MountMachineHive(const MachineHive& hive, HiveMode mode);
  void MountOldMachine(const OldWindows& windows, HiveMode mode);
  HiveConsent ConsentFor(const HostPlace& hive, std::string registry, std::string copies = {});
  std::string OldRegistrySentence() const;
  /// The names of the hives below `roots` whose changes go to a private copy; empty when there are none.
  std::string WhereChangesGo() const;
  std::string PrivateCopies(std::initializer_list<RegistryRoot> roots) const;
  /// With a damaged hive no hive of the disk is written.
  void LeaveDamagedDiskAlone();
  std::size_t DamagedPlaces() const;
  unsigned FindCodePage();

  WindowsDisk FindDisk(const OfflineOptions& options) const;
  ProfileFolder FindProfile(const OfflineOptions& options);

  HostPath stateFolder_;
  Salvage salvage_;
  FileLog log_;
  SystemClock clock_;
  RandomGuids guids_;
  NoClipboard noClipboard_;
  Dialogs& dialogs_;
  Clipboard* clipboard_;
  WindowsDisk disk_;
  ProfileFolder profile_;
  OldWindowsFacts oldFacts_;  ///< of the profile's Windows, if that is an old one
  std::optional<DiskLock> lock_;
  std::vector<std::unique_ptr<HiveFile>> hives_;
  RegistryFacts facts_;
  OfflineDrives drives_;
  MissingDrives missingDrives_;
  HostedFiles files_;
  OfflineRegistry registry_;
  FolderMemory chosenFolders_;
  HostedShell shell_;
  OfflineProcesses processes_;
  std::vector<std::string> warnings_;
};

}  // namespace quillbox
