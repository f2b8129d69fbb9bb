// SPDX-License-Identifier: GPL-3.0-or-later
// Compares the export of a whole hive by the registry editor with what other programs print of the same hive:
// `hivexml`, `hivexregedit --export` and `reglookup`, in turns. Ours is on the disk at the end, in one step or not at
// all; theirs is only written. All are whole programs, begun anew each time.
//
//   export_bench [FOLDER [ROUNDS]]    FOLDER is where the files are made; a folder for temporary files without it
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "host/host_paths.h"
#include "peer.h"
#include "platform/offline/offline_processes.h"
#include "registry/hive.h"
#include "sample/sample_disk.h"
#include "text/unicode.h"

namespace {

namespace fs = std::filesystem;
using namespace quillbox;

constexpr int kRounds = 11;
/// A Windows XP after some years.
constexpr std::size_t kHiveSize = 12'800'000;

Bytes ReadWhole(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

Bytes Text(const std::string& text) {
  Bytes bytes;
  for (const char c : text + '\0') bytes.insert(bytes.end(), {static_cast<std::uint8_t>(c), 0});
  return bytes;
}

/// A class of a program as the registry of a machine is full of them: short texts, a number, now and then bytes.
void AddClass(Hive& hive, HiveKey parent, int number) {
  const std::string name = std::to_string(number);
  char id[40];
  std::snprintf(id, sizeof id, "{%08X-91D3-4F5A-8C17-6E0D53A9F421}", static_cast<unsigned>(number) * 2654435761U);
  const HiveKey key = hive.CreateSubkey(parent, id);
  hive.SetValue(key, "", 1, Text("Class " + name));
  hive.SetValue(key, "AppID", 1, Text("{C65A0B97-2E18-4D03-B7F4-90AC61D85E3C}"));
  hive.SetValue(key, "Version", 4, Bytes(4, static_cast<std::uint8_t>(number)));
  const HiveKey server = hive.CreateSubkey(key, "InprocServer32");
  hive.SetValue(server, "", 2, Text("%SystemRoot%\\system32\\library" + name + ".dll"));
  hive.SetValue(server, "ThreadingModel", 1, Text("Apartment"));
  if (number % 10 == 0) hive.SetValue(key, "Data", 3, Bytes(300, static_cast<std::uint8_t>(number)));
}

/// Fills the machine's hive of a disk up to its size.
void FillHive(const fs::path& file) {
  Hive hive = Hive::Load(ReadWhole(file), file.string());
  const HiveKey classes = hive.CreatePath(hive.Root(), "Classes\\CLSID");
  Bytes image;
  for (int number = 0; image.size() < kHiveSize; ++number) {
    AddClass(hive, classes, number);
    if (number % 500 == 0) image = hive.Image(2);
  }
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
}

void Measure(const fs::path& folder, int rounds) {
  const SampleDisk disk = MakeSampleDisk(folder / "disk");
  const fs::path hive = disk.driveC / "WINDOWS/system32/config/software";
  FillHive(hive);
  const std::string editor = RegistryEditorOf(ProgramFolder()).Text();
  const std::vector<std::string> ours = {editor,
                                         "--disk",
                                         disk.driveC.string(),
                                         "/s",
                                         "/e",
                                         (folder / "ours.reg").string(),
                                         "HKEY_LOCAL_MACHINE\\SOFTWARE"};
  const std::vector<std::vector<std::string>> peers = {
      {"hivexml", hive.string()}, {"hivexregedit", "--export", hive.string(), "\\"}, {"reglookup", hive.string()}};
  for (const auto& peer : peers) {
    const auto measured = Alternate(
        rounds, [&] { Run(ours); }, [&] { Run(peer, folder / "theirs"); });
    PrintRow("Export a hive of 12.8 MB", measured, peer[0]);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return RunBench("export_bench", argc, argv, kRounds, Measure);
}
