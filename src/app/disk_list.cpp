// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/disk_list.h"

#include <charconv>
#include <string>
#include <string_view>
#include <variant>

#include "host/state_folder.h"
#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {
namespace {

// One disk after the other, each from its "folder=" to the next one. A file of the first version holds one disk,
// without a time.
constexpr const char* kFile = "last-disk";
constexpr std::size_t kMaxDisks = 20;
constexpr const char* kDoing = "remembering the disk";

void ReadLine(std::string_view name, const std::string& value, std::vector<KnownDisk>& disks) {
  if (name == "folder") disks.push_back({.disk = {.folder = HostPath(value), .profile = {}, .drives = {}}});
  if (disks.empty()) return;
  KnownDisk& known = disks.back();
  if (name == "profile") known.disk.profile = value;
  if (name == "opened") std::from_chars(value.data(), value.data() + value.size(), known.opened);
  if (name == "drive") {
    const auto drive = ParseDriveOption(value);
    if (const auto* option = std::get_if<DriveOption>(&drive))
      known.disk.drives.emplace(option->letter, HostPath(option->folder));
  }
}

std::string Lines(const KnownDisk& known) {
  const DiskChoice& disk = known.disk;
  std::string lines = "folder=" + StateLine(disk.folder.Text()) + "\nprofile=" + StateLine(disk.profile) +
                      "\nopened=" + std::to_string(known.opened) + "\n";
  for (const auto& [letter, folder] : disk.drives) {
    lines += std::string("drive=") + letter + "=" + StateLine(folder.Text()) + "\n";
  }
  return lines;
}

}  // namespace

std::vector<KnownDisk> LoadDisks(const HostPath& stateFolder) {
  std::vector<KnownDisk> disks;
  for (const std::string& line : ReadStateFile(stateFolder / kFile)) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    ReadLine(std::string_view(line).substr(0, equals), FromStateLine(std::string_view(line).substr(equals + 1)), disks);
  }
  std::erase_if(disks, [](const KnownDisk& known) { return known.disk.folder.Empty(); });
  return disks;
}

void RememberDisk(const HostPath& stateFolder, const KnownDisk& disk) {
  std::string text = Lines(disk);
  std::size_t count = 1;
  for (const KnownDisk& other : LoadDisks(stateFolder)) {
    if (other.disk.folder == disk.disk.folder && other.disk.profile == disk.disk.profile) continue;
    if (++count <= kMaxDisks) text += Lines(other);
  }
  if (const auto fault = StateFolderFault(stateFolder)) throw Error(kDoing, {stateFolder.Text(), {}, {}}, *fault);
  const HostPlace file = HostPlace::Anywhere(stateFolder / kFile);
  ReplaceHostFile(file, ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), kDoing, file);
}

}  // namespace quillbox
