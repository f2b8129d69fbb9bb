// SPDX-License-Identifier: GPL-3.0-or-later
// Compares the file search with `find ROOT -iname PATTERN` on the same tree of 300,000 files, in turns.
//
//   search_bench [FOLDER [ROUNDS]]    FOLDER is where the tree is made; a folder for temporary files without it
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "backup/file_search.h"
#include "peer.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"

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

void Measure(const fs::path& folder, int rounds) {
  const fs::path root = folder / "tree";
  MakeTree(root);
  std::size_t found = 0;
  const auto search = [&] { found = Search(root); };
  const auto find = [&] { quillbox::Run({"find", root.string(), "-iname", kPattern}); };
  search();  // Both begin with the tree in the host's memory.
  if (found != kFiles / kOneInThisManyIsFound) throw std::runtime_error("the search found too little");
  quillbox::PrintRow("Search a disk of 300,000 files for `*.dbx`", quillbox::Alternate(rounds, search, find),
                     "`find ROOT -iname '*.dbx'`");
}

}  // namespace

int main(int argc, char** argv) {
  return quillbox::RunBench("search_bench", argc, argv, kRounds, Measure);
}
