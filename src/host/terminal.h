// SPDX-License-Identifier: GPL-3.0-or-later
// Whether somebody is there to read what is printed, and to answer.
#pragma once

namespace quillbox {

/// True when the program's standard input is a terminal, or its standard error.
bool IsInputTerminal();
bool IsErrorTerminal();

}  // namespace quillbox
