// SPDX-License-Identifier: GPL-3.0-or-later
// The registry editor's command line. It has two forms: the single text with which a Windows program starts the
// platform's editor, quirks included, and the arguments of a user at a terminal.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "registry/reg_file.h"
#include "text/command_options.h"
#include "text/registry_path.h"
#include "text/win_path.h"

namespace quillbox {

enum class RegeditAction { Merge, Export };

struct RegeditCommand {
  RegeditAction action = RegeditAction::Merge;
  bool silent = false;
  RegFileForm form = RegFileForm::Unicode5;  ///< of an export
  std::string file;                          ///< as given
  bool isHostFile = false;                   ///< `file` is a path of the host, not of the Windows disk
  RegistryPath key;                          ///< of an export
};

/// The disk that the editor works on. Folders are host paths.
struct RegeditDisk {
  std::string folder;
  std::string profile;                 ///< empty: the disk has only one
  std::map<char, std::string> drives;  ///< further drives by upper-case letter
  std::vector<std::intptr_t> locks;  ///< open things of the host that hold the disk's locks, inherited from the program
  WinPath directory;                 ///< current directory; empty: the platform's choice
  std::string stateFolder;           ///< where the program keeps private copies; empty: the user's own
  bool salvage = false;              ///< open damaged hives, and those whose logs cannot be used, without a question
};

struct RegeditRequest {
  RegeditCommand command;
  RegeditDisk disk;
  std::optional<CommandFault> fault;  ///< when set, the rest means nothing
};

/// Takes apart a Windows command line, the program's name first:
///
///     regedit [/s] /e:A FILE KEY     export in the 8-bit form
///     regedit [/s] /e FILE KEY       export in the editor's native form, the Unicode one
///     regedit [/s] [/c] FILE         merge
///
/// A quote is closed by the next quote or by the end of the line, and a backslash before it means nothing; without
/// quotes the last text (an export's key, a merge's file) runs to the end of the line.
RegeditRequest ParseCommandLine(std::string_view line);

/// Takes apart the arguments of the host's command line (without the program's name). A file is a host path unless it
/// begins with a drive and a backslash; what begins with a slash and is not a switch is a file.
RegeditRequest ParseArguments(const std::vector<std::string>& arguments);

/// Shown after a wrong command.
extern const std::string_view kRegeditUsage;

}  // namespace quillbox
