// SPDX-License-Identifier: GPL-3.0-or-later
// Which of a program's changes to a folder fails. The plan is a file that the test maps and that fault_preload maps in
// every process of the program, so that the calls of a child process are counted with those of its parent.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>

namespace quillbox {

// How a test names the plan and the folder, with a slash at its end, to the library in the environment.
inline constexpr const char* kFaultPlanVariable = "QUILLBOX_FAULT_PLAN";
inline constexpr const char* kFaultRootVariable = "QUILLBOX_FAULT_ROOT";

/// All zero: every call is counted and none fails.
struct FaultPlan {
  std::atomic<std::uint32_t> calls;   ///< that would have changed something so far
  std::atomic<std::uint32_t> failed;  ///< of them
  std::uint32_t failAt;               ///< the number of the call that fails, from 1; 0 for none
  std::uint32_t andAllAfter;          ///< not 0: the disk stays broken
  std::int32_t code;                  ///< the errno
  std::array<char, 512> firstFailed;  ///< "call path", for messages
};

/// Maps the plan in `file`; null when that fails. `flags`: O_CREAT for a new one.
inline FaultPlan* MapPlan(const char* file, int flags) {
  const int fd = open(file, O_RDWR | O_CLOEXEC | flags, 0600);
  if (fd < 0) return nullptr;
  const bool sized = (flags & O_CREAT) == 0 || ftruncate(fd, sizeof(FaultPlan)) == 0;
  void* mapped = sized ? mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0) : MAP_FAILED;
  close(fd);
  return mapped == MAP_FAILED ? nullptr : static_cast<FaultPlan*>(mapped);
}

}  // namespace quillbox
