#include "platform/offline/stand_in.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "platform/offline/hive_storage.h"
#include "platform/offline/host_open.h"
#include "platform/offline/state_folder.h"
#include "text/error.h"

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDoing = "making a registry in place of the disk's";

fs::path FolderFor(const fs::path& disk, const fs::path& stateFolder) {
  fs::path folder = stateFolder / "stand-ins" / HashName(disk.string());
  if (!StateFolderFault(folder)) return folder;
  std::string temporary = (fs::temp_directory_path() / "quillbox-XXXXXX").string();
  if (mkdtemp(temporary.data()) == nullptr) throw Error(kDoing, {temporary, {}, {}}, SystemReason(errno));
  return temporary;
}

}  // namespace

WindowsDisk FindDiskToSearch(const fs::path& folder, const std::map<char, fs::path>& drives) {
  WindowsDisk disk;
  try {
    disk = FindWindowsDisk(folder, drives);
  } catch (const Error&) {
    std::error_code code;
    if (!fs::is_directory(folder, code)) throw;
    disk.folder = fs::canonical(folder);
    disk.windowsPath = WinPath("C:\\WINDOWS");
  }
  disk.softwareHive.reset();
  disk.systemHive.reset();
  return disk;
}

ProfileFolder MakeStandIn(const WindowsDisk& disk, const fs::path& stateFolder, FileTime now) {
  const HostPlace file = HostPlace::Anywhere(FolderFor(disk.folder, stateFolder) / "NTUSER.DAT");
  if (!StatPlace(file)) {
    Hive hive = Hive::Create("stand-in", now);
    hive.CreateSubkey(hive.Root(), "Identities");
    ReplaceHostFile(file, hive.Image(now), kDoing, file);
  }
  return {"", FoundHive(file.Path(), file), WinPath("C:\\")};
}

}  // namespace quillbox
