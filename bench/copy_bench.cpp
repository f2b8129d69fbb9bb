// SPDX-License-Identifier: GPL-3.0-or-later
// Compares copying 10 files of 100 MB with `cp -a` followed by `sync` of the file system, in turns. Both begin with the
// files out of the host's memory and end when the copies are on the disk.
//
//   copy_bench [FOLDER [ROUNDS]]    FOLDER is where the files are made; a folder for temporary files without it
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "peer.h"
#include "platform/hosted/hosted_files.h"
#include "platform/hosted/hosted_shell.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/system_services.h"

namespace {

namespace fs = std::filesystem;
using namespace quillbox;

constexpr int kFiles = 10;
constexpr std::size_t kFileSize = std::size_t{100} * 1000 * 1000;
constexpr int kRounds = 7;

struct NoProgress : Progress {
  bool Update(const std::string& /*text*/, std::uint64_t /*done*/, std::uint64_t /*total*/) override { return true; }
};

/// Never asks: any failure ends the measurement.
struct NoDialogs : Dialogs {
  MessageAnswer Show(const Message& message) override { throw std::runtime_error(message.text); }
  std::optional<std::string> Input(const std::string& /*prompt*/, const std::string& /*title*/,
                                   const std::string& /*proposed*/) override {
    return std::nullopt;
  }
  std::optional<WinPath> OpenFile(const FileDialog& /*dialog*/) override { return std::nullopt; }
  std::optional<WinPath> SaveFile(const FileDialog& /*dialog*/) override { return std::nullopt; }
  std::optional<WinPath> BrowseForFolder(const FolderDialog& /*dialog*/) override { return std::nullopt; }
  OverwriteAnswer AskOverwrite(const OverwriteQuestion& /*question*/) override { return OverwriteAnswer::Cancel; }
  std::unique_ptr<Progress> ShowProgress(const std::string& /*title*/) override {
    return std::make_unique<NoProgress>();
  }
};

struct NoLog : Log {
  void Write(std::string_view /*text*/) override {}
};

std::string NameOf(int number) {
  return "Folder " + std::to_string(number) + ".dbx";
}

/// Files of random bytes, so that no file system can compress them.
void MakeFiles(const fs::path& folder) {
  fs::create_directories(folder);
  std::mt19937_64 random(1);
  std::vector<std::uint64_t> block(kFileSize / 100 / sizeof(std::uint64_t));
  for (int number = 0; number < kFiles; ++number) {
    std::ofstream out(folder / NameOf(number), std::ios::binary);
    for (int part = 0; part < 100; ++part) {
      std::generate(block.begin(), block.end(), [&] { return random(); });
      out.write(reinterpret_cast<const char*>(block.data()),
                static_cast<std::streamsize>(block.size() * sizeof(std::uint64_t)));
    }
    if (!out.flush()) throw std::runtime_error("the files could not be made in " + folder.string());
  }
}

/// An empty target in `folder`, sources that are not in memory, and a disk with nothing left to write.
void Prepare(const fs::path& folder, std::string_view targetName) {
  const fs::path target = folder / targetName;
  fs::remove_all(target);
  fs::create_directories(target);
  sync();
  for (int number = 0; number < kFiles; ++number) {
    const HostHandle file(open((folder / "in" / NameOf(number)).c_str(), O_RDONLY | O_CLOEXEC));
    posix_fadvise(static_cast<int>(file.Number()), 0, 0, POSIX_FADV_DONTNEED);
  }
}

void CopyOurs(const fs::path& folder) {
  OfflineDrives drives(DriveMap{folder});
  HostedFiles files(drives);
  NoDialogs dialogs;
  NoLog log;
  RegistryFacts facts;
  HostedShell shell(files, facts, dialogs, log);
  for (int number = 0; number < kFiles; ++number) {
    shell.CopyFile({.source = WinPath("C:\\in").Join(NameOf(number)), .target = WinPath("C:\\ours")});
  }
  for (const CopyResult& result : shell.FinishCopies()) {
    if (result.end != CopyEnd::Copied) throw std::runtime_error(result.source.Text() + ": " + result.reason);
  }
}

void CopyTheirs(const fs::path& folder) {
  Run({"cp", "-a", (folder / "in").string() + "/.", (folder / "theirs").string()});
  Run({"sync", "-f", (folder / "theirs").string()});
}

void Measure(const fs::path& folder, int rounds) {
  MakeFiles(folder / "in");
  Measured measured;
  for (int round = 0; round < rounds; ++round) {
    Prepare(folder, "ours");
    measured.ours.push_back(Milliseconds([&] { CopyOurs(folder); }));
    Prepare(folder, "theirs");
    measured.theirs.push_back(Milliseconds([&] { CopyTheirs(folder); }));
    if (round == 0) Run({"diff", "-r", (folder / "ours").string(), (folder / "theirs").string()});
  }
  PrintRow("Copy 10 files of 100 MB, on the disk at the end", measured, "`cp -a` and `sync`");
}

}  // namespace

int main(int argc, char** argv) {
  return RunBench("copy_bench", argc, argv, kRounds, Measure);
}
