// A hive on a disk of the test's own, and the small services that the offline platform asks for.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/offline/drive_map.h"
#include "platform/offline/offline_files.h"
#include "platform/offline/offline_registry.h"
#include "platform/offline/system_services.h"
#include "platform/platform.h"
#include "registry/hive.h"
#include "support/temp_folder.h"

namespace quillbox {

inline constexpr FileTime kTestTime = 126'000'000'000'000'000;  // 2000

struct FixedClock : Clock {
  std::uint64_t Now() override { return now; }
  std::uint64_t now = kTestTime;
};

struct KeptLog : Log {
  void Write(std::string_view line) override { text.append(line).append("\n"); }
  std::string text;
};

inline Bytes AsBytes(std::string_view text) {
  return {text.begin(), text.end()};
}

/// Makes a hive file whose root has a value "v".
inline std::filesystem::path MakeHiveFile(const std::filesystem::path& file, std::string_view value = "old") {
  Hive hive = Hive::Create("root", kTestTime);
  hive.SetValue(hive.Root(), "v", 3, AsBytes(value));
  const Bytes image = hive.Image(kTestTime);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(image.data()), std::ssize(image));
  return file;
}

struct OfflineFixture {
  TempFolder disk;
  KeptLog log;
  FixedClock clock;
  OfflineDrives drives{DriveMap(disk.Path())};
  OfflineFiles files{drives};
  OfflineRegistry registry{clock, files, log};

  HiveFile Open(std::string_view hive, HiveMode mode = HiveMode::Write) {
    return {HostPlace::Anywhere(disk / hive), mode, disk / "state", log};
  }
};

}  // namespace quillbox
