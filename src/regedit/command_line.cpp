// SPDX-License-Identifier: GPL-3.0-or-later
#include "regedit/command_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "text/unicode.h"
#include "text/win_path.h"

namespace quillbox {

const std::string_view kRegeditUsage =
    "Usage:\n"
    "  regedit --disk FOLDER [options] /e:A FILE KEY   export KEY as 8-bit text\n"
    "  regedit --disk FOLDER [options] /e FILE KEY     export KEY as Unicode text (of Windows 95,\n"
    "                                                  98 and Me as 8-bit text, as its own editor does)\n"
    "  regedit --disk FOLDER [options] [/c] FILE       merge FILE into the registry\n"
    "Options:\n"
    "  --disk FOLDER       the folder that holds the Windows disk's C:\\\n"
    "  --profile NAME      whose registry, where the disk has several profiles\n"
    "  --drive D=FOLDER    the folder of a further drive (may be repeated)\n"
    "  --salvage           open a damaged registry without its damaged parts (changes go to a private copy), and one\n"
    "                      that was not closed cleanly as it is where its logs cannot be used\n"
    "  /s                  say nothing but what went wrong\n"
    "KEY is a full name such as \"HKEY_CURRENT_USER\\Identities\".\n";

namespace {

constexpr std::string_view kBlanks = " \t";

struct Switch {
  std::string_view text;
  void (*apply)(RegeditCommand& command);
};

void ExportAs(RegeditCommand& command, RegFileForm form) {
  command.action = RegeditAction::Export;
  command.form = form;
}

constexpr std::array<Switch, 4> kSwitches{{
    {"/s", [](RegeditCommand& command) { command.silent = true; }},
    {"/c", [](RegeditCommand& command) { command.action = RegeditAction::Merge; }},
    {"/e", [](RegeditCommand& command) { ExportAs(command, RegFileForm::Unicode5); }},
    {"/e:A", [](RegeditCommand& command) { ExportAs(command, RegFileForm::Regedit4); }},
}};

/// True when `word` is a switch, which is then applied.
bool ApplySwitch(std::string_view word, RegeditCommand& command) {
  const auto* found =
      std::find_if(kSwitches.begin(), kSwitches.end(), [&](const Switch& s) { return EqualIgnoreCase(s.text, word); });
  if (found == kSwitches.end()) return false;
  found->apply(command);
  return true;
}

/// Takes a Windows command line apart, text by text.
class Scanner {
 public:
  explicit Scanner(std::string_view line) : rest_(line) {}

  bool AtEnd() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
    return rest_.empty();
  }
  bool AtSwitch() { return !AtEnd() && rest_.front() == '/'; }
  /// The next text in quotes or up to a blank.
  std::string Word() { return Take(kBlanks); }
  /// The next text in quotes, else everything to the end of the line.
  std::string Last() { return Trim(Take("")); }

 private:
  std::string Take(std::string_view ends) {
    if (AtEnd()) return {};
    const bool quoted = rest_.front() == '"';
    if (quoted) rest_.remove_prefix(1);
    const std::size_t end = std::min(rest_.find_first_of(quoted ? "\"" : ends), rest_.size());
    std::string text(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + (quoted ? 1 : 0), rest_.size()));
    return text;
  }

  std::string_view rest_;
};

/// What a command line gives last; empty where it gives less.
struct Operands {
  std::string file;
  std::string key;
};

/// Checks and fills in what both kinds of command line give last.
void SetOperands(RegeditRequest& request, Operands operands) {
  const std::string& key = operands.key;
  request.command.file = std::move(operands.file);
  if (request.command.file.empty()) {
    request.fault = CommandFault{"no file is named"};
  } else if (request.command.action == RegeditAction::Export) {
    const std::optional<RegistryPath> path = ParseRegistryPath(key);
    if (key.empty()) {
      request.fault = CommandFault{"no key is named"};
    } else if (!path) {
      request.fault = CommandFault{"\"" + key + "\" begins with no root key"};
    } else {
      request.command.key = *path;
    }
  }
}

/// What the host's command line says besides the operands.
struct HandOptions {
  RegeditDisk disk;
  std::optional<std::string> commandLine;  ///< of a Windows program
};

template <std::string RegeditDisk::*field>
std::optional<CommandFault> SetText(HandOptions& options, const std::string& value) {
  options.disk.*field = value;
  return std::nullopt;
}

std::optional<CommandFault> SetDirectory(HandOptions& options, const std::string& value) {
  options.disk.directory = WinPath(value);
  return std::nullopt;
}

std::optional<CommandFault> AddDrive(HandOptions& options, const std::string& value) {
  const auto parsed = ParseDriveOption(value);
  if (const auto* fault = std::get_if<CommandFault>(&parsed)) return *fault;
  const auto& drive = std::get<DriveOption>(parsed);
  options.disk.drives[drive.letter] = drive.folder;
  return std::nullopt;
}

std::optional<CommandFault> AddLock(HandOptions& options, const std::string& value) {
  std::intptr_t number = -1;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size() || number < 0) {
    return CommandFault{"--lock needs a number, not \"" + value + "\""};
  }
  options.disk.locks.push_back(number);
  return std::nullopt;
}

std::optional<CommandFault> SetSalvage(HandOptions& options, const std::string& /*value*/) {
  options.disk.salvage = true;
  return std::nullopt;
}

std::optional<CommandFault> SetCommandLine(HandOptions& options, const std::string& value) {
  options.commandLine = value;
  return std::nullopt;
}

constexpr CommandOption<HandOptions> kOptions[] = {
    {"--disk", true, SetText<&RegeditDisk::folder>},
    {"--profile", true, SetText<&RegeditDisk::profile>},
    {"--state-folder", true, SetText<&RegeditDisk::stateFolder>},
    {"--directory", true, SetDirectory},
    {"--drive", true, AddDrive},
    {"--lock", true, AddLock},
    {"--salvage", false, SetSalvage},
    {"--command-line", true, SetCommandLine},
};

void SetHandOperands(RegeditRequest& request, const std::vector<std::string>& operands) {
  const bool isExport = request.command.action == RegeditAction::Export;
  if (operands.size() > (isExport ? 2U : 1U)) {
    request.fault = CommandFault{"\"" + operands.back() + "\" is one too many"};
    return;
  }
  SetOperands(request, {.file = operands.empty() ? "" : operands[0], .key = operands.size() < 2 ? "" : operands[1]});
  request.command.isHostFile = !WinPath(request.command.file).IsAbsolute();
}

}  // namespace

RegeditRequest ParseCommandLine(std::string_view line) {
  RegeditRequest request;
  Scanner scanner(line);
  scanner.Word();
  while (scanner.AtSwitch()) {
    const std::string word = scanner.Word();
    if (ApplySwitch(word, request.command)) continue;
    request.fault = CommandFault{"there is no switch \"" + word + "\""};
    return request;
  }
  const bool isExport = request.command.action == RegeditAction::Export;
  std::string file = isExport ? scanner.Word() : scanner.Last();
  SetOperands(request, {.file = std::move(file), .key = isExport ? scanner.Last() : ""});
  if (!request.fault && !scanner.AtEnd()) request.fault = CommandFault{"there is more on the line than a command has"};
  return request;
}

RegeditRequest ParseArguments(const std::vector<std::string>& arguments) {
  RegeditRequest request;
  HandOptions options;
  std::vector<std::string> operands;
  for (std::size_t at = 0; at < arguments.size() && !request.fault; ++at) {
    if (arguments[at].starts_with("--")) {
      request.fault = ApplyOption(kOptions, options, arguments, at);
    } else if (!ApplySwitch(arguments[at], request.command)) {
      operands.push_back(arguments[at]);
    }
  }
  request.disk = std::move(options.disk);
  if (request.fault) return request;
  if (!options.commandLine) {
    SetHandOperands(request, operands);
  } else {
    RegeditRequest started = ParseCommandLine(*options.commandLine);
    request.command = std::move(started.command);
    request.fault = operands.empty() ? started.fault : CommandFault{"\"" + operands[0] + "\" is one too many"};
  }
  if (!request.fault && request.disk.folder.empty()) request.fault = CommandFault{"no disk is named"};
  return request;
}

}  // namespace quillbox
