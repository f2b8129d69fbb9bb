// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/terminal.h"

#include <windows.h>

namespace quillbox {
namespace {

bool IsConsole(DWORD stream) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

}  // namespace

bool IsInputTerminal() {
  return IsConsole(STD_INPUT_HANDLE);
}

bool IsErrorTerminal() {
  return IsConsole(STD_ERROR_HANDLE);
}

}  // namespace quillbox
