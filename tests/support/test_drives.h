// SPDX-License-Identifier: GPL-3.0-or-later
// Drives of any type without a disk, set by the test.
#pragma once

#include <map>
#include <string>

#include "platform/drives.h"

namespace quillbox {

struct TestDrives : Drives {
  DriveType TypeOfDrive(const WinPath& root) override {
    const auto known = types.find(root.Drive());
    return root.IsAbsolute() && known != types.end() ? known->second : DriveType::NoRoot;
  }
  bool IsOwnDrive(char letter) override { return letter != 'Z' && types.count(letter) > 0; }
  std::optional<std::string> VolumeLabel(const WinPath& root) override {
    const auto label = labels.find(root.Drive());
    return label == labels.end() ? std::nullopt : std::optional(label->second);
  }
  Status SetCurrentDrive(char) override { return Status::Success; }
  Status SetCurrentDirectory(const WinPath&) override { return Status::Success; }
  WinPath CurrentDirectory() override { return WinPath("C:\\Data"); }

  std::map<char, DriveType> types;
  std::map<char, std::string> labels;  ///< a drive without one has no label
};

}  // namespace quillbox
