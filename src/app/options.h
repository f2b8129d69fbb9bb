// SPDX-License-Identifier: GPL-3.0-or-later
// The command line of the program.
#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "host/host_path.h"
#include "text/command_options.h"

namespace quillbox {

/// Which disk and profile to open.
struct DiskChoice {
  HostPath folder;                  ///< C:\ on the host; empty: none named
  std::string profile;              ///< empty: the only one
  std::map<char, HostPath> drives;  ///< further drives by upper-case letter

  bool operator==(const DiskChoice&) const = default;
};

enum class OptionsEnd { Run, Help, Version };

struct Options {
  OptionsEnd end = OptionsEnd::Run;
  bool choose = false;        ///< show the disk in the start window instead of opening it
  bool thisComputer = false;  ///< open the Windows that the program runs on
  DiskChoice disk;
};

inline constexpr const char* kUsage =
    "usage: quillbox [FOLDER] [--profile NAME] [--drive D=FOLDER]...\n"
    "       quillbox --this-computer\n"
    "\n"
    "Opens FOLDER as drive C: of a Windows that isn't running. Without FOLDER it shows the\n"
    "disks that it had open last, and asks; on a Windows with Outlook Express it opens that.\n"
    "\n"
    "  --profile NAME     whose registry to open, where the disk holds several people's\n"
    "  --drive D=FOLDER   a further drive of that Windows\n"
    "  --choose           shows FOLDER in the start window instead of opening it\n"
    "  --this-computer    opens the Windows that Quillbox runs on\n"
    "  --help, --version\n";

/// `arguments` without the program's name. Host paths are made absolute.
std::variant<Options, CommandFault> ParseOptions(const std::vector<std::string>& arguments);

}  // namespace quillbox
