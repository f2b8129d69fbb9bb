// SPDX-License-Identifier: GPL-3.0-or-later
// Measures adding and deleting many keys of a hive, and compares opening a large hive for one value with just reading
// its file.
//
//   hive_bench [FOLDER [ROUNDS]]    FOLDER is where the file is made; a folder for temporary files without it
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "peer.h"
#include "registry/hive.h"

namespace {

using namespace quillbox;

constexpr int kKeys = 20000;
constexpr std::size_t kLargeHive = std::size_t{60} * 1024 * 1024;
constexpr int kRounds = 5;

Bytes ReadWhole(const std::filesystem::path& path) {
  Bytes bytes(std::filesystem::file_size(path));
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

/// Names whose order is unrelated to their numbers.
std::string Scattered(int number) {
  return "key " + std::to_string(static_cast<unsigned>(number) * 2654435761U);
}

void AddKeys(Hive& hive, HiveKey parent) {
  const Bytes data(24, 7);
  for (int number = 0; number < kKeys; ++number) {
    hive.SetValue(hive.CreateSubkey(parent, Scattered(number)), "Store Root", 1, data);
  }
}

void DeleteKeys(Hive& hive, HiveKey parent) {
  for (int number = 0; number < kKeys; ++number) hive.DeleteTree(*hive.Find(parent, Scattered(number)));
}

void MeasureChanges(int rounds) {
  Measured adding;
  Measured deleting;
  Measured again;
  Measured values;
  for (int round = 0; round < rounds; ++round) {
    Hive hive = Hive::Create("bench", 1);
    adding.ours.push_back(Milliseconds([&] { AddKeys(hive, hive.Root()); }));
    deleting.ours.push_back(Milliseconds([&] { DeleteKeys(hive, hive.Root()); }));
    again.ours.push_back(Milliseconds([&] { AddKeys(hive, hive.Root()); }));
    const HiveKey key = hive.CreateSubkey(hive.Root(), "values");
    values.ours.push_back(Milliseconds([&] {
      for (int number = 0; number < kKeys; ++number) hive.SetValue(key, Scattered(number), 4, Bytes(4));
    }));
  }
  PrintRow("Add 20,000 keys with a value each to a hive", adding);
  PrintRow("Delete them one by one", deleting);
  PrintRow("Add them again into the freed space", again);
  PrintRow("Add 20,000 values to one key", values);
}

Bytes LargeHive(std::size_t dataSize) {
  Hive hive = Hive::Create("large", 1);
  const Bytes data(dataSize, 1);
  for (int folder = 0;; ++folder) {
    const HiveKey parent = hive.CreatePath(hive.Root(), "Software\\folder " + std::to_string(folder));
    for (int number = 0; number < 5000; ++number) {
      const HiveKey key = hive.CreateSubkey(parent, Scattered(number));
      hive.SetValue(key, "Store Root", 1, data);
      hive.SetValue(key, "Running", 4, Bytes(4));
    }
    Bytes image = hive.Image(2);
    if (image.size() >= kLargeHive) return image;
  }
}

void MeasureOpening(const std::filesystem::path& folder, int rounds, std::size_t dataSize) {
  const std::filesystem::path path = folder / "hive";
  const Bytes image = LargeHive(dataSize);
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
  const auto opening = [&] {
    const Hive hive = Hive::Load(ReadWhole(path), "large");
    if (!hive.Value(*hive.Find(hive.Root(), "Software\\folder 0\\" + Scattered(77)), "Running")) std::abort();
  };
  PrintRow("Open a hive of " + std::to_string(image.size() / 1'000'000) + " MB, values of " + std::to_string(dataSize) +
               " bytes, check it and read one",
           Alternate(rounds, opening, [&] { ReadWhole(path); }), "reading the file");
}

void Measure(const std::filesystem::path& folder, int rounds) {
  MeasureChanges(rounds);
  for (const std::size_t size : {std::size_t{24}, std::size_t{400}, std::size_t{12000}}) {
    MeasureOpening(folder, rounds, size);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return RunBench("hive_bench", argc, argv, kRounds, Measure);
}
