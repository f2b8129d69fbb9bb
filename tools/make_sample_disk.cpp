// SPDX-License-Identifier: GPL-3.0-or-later
// make_sample_disk [--windows98] FOLDER: makes a Windows disk to try the program on.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "host/host_path.h"
#include "host/host_program.h"
#include "sample/sample_disk.h"

namespace {

void PrintDrive(const std::filesystem::path& drive, char letter) {
  std::size_t files = 0;
  std::uintmax_t bytes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(drive)) {
    if (!entry.is_regular_file()) continue;
    ++files;
    bytes += entry.file_size();
  }
  std::printf("%c:\\  %s  (%zu files, %ju KB)\n", letter, quillbox::HostPath(drive).Text().c_str(), files,
              bytes / 1024);
}

int Make(const std::string& folder, quillbox::SampleKind kind) {
  const quillbox::SampleDisk disk =
      quillbox::MakeSampleDisk(quillbox::NativePath(quillbox::HostPath(folder)), {.kind = kind});
  PrintDrive(disk.driveC, 'C');
  PrintDrive(disk.driveD, 'D');
  std::printf("profile: %s\n", disk.profile.c_str());
  return 0;
}

}  // namespace

int main(int count, char** texts) {
  const quillbox::Utf8Output output;
  std::vector<std::string> arguments = quillbox::ProgramArguments(count, texts);
  const bool isWindows98 = !arguments.empty() && arguments.front() == "--windows98";
  if (isWindows98) arguments.erase(arguments.begin());
  if (arguments.size() != 1 || arguments[0].starts_with('-') || arguments[0].empty()) {
    std::fputs(
        "usage: make_sample_disk [--windows98] FOLDER\n"
        "  FOLDER must not exist or be empty; the drives C and D are made in it, with Windows XP or 98.\n",
        stderr);
    return 2;
  }
  try {
    return Make(arguments[0], isWindows98 ? quillbox::SampleKind::Windows98 : quillbox::SampleKind::Xp);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_sample_disk: %s\n", error.what());
    return 1;
  }
}
