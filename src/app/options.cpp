#include "app/options.h"

#include <fstream>

#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kLastDiskFile = "last-disk";

std::filesystem::path Absolute(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal();
}

std::optional<CommandFault> AddDrive(Options& options, const std::string& value) {
  const auto parsed = ParseDriveOption(value);
  if (const auto* fault = std::get_if<CommandFault>(&parsed)) return *fault;
  const auto& drive = std::get<DriveOption>(parsed);
  options.disk.drives[drive.letter] = Absolute(drive.folder);
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

std::optional<CommandFault> SetProfile(Options& options, const std::string& value) {
  options.disk.profile = value;
  return std::nullopt;
}

constexpr CommandOption<Options> kOptions[] = {
    {"--profile", true, SetProfile},      {"--drive", true, AddDrive},
    {"--choose", false, Choose},          {"--help", false, End<OptionsEnd::Help>},
    {"-h", false, End<OptionsEnd::Help>}, {"--version", false, End<OptionsEnd::Version>},
};

}  // namespace

std::variant<Options, CommandFault> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t at = 0; at < arguments.size() && options.end == OptionsEnd::Run; ++at) {
    const std::string& argument = arguments[at];
    if (argument.starts_with("-")) {
      if (auto fault = ApplyOption(kOptions, options, arguments, at)) return *std::move(fault);
    } else if (!options.disk.folder.empty()) {
      return CommandFault{"one folder is drive C:; \"" + argument + "\" is a second one"};
    } else {
      options.disk.folder = Absolute(argument);
    }
  }
  return options;
}

DiskChoice LoadLastDisk(const std::filesystem::path& stateFolder) {
  DiskChoice disk;
  std::ifstream file(stateFolder / kLastDiskFile);
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string name = line.substr(0, equals);
    const std::string value = line.substr(equals + 1);
    if (name == "folder") disk.folder = value;
    if (name == "profile") disk.profile = value;
    if (name == "drive") {
      const auto drive = ParseDriveOption(value);
      if (const auto* known = std::get_if<DriveOption>(&drive)) disk.drives.emplace(known->letter, known->folder);
    }
  }
  return disk;
}

void SaveLastDisk(const std::filesystem::path& stateFolder, const DiskChoice& disk) {
  std::ofstream file(stateFolder / kLastDiskFile);
  file << "folder=" << disk.folder.string() << "\nprofile=" << disk.profile << '\n';
  for (const auto& [letter, folder] : disk.drives) file << "drive=" << letter << '=' << folder.string() << '\n';
  if (!file.flush()) {
    throw Error("remembering the disk", {(stateFolder / kLastDiskFile).string(), {}, {}}, "it could not be written");
  }
}

}  // namespace quillbox
