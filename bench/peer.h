// SPDX-License-Identifier: GPL-3.0-or-later
// What the benchmarks that compare with another program share: running it, and printing times beside each other.
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
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "timing.h"

namespace quillbox {

/// The program that Run() waits for; 0 for none.
inline std::atomic<pid_t> runningPeer = 0;

/// Runs a program to its end without its output. Throws when it fails.
inline void Run(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
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

/// "NAME 512 ms (500 to 530), "
inline void PrintTimes(const char* name, const std::vector<double>& times) {
  const auto [least, most] = std::minmax_element(times.begin(), times.end());
  std::printf("%s %.0f ms (%.0f to %.0f), ", name, Median(times), *least, *most);
}

}  // namespace quillbox
