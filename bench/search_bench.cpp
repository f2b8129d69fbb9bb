// SPDX-License-Identifier: GPL-3.0-or-later
// Compares the file search with `find ROOT -iname PATTERN` on the same tree of 300,000 files, in turns. Prints the
// times' medians and their ratio.
//
//   search_bench [FOLDER]    FOLDER keeps the tree for further runs; without it the tree is made and removed
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "backup/file_search.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"
#include "timing.h"

namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 300000;
constexpr int kFilesPerFolder = 40;
constexpr int kFoldersPerFolder = 6;
constexpr int kOneInThisManyIsFound = 25;
constexpr int kRounds = 11;
constexpr const char* kPattern = "*.dbx";

/// Makes a tree like a disk's: folders in folders, with some files in each. Folder i is in folder
/// (i - 1) / kFoldersPerFolder.
void MakeTree(const fs::path& root) {
  std::vector<fs::path> folders;
  for (int file = 0; file < kFiles; ++file) {
    if (file % kFilesPerFolder == 0) {
      const auto number = folders.size();
      folders.push_back(number == 0 ? root
                                    : folders[(number - 1) / kFoldersPerFolder] / ("Folder " + std::to_string(number)));
      fs::create_directories(folders.back());
    }
    const char* name = file % kOneInThisManyIsFound == 0 ? "Outlook Folder %d.dbx" : "some other file %d.txt";
    char text[64];
    std::snprintf(text, sizeof text, name, file);
    const int fd = open((folders.back() / text).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
    if (fd < 0) throw std::runtime_error("the tree could not be made in " + root.string());
    close(fd);
  }
}

std::size_t Search(const fs::path& root) {
  quillbox::OfflineDrives drives(quillbox::DriveMap{root});
  quillbox::HostedFiles files(drives);
  quillbox::FoundFiles found;
  quillbox::SearchReport report;
  quillbox::SearchFiles(files, quillbox::WinPath("C:\\"), kPattern, found, report,
                        [](const std::string&, std::size_t) { return true; });
  return found.Count();
}

/// Runs find with its output thrown away, in the plain locale, which is its quickest.
void Find(const fs::path& root) {
  std::string folder = root.string();
  std::string pattern = kPattern;
  char program[] = "find";
  char option[] = "-iname";
  char* arguments[] = {program, folder.data(), option, pattern.data(), nullptr};
  char locale[] = "LC_ALL=C";
  char* environment[] = {locale, nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  int status = 1;
  if (posix_spawnp(&child, program, &actions, nullptr, arguments, environment) == 0) waitpid(child, &status, 0);
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) throw std::runtime_error("find failed");
}

void Measure(const fs::path& root) {
  std::size_t found = Search(root);
  Find(root);
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int round = 0; round < kRounds; ++round) {
    ours.push_back(quillbox::Milliseconds([&] { found = Search(root); }));
    theirs.push_back(quillbox::Milliseconds([&] { Find(root); }));
  }
  std::printf("%zu of %d files found: search %.0f ms, find %.0f ms: %.2f times\n", found, kFiles,
              quillbox::Median(ours), quillbox::Median(theirs), quillbox::Median(ours) / quillbox::Median(theirs));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const bool keep = argc > 1;
    const fs::path root = keep ? fs::path(argv[1]) : fs::temp_directory_path() / "quillbox-search-bench";
    if (!fs::exists(root)) MakeTree(root);
    Measure(root);
    if (!keep) fs::remove_all(root);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "search_bench: %s\n", error.what());
    return 1;
  }
  return 0;
}
