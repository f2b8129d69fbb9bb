// SPDX-License-Identifier: GPL-3.0-or-later
// Measures adding and deleting many keys of a hive, and opening a large hive for one value compared with just reading
// its file.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "registry/hive.h"

namespace {

using quillbox::Bytes;
using quillbox::Hive;
using quillbox::HiveKey;

constexpr int kKeys = 20000;
constexpr std::size_t kLargeHive = std::size_t{60} * 1024 * 1024;
constexpr int kRounds = 5;

double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Best(const std::function<void()>& work) {
  double best = Milliseconds(work);
  for (int round = 1; round < kRounds; ++round) best = std::min(best, Milliseconds(work));
  return best;
}

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

void MeasureChanges() {
  Hive hive = Hive::Create("bench", 1);
  const double adding = Milliseconds([&] { AddKeys(hive, hive.Root()); });
  const std::size_t size = hive.Image(2).size();
  std::printf("add %d keys with a value each      %8.1f ms (%zu KB)\n", kKeys, adding, size / 1024);
  const double deleting = Milliseconds([&] { DeleteKeys(hive, hive.Root()); });
  std::printf("delete them one by one               %8.1f ms\n", deleting);
  const double again = Milliseconds([&] { AddKeys(hive, hive.Root()); });
  std::printf("add them again into the freed space  %8.1f ms (%zu KB)\n", again, hive.Image(3).size() / 1024);
  const HiveKey values = hive.CreateSubkey(hive.Root(), "values");
  const double many = Milliseconds([&] {
    for (int number = 0; number < kKeys; ++number) hive.SetValue(values, Scattered(number), 4, Bytes(4));
  });
  std::printf("add %d values to one key          %8.1f ms\n", kKeys, many);
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

void MeasureOpening(std::size_t dataSize) {
  const std::filesystem::path path = std::filesystem::temp_directory_path() / "quillbox-bench.hive";
  const Bytes image = LargeHive(dataSize);
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
  const double reading = Best([&] { ReadWhole(path); });
  const double opening = Best([&] {
    const Hive hive = Hive::Load(ReadWhole(path), "large");
    if (!hive.Value(*hive.Find(hive.Root(), "Software\\folder 0\\" + Scattered(77)), "Running")) std::abort();
  });
  std::printf("%zu MB, values of %zu bytes: read the file %.1f ms, open it and read a value %.1f ms: %.2f times\n",
              image.size() >> 20, dataSize, reading, opening, opening / reading);
  std::filesystem::remove(path);
}

}  // namespace

int main() {
  MeasureChanges();
  for (const std::size_t dataSize : {std::size_t{24}, std::size_t{400}, std::size_t{12000}}) MeasureOpening(dataSize);
  return 0;
}
