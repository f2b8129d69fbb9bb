// Which of a program's changes to a folder fails. The plan is a file that the test maps and that fault_preload maps in
// every process of the program, so that the calls of a child process are counted with those of its parent.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace quillbox {

// How a test names the plan and the folder to the library, in the environment.
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

}  // namespace quillbox
