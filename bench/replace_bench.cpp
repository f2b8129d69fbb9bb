// SPDX-License-Identifier: GPL-3.0-or-later
// Compares the replacement of a {USER_ID} with `sed s/OLD/NEW/g` on the same registry file of 200 MB, in turns. Prints
// the times' medians, their ratio and the memory that this program took.
//
//   replace_bench [FOLDER]    FOLDER is where the files are made; a folder for temporary files without it
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "identities/replace_user_id.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/system_services.h"
#include "timing.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileSize = std::size_t{200} * 1000 * 1000;
constexpr int kRounds = 11;
constexpr const char* kOld = "{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}";
constexpr const char* kNew = "{C65A0B97-2E18-4D03-B7F4-90AC61D85E3C}";

/// An identity's export: keys that name it, each with numbers, texts and bytes in several lines.
void MakeFile(const fs::path& file) {
  std::ofstream out(file, std::ios::binary);
  out << "REGEDIT4\r\n";
  for (int number = 0; out.tellp() < static_cast<std::streamoff>(kFileSize); ++number) {
    out << "\r\n[HKEY_CURRENT_USER\\Identities\\" << kOld
        << "\\Software\\Microsoft\\Outlook Express\\5.0\\Rules\\Mail\\" << number << "]\r\n";
    for (int value = 0; value < 8; ++value) {
      out << "\"Value " << value << "\"=dword:000000ff\r\n\"Name " << value << "\"=\"Some folder or other\"\r\n";
    }
    out << "\"Version\"=hex:";
    for (int line = 0; line < 20; ++line) {
      for (int byte = 0; byte < 25; ++byte) out << "8f,";
      out << "\\\r\n  ";
    }
    out << "00\r\n";
  }
  if (!out.flush()) throw std::runtime_error("the file could not be made: " + file.string());
}

void Replace(const fs::path& folder) {
  quillbox::OfflineDrives drives(quillbox::DriveMap{folder});
  quillbox::HostedFiles files(drives);
  quillbox::RegistryFacts facts;
  quillbox::ReplaceUserId(files, facts, {quillbox::WinPath("C:\\in.reg"), quillbox::WinPath("C:\\ours.reg"), kNew});
}

/// Runs sed in the plain locale, which is its quickest.
void Sed(const fs::path& folder) {
  std::string command = std::string("s/") + kOld + "/" + kNew + "/g";
  std::string input = folder / "in.reg";
  const std::string output = folder / "sed.reg";
  char program[] = "sed";
  char* arguments[] = {program, command.data(), input.data(), nullptr};
  char locale[] = "LC_ALL=C";
  char* environment[] = {locale, nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  pid_t child = 0;
  int status = 1;
  if (posix_spawnp(&child, program, &actions, nullptr, arguments, environment) == 0) waitpid(child, &status, 0);
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) throw std::runtime_error("sed failed");
}

void Measure(const fs::path& folder) {
  MakeFile(folder / "in.reg");
  Replace(folder);
  Sed(folder);
  if (std::system(("cmp '" + (folder / "ours.reg").string() + "' '" + (folder / "sed.reg").string() + "'").c_str()) !=
      0) {
    throw std::runtime_error("the two files differ");
  }
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int round = 0; round < kRounds; ++round) {
    ours.push_back(quillbox::Milliseconds([&] { Replace(folder); }));
    theirs.push_back(quillbox::Milliseconds([&] { Sed(folder); }));
  }
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%zu MB: replacement %.0f ms, sed %.0f ms: %.2f times; memory of the whole program %ld MB\n",
              kFileSize / 1000 / 1000, quillbox::Median(ours), quillbox::Median(theirs),
              quillbox::Median(ours) / quillbox::Median(theirs), usage.ru_maxrss / 1024);
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path folder = (argc > 1 ? fs::path(argv[1]) : fs::temp_directory_path()) / "quillbox-replace-bench";
  int result = 0;
  try {
    fs::create_directories(folder);
    Measure(folder);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "replace_bench: %s\n", error.what());
    result = 1;
  }
  fs::remove_all(folder);
  return result;
}
