#include "app/options.h"

#include <cctype>
#include <fstream>

#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kLastDiskFile = "last-disk";

Options Wrong(std::string fault) {
  Options options;
  options.end = OptionsEnd::Wrong;
  options.fault = std::move(fault);
  return options;
}

std::filesystem::path Absolute(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal();
}

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool hasNext = i + 1 < arguments.size();
    if (argument == "--help" || argument == "-h") {
      options.end = OptionsEnd::Help;
      return options;
    }
    if (argument == "--version") {
      options.end = OptionsEnd::Version;
      return options;
    }
    if (argument == "--choose") {
      options.choose = true;
    } else if (argument == "--profile" && hasNext) {
      options.disk.profile = arguments[++i];
    } else if (argument == "--drive" && hasNext) {
      const auto drive = ParseDrive(arguments[++i]);
      if (!drive) return Wrong("--drive takes a letter from A to Y, \"=\" and a folder, not \"" + arguments[i] + "\"");
      options.disk.drives[drive->first] = drive->second;
    } else if (argument.starts_with("-")) {
      return Wrong(hasNext || argument.size() < 3 ? "there is no option \"" + argument + "\""
                                                  : "\"" + argument + "\" is no option, or lacks what it takes");
    } else if (!options.disk.folder.empty()) {
      return Wrong("one folder is drive C:; \"" + argument + "\" is a second one");
    } else {
      options.disk.folder = Absolute(argument);
    }
  }
  return options;
}

std::optional<std::pair<char, std::filesystem::path>> ParseDrive(const std::string& text) {
  if (text.size() < 3 || text[1] != '=') return std::nullopt;
  const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  // C: is the folder itself and Z: the host's own root.
  if (letter < 'A' || letter > 'Y' || letter == 'C') return std::nullopt;
  return std::pair(letter, Absolute(text.substr(2)));
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
      if (const auto drive = ParseDrive(value)) disk.drives.insert(*drive);
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
