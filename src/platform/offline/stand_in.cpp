// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/stand_in.h"

#include <string>
#include <system_error>

#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/hosted/host_open.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {

namespace {

constexpr const char* kDoing = "making a registry in place of the disk's";

HostPath FolderFor(const HostPath& disk, const HostPath& stateFolder) {
  HostPath folder = stateFolder / "stand-ins" / HashName(disk.Text());
  if (!StateFolderFault(folder)) return folder;
  return WithName(kDoing, "a temporary folder", [] { return MakeNewFolder(TemporaryFolder(), "quillbox-"); });
}

}  // namespace

WindowsDisk FindDiskToSearch(const HostPath& folder, const std::map<char, HostPath>& drives) {
  WindowsDisk disk;
  try {
    disk = FindWindowsDisk(folder, drives);
  } catch (const Error&) {
    if (!IsFolder(folder)) throw;
    disk.folder = RealPathOf(folder).path;
    disk.windowsPath = WinPath("C:\\WINDOWS");
  }
  disk.softwareHive.reset();
  disk.systemHive.reset();
  return disk;
}

ProfileFolder MakeStandIn(const WindowsDisk& disk, const HostPath& stateFolder, FileTime now) {
  const HostPlace file = HostPlace::Anywhere(FolderFor(disk.folder, stateFolder) / "NTUSER.DAT");
  if (!InfoOf(file)) {
    Hive hive = Hive::Create("stand-in", now);
    hive.CreateSubkey(hive.Root(), "Identities");
    ReplaceHostFile(file, hive.Image(now), kDoing, file);
  }
  return {"", FoundHive(file.Path(), file), WinPath("C:\\")};
}

}  // namespace quillbox
