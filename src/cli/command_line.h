// SPDX-License-Identifier: GPL-3.0-or-later
// The command line as a function over given streams, so that tests call it without a process.
#pragma once

#include <string>
#include <vector>

#include "cli/console.h"

namespace quillbox {

/// Runs a command line, without the program's name. Faults are reported on the console, never thrown.
CliExit RunCommandLine(const std::vector<std::string>& arguments, Console& console);

}  // namespace quillbox
