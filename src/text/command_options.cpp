// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/command_options.h"

#include "text/unicode.h"

namespace quillbox {

std::optional<CommandFault> DriveLetterFault(char letter) {
  if (letter == 'C') return CommandFault{"C: is the disk's own folder"};
  if (letter == 'Z') return CommandFault{"Z: is the root folder of this computer"};
  if (letter < 'A' || letter > 'Z') return CommandFault{"a drive is a letter from A to Y other than C"};
  return std::nullopt;
}

std::variant<DriveOption, CommandFault> ParseDriveOption(std::string_view text) {
  if (text.size() < 3 || text[1] != '=') {
    return CommandFault{"--drive needs a letter, \"=\" and a folder (D=FOLDER), not \"" + std::string(text) + "\""};
  }
  const char letter = AsciiUpper(text[0]);
  if (const auto fault = DriveLetterFault(letter)) {
    return CommandFault{"--drive cannot be \"" + std::string(text) + "\": " + fault->reason};
  }
  return DriveOption{letter, std::string(text.substr(2))};
}

}  // namespace quillbox
