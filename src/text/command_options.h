// SPDX-License-Identifier: GPL-3.0-or-later
// The options of our programs' command lines, as tables: "--profile NAME" sets something, "--choose" switches something
// on. What an option means is its program's business; how it is found and what is said about a wrong one is here.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillbox {

/// What is wrong with a command line, as a clause without a final full stop.
struct CommandFault {
  std::string reason;
  bool operator==(const CommandFault&) const = default;
};

template <class Target>
struct CommandOption {
  std::string_view name;
  bool needsValue;
  /// Applies the option; `value` is empty for one that needs none.
  std::optional<CommandFault> (*apply)(Target& target, const std::string& value);
};

/// Applies the option at arguments[at] and leaves `at` on the last argument that it took.
template <class Target, std::size_t count>
std::optional<CommandFault> ApplyOption(const CommandOption<Target> (&options)[count], Target& target,
                                        const std::vector<std::string>& arguments, std::size_t& at) {
  const std::string& name = arguments[at];
  const auto* option =
      std::find_if(std::begin(options), std::end(options), [&](const auto& known) { return known.name == name; });
  if (option == std::end(options)) return CommandFault{"there is no option \"" + name + "\""};
  if (!option->needsValue) return option->apply(target, {});
  if (at + 1 == arguments.size()) return CommandFault{name + " needs a value"};
  return option->apply(target, arguments[++at]);
}

/// A further drive of the disk: its letter in upper case and its folder on the host.
struct DriveOption {
  char letter;
  std::string folder;
};

/// Why a further drive of the disk cannot have this letter (in upper case): C: is the disk's own folder, and Z: the
/// root of the computer that the program runs on. Nothing for A to Y without C.
std::optional<CommandFault> DriveLetterFault(char letter);

/// The value of --drive, "D=FOLDER".
std::variant<DriveOption, CommandFault> ParseDriveOption(std::string_view text);

}  // namespace quillbox
