// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/offline_platform.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <system_error>
#include <utility>

#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/offline/stand_in.h"
#include "text/code_page.h"
#include "text/command_options.h"
#include "text/error.h"

namespace quillbox {

namespace {

constexpr const char* kSoftware = "SOFTWARE";
constexpr const char* kSystem = "SYSTEM";
constexpr const char* kSalvageOption = "--salvage";
constexpr const char* kDriveOption = "--drive";
const RegistryPath kCodePages = {RegistryRoot::LocalMachine, "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage"};

const std::map<char, HostPath>& Checked(const std::map<char, HostPath>& drives) {
  for (const auto& [letter, folder] : drives) {
    const std::string drive = {letter, ':'};
    if (const auto fault = DriveLetterFault(letter)) throw Error("adding a drive", {drive, {}, {}}, fault->reason);
    if (!IsFolder(folder)) throw Error("adding the drive " + drive, {folder.Text(), {}, {}}, "there is no such folder");
  }
  return drives;
}

/// The machine's hive that can be changed; null when there is none.
const HostPlace* MachinePlace(const WindowsDisk& disk, const ProfileFolder& profile) {
  const std::optional<FoundHive>& hive = profile.oldWindows ? profile.oldWindows->system : disk.softwareHive;
  return hive ? hive->PlaceIfAny() : nullptr;
}

std::optional<DiskLock> LockDisk(const WindowsDisk& disk, const ProfileFolder& profile, const OfflineOptions& options,
                                 Log& log) {
  if (options.readOnly) return std::nullopt;
  std::vector<HostPath> folders = {profile.hive.Place().Folder().Path()};
  if (const HostPlace* machine = MachinePlace(disk, profile)) folders.push_back(machine->Folder().Path());
  return DiskLock(folders, options.locks, log);
}

std::string DriveArgument(char letter, const HostPath& folder) {
  return std::string(1, letter) + "=" + Absolute(folder).Text();
}

RegistryEditor EditorFor(const WindowsDisk& disk, const ProfileFolder& profile, const OfflineOptions& options,
                         const std::optional<DiskLock>& lock) {
  RegistryEditor editor;
  editor.program = options.registryEditor.Empty() ? RegistryEditorOf(ProgramFolder()) : options.registryEditor;
  editor.diskArguments = {"--disk", disk.folder.Text(), "--profile", profile.name};
  const auto add = [&](const char* option, std::string value) {
    editor.diskArguments.insert(editor.diskArguments.end(), {option, std::move(value)});
  };
  for (const auto& [letter, folder] : options.drives) add(kDriveOption, DriveArgument(letter, folder));
  if (!options.stateFolder.Empty()) add("--state-folder", Absolute(options.stateFolder).Text());
  if (lock) editor.locks = lock->Numbers();
  return editor;
}

}  // namespace

OfflinePlatform::OfflinePlatform(const OfflineOptions& options, Dialogs& dialogs, Clipboard* clipboard)
    : stateFolder_(options.stateFolder.Empty() ? StateFolder() : options.stateFolder),
      salvage_(options.salvage),
      log_(stateFolder_, options.logEcho),
      dialogs_(dialogs),
      clipboard_(clipboard),
      disk_(FindDisk(options)),
      profile_(FindProfile(options)),
      oldFacts_(profile_.oldWindows ? ReadFacts(*profile_.oldWindows) : OldWindowsFacts()),
      lock_(LockDisk(disk_, profile_, options, log_)),
      drives_(DriveMap(disk_.folder, options.drives)),
      missingDrives_(dialogs, drives_),
      files_(drives_),
      registry_(clock_, files_, log_),
      chosenFolders_(stateFolder_, {disk_.folder, profile_.name}, drives_, registry_),
      shell_(files_, facts_, dialogs_, log_),
      processes_(registry_, drives_, log_, EditorFor(disk_, profile_, options, lock_)) {
  AskForMissingDrives(options);
  MountHives(options.readOnly ? HiveMode::Read : HiveMode::Write, options.registry);
  const WinPath& windows = profile_.oldWindows ? profile_.oldWindows->folder.path : disk_.windowsPath;
  const EnvironmentPlaces places = {windows, profile_.winFolder, profile_.name, IsOldWindows()};
  facts_ = RegistryFacts(ReadEnvironment(registry_, places), FindCodePage());

  const WinPath& directory = options.currentDirectory;
  if (directory.Empty()) return;
  if (directory.Drive() != 0) drives_.SetCurrentDrive(directory.Drive());
  if (drives_.SetCurrentDirectory(directory) != Status::Success) {
    throw Error("changing the current directory", {directory.Text(), {}, {}}, "there is no such folder");
  }
}

WindowsDisk OfflinePlatform::FindDisk(const OfflineOptions& options) const {
  const auto find = options.registry == RegistryUse::StandIn ? FindDiskToSearch : FindWindowsDisk;
  return find(options.folder, Checked(options.drives));
}

ProfileFolder OfflinePlatform::FindProfile(const OfflineOptions& options) {
  if (options.registry == RegistryUse::StandIn) return MakeStandIn(disk_, stateFolder_, clock_.Now());
  return ChooseProfile(disk_, options.profile);
}

OfflinePlatform::~OfflinePlatform() {
  // A command that failed halfway must not be half written.
  if (std::uncaught_exceptions() > 0) return;
  try {
    registry_.Commit();
  } catch (const std::exception& failure) {
    log_.Write(std::string("the last changes of the registry were not written: ") + failure.what());
  }
}

void OfflinePlatform::AskForMissingDrives(const OfflineOptions& options) {
  drives_.askForFolder = [this](const WinPath& path) { return missingDrives_.FolderFor(path); };
  missingDrives_.onNamed = [this, named = options.driveNamed](char letter, const HostPath& folder) {
    processes_.PassOn(kDriveOption);
    processes_.PassOn(DriveArgument(letter, folder));
    if (named) named(letter, folder);
  };
}

HiveConsent OfflinePlatform::ConsentFor(const HostPlace& hive, std::string registry, std::string copies) {
  return
      [this, name = hive.Path().Text(), registry = std::move(registry), copies = std::move(copies)](const Hive& found) {
        if (salvage_ == Salvage::AgreedBefore) return true;
        if (salvage_ == Salvage::Ask) {
          const MessageAnswer answer = dialogs_.Show({.text = ConsentQuestion(found, registry, copies),
                                                      .buttons = MessageButtons::YesNo,
                                                      .icon = MessageIcon::Exclamation});
          if (answer != MessageAnswer::Yes) return false;
        }
        LogWhatIsMissing(found, name, log_);
        return true;
      };
}

void OfflinePlatform::FinishInterrupted() {
  const HostPlace* machine = MachinePlace(disk_, profile_);
  if (machine == nullptr) return;
  std::vector<HivePlaces> profiles;
  for (const ProfileFolder& profile : disk_.profiles) {
    if (profile.oldWindows.has_value() != IsOldWindows()) continue;
    if (const HostPlace* hive = profile.hive.PlaceIfAny()) profiles.push_back(PlacesOf(*hive, stateFolder_));
  }
  warnings_ = FinishInterruptedCommit(PlacesOf(*machine, stateFolder_), profiles, log_);
}

void OfflinePlatform::MountHives(HiveMode mode, RegistryUse use) {
  if (mode == HiveMode::Write) FinishInterrupted();
  const bool hasUnfinished = !warnings_.empty();
  MountUserHive(mode);
  if (use == RegistryUse::StandIn) return;
  if (profile_.oldWindows) {
    MountOldMachine(*profile_.oldWindows, mode);
  } else {
    MountMachineHive({disk_.softwareHive, kSoftware, kSoftware}, mode);
    MountMachineHive({disk_.systemHive, kSystem, kSystem}, HiveMode::Read);
  }
  LeaveDamagedDiskAlone();
  const bool salvaged =
      std::any_of(hives_.begin(), hives_.end(), [](const auto& hive) { return hive->NeededConsent(); });
  if (salvaged) processes_.PassOn(kSalvageOption);
  if (hasUnfinished) return;
  for (const auto& hive : hives_) hive->RemoveLeftovers();
}

std::size_t OfflinePlatform::DamagedPlaces() const {
  return std::accumulate(hives_.begin(), hives_.end(), std::size_t{0},
                         [](std::size_t sum, const auto& hive) { return sum + hive->DamagedPlaces(); });
}

void OfflinePlatform::LeaveDamagedDiskAlone() {
  if (DamagedPlaces() == 0) return;
  for (const auto& hive : hives_) hive->LeaveDiskAlone();
  drives_.LeaveDiskAlone();
}

void OfflinePlatform::MountUserHive(HiveMode mode) {
  const HostPlace& file = profile_.hive.Place();
  const bool isShared = IsOldWindows() && profile_.name == OldWindows::kSharedProfile;
  std::optional<OldRegistryFile> old;
  if (IsOldWindows()) old = OldRegistryFile{oldFacts_.codePage, CopiesOf(profile_)};
  const std::string copies = old ? old->copies : std::string();
  hives_.push_back(std::make_unique<HiveFile>(
      file, mode, stateFolder_, log_,
      ConsentFor(file, "The registry of " + (isShared ? "this Windows (USER.DAT)" : profile_.name), copies),
      std::move(old)));
  registry_.Mount({RegistryRoot::CurrentUser, ""}, *hives_.back(), PersonKeyOf(profile_, hives_.back()->View()));
}

void OfflinePlatform::MountMachineHive(const MachineHive& hive, HiveMode mode) {
  const RegistryPath at = {RegistryRoot::LocalMachine, hive.key};
  const std::string copies = hive.old ? hive.old->copies : std::string();
  std::string fault = "the disk has no file for it" + (copies.empty() ? "" : "; " + copies);
  if (hive.file) {
    try {
      const HostPlace& place = hive.file->Place();
      const std::string question = std::string("The registry of this Windows (") + hive.shown + ")";
      hives_.push_back(
          std::make_unique<HiveFile>(place, mode, stateFolder_, log_, ConsentFor(place, question, copies), hive.old));
      registry_.Mount(at, *hives_.back());
      return;
    } catch (const HiveRefused&) {
      throw;
    } catch (const Error& error) {
      fault = Describe(error);
    }
  }
  registry_.NoteMissing(at, fault);
  warnings_.push_back(FullName(at) + " is not there: " + fault + ".");
  log_.Write(warnings_.back());
}

void OfflinePlatform::MountOldMachine(const OldWindows& windows, HiveMode mode) {
  const auto formOf = [&](const char* name) {
    return OldRegistryFile{oldFacts_.codePage, EarlierCopies(windows, windows.folder, name)};
  };
  // Windows Me has the classes in a file of their own, which is shown ahead of what is around it.
  if (windows.classes) {
    MountMachineHive({windows.classes, "Software\\CLASSES", "CLASSES.DAT", formOf("CLASSES.DAT")}, HiveMode::Read);
  }
  MountMachineHive({windows.system, "", "SYSTEM.DAT", formOf("SYSTEM.DAT")}, mode);
}

unsigned OfflinePlatform::FindCodePage() {
  const std::string text = ReadText(registry_, kCodePages, "ACP").value_or("");
  unsigned number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  if (number == 0) return CodePage::kDefault;
  try {
    return CodePage(number).Number();
  } catch (const Error& error) {
    warnings_.push_back("The disk's code page cannot be used: " + Describe(error) + ".");
    log_.Write(warnings_.back());
    return CodePage::kDefault;
  }
}

void OfflinePlatform::EndCommand() {
  shell_.EndCommand();
  files_.EndCommand();
  missingDrives_.EndCommand();
  registry_.Commit();
}

bool OfflinePlatform::UsesPrivateCopy() const {
  return std::any_of(hives_.begin(), hives_.end(), [](const auto& hive) { return hive->IsPrivateCopy(); });
}

std::string OfflinePlatform::SystemDescription() {
  std::string text = disk_.folder.Text() + ", " + PersonInWords(profile_.name);
  if (const std::size_t places = DamagedPlaces(); places > 0) {
    text += " (" + DamagedIn(places) + ": what cannot be read is left out; " + WhereChangesGo() + ")";
  } else if (IsOldWindows() && UsesPrivateCopy()) {
    text += " (" + OldRegistrySentence() + ")";
  } else if (UsesPrivateCopy()) {
    text += " (write-protected: " + PrivateCopies({RegistryRoot::CurrentUser, RegistryRoot::LocalMachine}) +
            "; registry " + WhereChangesGo() + ")";
  }
  return text;
}

std::string OfflinePlatform::WriteProtection(std::initializer_list<RegistryRoot> roots) {
  const std::string names = PrivateCopies(roots);
  if (!names.empty() && IsOldWindows()) return OldRegistrySentence() + ".";
  return names.empty() ? std::string() : "Write-protected: " + names + "; " + WhereChangesGo() + ".";
}

/// Why the registry of an old Windows does not change, and what becomes of changes.
std::string OfflinePlatform::OldRegistrySentence() const {
  std::string name = oldFacts_.name;
  name[0] = AsciiUpper(name[0]);
  const bool isKept = !StateFolderFault(stateFolder_);
  return name + "'s registry is read only here; " + WhereChangesGo() +
         (isKept ? ", and can be merged on that Windows from the .reg files" : "");
}

/// Of a disk that is not written.
std::string OfflinePlatform::WhereChangesGo() const {
  const std::optional<std::string> fault = StateFolderFault(stateFolder_);
  return fault ? "changes cannot be saved, since " + *fault : "changes go to a private copy";
}

std::string OfflinePlatform::PrivateCopies(std::initializer_list<RegistryRoot> roots) const {
  std::string names;
  for (const auto& hive : hives_) {
    const auto root = hive == hives_.front() ? RegistryRoot::CurrentUser : RegistryRoot::LocalMachine;
    if (!hive->IsPrivateCopy() || std::find(roots.begin(), roots.end(), root) == roots.end()) continue;
    names += (names.empty() ? "" : " and ") + hive->DiskFile().Path().Name();
  }
  return names;
}

}  // namespace quillbox
