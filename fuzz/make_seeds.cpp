// SPDX-License-Identifier: GPL-3.0-or-later
// make_fuzz_seeds FOLDER: writes the seeds of each harness to FOLDER/HARNESS.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "all_harnesses.h"

namespace {

namespace fs = std::filesystem;

void Write(const fs::path& folder, const quillbox::Seed& seed) {
  std::ofstream file(folder / seed.name, std::ios::binary);
  for (const std::uint8_t byte : seed.bytes) file.put(static_cast<char>(byte));
  if (!file.flush()) throw fs::filesystem_error("writing a seed", folder / seed.name, std::error_code());
}

void WriteAll(const fs::path& to) {
  for (const quillbox::Harness* harness : quillbox::kAllHarnesses) {
    const fs::path folder = to / harness->name;
    fs::create_directories(folder);
    for (const quillbox::Seed& seed : harness->seeds()) Write(folder, seed);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: make_fuzz_seeds FOLDER\n", stderr);
    return 2;
  }
  try {
    WriteAll(arguments[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_fuzz_seeds: %s\n", error.what());
    return 1;
  }
}
