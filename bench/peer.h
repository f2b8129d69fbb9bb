// SPDX-License-Identifier: GPL-3.0-or-later
// What the benchmarks share: running another program, taking times in turns, and printing them beside each other.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "timing.h"

namespace quillbox {

/// The program that Run() waits for; 0 for none.
inline std::atomic<pid_t> runningPeer = 0;

/// Runs a program to its end in the plain locale, which is the quickest, with its output in `output`. Throws when it
/// fails.
inline void Run(std::vector<std::string> words, const std::filesystem::path& output = "/dev/null") {
  setenv("LC_ALL", "C", 1);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  pid_t child = 0;
  int status = 1;
  if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0) {
    runningPeer = child;
    waitpid(child, &status, 0);
    runningPeer = 0;
  }
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) throw std::runtime_error(words[0] + " failed");
}

/// Set once a signal ends the program.
inline std::atomic<bool> isEnding = false;

/// Removes what a benchmark made; while a signal ends the program, whoever it ends has nothing more to do here.
inline void RemoveFolder(const std::filesystem::path& folder) {
  while (isEnding) pause();
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

/// From now on a signal that ends the program removes `folder` first.
inline void RemoveWhenEnded(const std::filesystem::path& folder) {
  sigset_t ends;
  sigemptyset(&ends);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, signal);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
  std::thread([folder, ends] {
    int signal = 0;
    sigwait(&ends, &signal);
    isEnding = true;
    if (const pid_t peer = runningPeer; peer != 0) kill(peer, SIGKILL);
    // The other thread goes on until it misses the folder.
    for (int quiet = 0; quiet < 5; ++quiet) {
      std::error_code failure;
      for (; std::filesystem::exists(folder, failure); quiet = 0) std::filesystem::remove_all(folder, failure);
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    std::_Exit(128 + signal);
  }).detach();
}

struct Measured {
  std::vector<double> ours;    ///< milliseconds, one each round
  std::vector<double> theirs;  ///< empty where nothing is compared
};

/// Both works in turns, so that what else the machine does falls on both.
inline Measured Alternate(int rounds, const std::function<void()>& ours, const std::function<void()>& theirs) {
  Measured measured;
  for (int round = 0; round < rounds; ++round) {
    measured.ours.push_back(Milliseconds(ours));
    measured.theirs.push_back(Milliseconds(theirs));
  }
  return measured;
}

/// The median of several times with its range: "512 ms (500 to 530)".
inline std::string TimesText(const std::vector<double>& times) {
  const auto [least, most] = std::minmax_element(times.begin(), times.end());
  char text[100];
  std::snprintf(text, sizeof text, "%.0f ms (%.0f to %.0f)", Median(times), *least, *most);
  return text;
}

/// A row of the table that tools/bench.sh makes: what was done, its time, the peer, its time, and how many times as
/// long ours took.
inline void PrintRow(const std::string& what, const Measured& measured, const std::string& peer = {}) {
  std::printf("| %s | %s |", what.c_str(), TimesText(measured.ours).c_str());
  if (measured.theirs.empty()) {
    std::printf(" | | |\n");
  } else {
    std::printf(" %s | %s | %.2f |\n", peer.c_str(), TimesText(measured.theirs).c_str(),
                Median(measured.ours) / Median(measured.theirs));
  }
  std::fflush(stdout);
}

/// The main function of a benchmark: NAME [FOLDER [ROUNDS]]. `measure` gets an empty folder of its own in FOLDER, which
/// is removed in the end.
inline int RunBench(const char* name, int argc, char** argv, int rounds,
                    const std::function<void(const std::filesystem::path& folder, int rounds)>& measure) {
  namespace fs = std::filesystem;
  const fs::path folder =
      (argc > 1 ? fs::absolute(argv[1]) : fs::temp_directory_path()) / ("quillbox-" + std::string(name));
  int result = 0;
  RemoveWhenEnded(folder);
  try {
    fs::create_directories(folder);
    measure(folder, argc > 2 ? std::max(1, std::atoi(argv[2])) : rounds);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name, error.what());
    result = 1;
  }
  RemoveFolder(folder);
  return result;
}

}  // namespace quillbox
