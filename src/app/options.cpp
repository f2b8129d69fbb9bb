// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/options.h"

#include "app/this_computer.h"
#include "host/host_paths.h"

namespace quillbox {
namespace {

std::optional<CommandFault> AddDrive(Options& options, const std::string& value) {
  const auto parsed = ParseDriveOption(value);
  if (const auto* fault = std::get_if<CommandFault>(&parsed)) return *fault;
  const auto& drive = std::get<DriveOption>(parsed);
  options.disk.drives[drive.letter] = Absolute(HostPath(drive.folder));
  return std::nullopt;
}

template <OptionsEnd end>
std::optional<CommandFault> End(Options& options, const std::string& /*value*/) {
  options.end = end;
  return std::nullopt;
}

std::optional<CommandFault> Choose(Options& options, const std::string& /*value*/) {
  options.choose = true;
  return std::nullopt;
}

std::optional<CommandFault> OpenHere(Options& options, const std::string& /*value*/) {
  if (!IsWindowsHere()) return CommandFault{"this computer does not run Windows"};
  options.thisComputer = true;
  return std::nullopt;
}

std::optional<CommandFault> SetProfile(Options& options, const std::string& value) {
  options.disk.profile = value;
  return std::nullopt;
}

constexpr CommandOption<Options> kOptions[] = {
    {"--profile", true, SetProfile},
    {"--drive", true, AddDrive},
    {"--choose", false, Choose},
    {"--this-computer", false, OpenHere},
    {"--help", false, End<OptionsEnd::Help>},
    {"-h", false, End<OptionsEnd::Help>},
    {"--version", false, End<OptionsEnd::Version>},
};

}  // namespace

std::variant<Options, CommandFault> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t at = 0; at < arguments.size() && options.end == OptionsEnd::Run; ++at) {
    const std::string& argument = arguments[at];
    if (argument.starts_with("-")) {
      if (auto fault = ApplyOption(kOptions, options, arguments, at)) return *std::move(fault);
    } else if (!options.disk.folder.Empty()) {
      return CommandFault{"one folder is drive C:; \"" + argument + "\" is a second one"};
    } else {
      options.disk.folder = Absolute(HostPath(argument));
    }
  }
  if (options.thisComputer && !options.disk.folder.Empty()) {
    return CommandFault{"either a folder or this computer can be opened"};
  }
  return options;
}

}  // namespace quillbox
