// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/terminal.h"

#include <unistd.h>

namespace quillbox {

bool IsInputTerminal() {
  return isatty(STDIN_FILENO) == 1;
}

bool IsErrorTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

}  // namespace quillbox
