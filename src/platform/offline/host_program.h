// Starts programs of the host: the registry editor, which is waited for, and what opens a folder or a page, which is
// not.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace quillbox {

struct HostProgram {
  std::string program;  ///< a path, or a name that is looked for in PATH
  std::vector<std::string> arguments;
  bool ownSession = false;          ///< it is to outlive this program and its terminal
  int standardError = -1;           ///< what it writes there goes to this descriptor, and it reads nothing
  std::vector<int> passedFds = {};  ///< stay open in it under their own numbers
};

/// Throws std::system_error when it cannot be started.
pid_t StartProgram(HostProgram program);

/// Waits for a program's end. Its exit code, or 128 and the signal's number when a signal ended it; -1 when it is not
/// known.
int WaitForEnd(pid_t process);

/// The same without waiting: nothing while the program runs. An end is reported once.
std::optional<int> EndOf(pid_t process);

}  // namespace quillbox
