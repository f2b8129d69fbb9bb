// What a hive on the disk holds, as another program reads it: an independent witness of what was written.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace quillbox {

/// Values by "KEY|NAME" in lower case, their data as a .reg file has them ("dword:0000002a"). Empty without that
/// program.
using ExportedValues = std::map<std::string, std::string>;

inline std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

inline bool CanExportHives() {
  return std::system("command -v hivexregedit >/dev/null") == 0;
}

/// The values of `key` ("\\Identities") and of all keys below it.
inline ExportedValues ExportHive(const std::filesystem::path& hive, const std::string& key) {
  const std::string out = hive.string() + ".exported";
  const std::string command = "hivexregedit --export '" + hive.string() + "' '" + key + "' >'" + out + "'";
  EXPECT_EQ(std::system(command.c_str()), 0);
  ExportedValues values;
  std::ifstream in(out);
  std::string section;
  for (std::string line; std::getline(in, line);) {
    const std::size_t end = line.find("\"=");
    if (line.starts_with("[")) section = line.substr(1, line.size() - 2);
    if (line.starts_with("\"") && end != std::string::npos) {
      values[LowerCase(section + "|" + line.substr(1, end - 1))] = line.substr(end + 2);
    }
  }
  std::filesystem::remove(out);
  return values;
}

}  // namespace quillbox
