// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/drives.h"

#include <algorithm>

namespace quillbox {
namespace {

constexpr char kFirstDrive = 'B';
constexpr char kLastDrive = 'Z';
constexpr const char* kFixed = "Fixed Drive";
constexpr const char* kCdRom = "CD-ROM";
constexpr const char* kNoLabel = "{volume has no label}";

std::vector<std::string> RootsOfType(Drives& drives, const std::string& type) {
  std::vector<std::string> roots;
  for (char letter = kFirstDrive; letter <= kLastDrive; ++letter) {
    std::string root{letter, ':', '\\'};
    if (DriveTypeText(drives, root) == type) roots.push_back(std::move(root));
  }
  return roots;
}

}  // namespace

std::string DriveTypeText(Drives& drives, std::string root) {
  if (root.size() == 1) root += ":\\";
  if (root.size() == 2 && root.ends_with(':')) root += '\\';
  switch (drives.TypeOfDrive(WinPath(root))) {
    case DriveType::Removable:
      return "Removable Drive";
    case DriveType::Fixed:
      return kFixed;
    case DriveType::Remote:
      return "Remote Drive";
    case DriveType::CdRom:
      return kCdRom;
    case DriveType::RamDisk:
      return "RAM Disk";
    case DriveType::Unknown:
    case DriveType::NoRoot:
      break;
  }
  return "Drive Doesn't Exist";
}

DriveList ListDrives(Drives& drives) {
  DriveList list;
  std::string hardDrives;
  for (const std::string& root : RootsOfType(drives, kFixed)) {
    std::string label = drives.VolumeLabel(WinPath(root)).value_or("");
    label.resize(std::min(label.find('\0'), label.size()));
    list.items.push_back(root + (label.empty() ? kNoLabel : label));
    list.roots.emplace_back(root);
    hardDrives += (hardDrives.empty() ? "" : ", ") + root;
  }
  for (const std::string& root : RootsOfType(drives, kCdRom)) {
    list.items.push_back(root + kCdRom);
    list.roots.emplace_back(root);
  }
  if (list.items.size() > 1) list.items.push_back(std::string(kAllDrives) + " (" + hardDrives + ")");
  return list;
}

}  // namespace quillbox
