// SPDX-License-Identifier: GPL-3.0-or-later
// One command of the registry editor, carried out on a platform: what the program does once it has a disk.
#pragma once

#include <iosfwd>

#include "platform/platform.h"
#include "regedit/command_line.h"

namespace quillbox {

/// Exit codes of the registry editor.
enum class RegeditExit { Done = 0, Failed = 1, WrongCommand = 2 };

/// Carries out `command` with `file` as its file; messages name it as the command does. What was done goes to `out`
/// unless the command is silent, what went wrong to `err` in any case. Merged keys are on the disk when it returns; a
/// merge that left lines out has failed. Throws Error, with the disk unchanged, when nothing could be done.
RegeditExit RunRegedit(Platform& platform, const RegeditCommand& command, const WinPath& file, std::ostream& out,
                       std::ostream& err);

}  // namespace quillbox
