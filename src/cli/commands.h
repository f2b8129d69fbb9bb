// SPDX-License-Identifier: GPL-3.0-or-later
// The commands of the command line: what each was given, and the function that carries it out. A new command is a file
// with its function, and a row of the table in command_line.cpp.
#pragma once

#include <string>
#include <vector>

#include "cli/console.h"
#include "cli/work_place.h"

namespace quillbox {

/// What was given; each command reads its own options.
struct CommandArguments {
  DiskOptions disk;
  std::string to;      ///< --to; of restore --from, and of check the backup
  std::string format;  ///< of mail: "mbox", "eml", "maildir"
  bool overwrite = false;
  bool json = false;
  bool complete = false;
  bool recover = false;
  bool html = false;
  bool rules = false;
};

// Each throws Error for what ends it before its work began.
CliExit RunList(Console& console, const CommandArguments& arguments);
CliExit RunBackup(Console& console, const CommandArguments& arguments);
CliExit RunRestore(Console& console, const CommandArguments& arguments);
CliExit RunMail(Console& console, const CommandArguments& arguments);
CliExit RunContacts(Console& console, const CommandArguments& arguments);
CliExit RunReport(Console& console, const CommandArguments& arguments);
CliExit RunCheck(Console& console, const CommandArguments& arguments);

}  // namespace quillbox
