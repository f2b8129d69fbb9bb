// SPDX-License-Identifier: GPL-3.0-or-later
// A hive on a disk of the test's own, and the small services that the offline platform asks for.
#pragma once

#include "support/matchers.h"

#include <filesystem>
#include <string>
#include <vector>

#include "platform/hosted/hosted_files.h"
#include "platform/offline/drive_map.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/offline_registry.h"
#include "platform/offline/system_services.h"
#include "platform/platform.h"
#include "support/damaged_hive.h"
#include "support/temp_folder.h"
#include "support/test_log.h"

namespace quillbox {

inline constexpr FileTime kTestTime = 126'000'000'000'000'000;  // 2000

struct FixedClock : Clock {
  std::uint64_t Now() override { return now; }
  std::uint64_t now = kTestTime;
};

inline Bytes AsBytes(std::string_view text) {
  return {text.begin(), text.end()};
}

/// Writes `hive` as a file, its folders included.
inline std::filesystem::path WriteHiveFile(const std::filesystem::path& file, Hive& hive) {
  std::filesystem::create_directories(file.parent_path());
  WriteBytes(file, hive.Image(kTestTime));
  return file;
}

/// Makes a hive file whose root has a value "v".
inline std::filesystem::path MakeHiveFile(const std::filesystem::path& file, std::string_view value = "old") {
  Hive hive = Hive::Create("root", kTestTime);
  hive.SetValue(hive.Root(), "v", 3, AsBytes(value));
  return WriteHiveFile(file, hive);
}

/// That value's text.
inline std::string RootValue(const HiveFile& file) {
  const Bytes data = file.View().Value(file.View().Root(), "v").value().data;
  return {data.begin(), data.end()};
}
inline void SetRootValue(HiveFile& file, std::string_view value) {
  file.Edit().SetValue(file.View().Root(), "v", 3, AsBytes(value));
}

struct OfflineFixture {
  TempFolder disk;
  TestLog log;
  FixedClock clock;
  OfflineDrives drives{DriveMap(disk.Path())};
  HostedFiles files{drives};
  OfflineRegistry registry{clock, files, log};

  HiveFile Open(std::string_view hive, HiveMode mode = HiveMode::Write) {
    return {HostPlace::Anywhere(disk / hive), mode, disk / "state", log};
  }
  HiveFile NewHive(std::string_view hive) {
    MakeHiveFile(disk / hive);
    return Open(hive);
  }
};

/// A disk with two drives.
struct TwoDrives {
  TempFolder temp;
  std::filesystem::path c = temp.Folder("c");
  std::filesystem::path d = temp.Folder("d");
  OfflineDrives drives{DriveMap(c, {{'D', d}})};
  HostedFiles files{drives};
};

}  // namespace quillbox
