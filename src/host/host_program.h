// SPDX-License-Identifier: GPL-3.0-or-later
// Starts programs of the host: the registry editor, which is waited for, and what opens a folder or a page, which is
// not.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/host_handle.h"
#include "host/host_path.h"

namespace quillbox {

struct HostProgram {
  std::string program;  ///< a path, or a name that is looked for where the system looks for programs
  std::vector<std::string> arguments;
  std::vector<HandleNumber> passed = {};  ///< open things that stay open in it under their own numbers
};

struct ProgramEnd {
  int exitCode = 0;    ///< 128 and the signal's number when a signal ended it; -1 when it is not known
  std::string errors;  ///< the beginning of what it wrote to standard error
};
/// Runs a program to its end; it reads nothing. Throws std::system_error when it cannot be started.
ProgramEnd RunToEnd(const HostProgram& program);

/// A program that was started, and outlives this one and its terminal.
class StartedProgram {
 public:
  virtual ~StartedProgram() = default;
  /// Its exit code once it has ended, as in ProgramEnd; nothing while it runs.
  virtual std::optional<int> ExitCode() = 0;
};

/// What opens folders and pages for the user, where a program does that.
extern const char* const kSystemOpener;
/// Has `opener`, or the system itself where that is empty, open a folder or a page. Throws std::system_error.
std::unique_ptr<StartedProgram> OpenForUser(const std::string& opener, const std::string& folderOrPage);

/// The arguments of this program without its name, as inner text. `count` and `arguments` are main's.
std::vector<std::string> ProgramArguments(int count, char** arguments);

/// While it lives, a console takes what this program prints for UTF-8, as every terminal does on other hosts. A program
/// with windows, which has no console, prints to that of the program that started it.
class Utf8Output {
 public:
  Utf8Output();
  ~Utf8Output();  // NOLINT(performance-trivially-destructible): not on every host
  Utf8Output(const Utf8Output&) = delete;
  Utf8Output& operator=(const Utf8Output&) = delete;

 private:
  [[maybe_unused]] bool borrowed_ = false;  ///< the console is that of the program that started this one
  [[maybe_unused]] unsigned before_ = 0;    ///< of the console, where there are several such ways
};

}  // namespace quillbox
