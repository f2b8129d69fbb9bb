// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/volume.h"

#include <sys/stat.h>

#include <charconv>
#include <string_view>
#include <system_error>

namespace quillbox {

namespace fs = std::filesystem;

namespace {

constexpr const char* kLabelFolder = "/dev/disk/by-label";

/// Undoes the "\x20" in which the folder of labels writes characters that are awkward in a file name.
std::string Unescape(std::string_view name) {
  std::string label;
  while (!name.empty()) {
    unsigned char code = 0;
    const bool escaped = name.size() >= 4 && name.starts_with("\\x") &&
                         std::from_chars(name.data() + 2, name.data() + 4, code, 16).ptr == name.data() + 4;
    label.push_back(escaped ? static_cast<char>(code) : name.front());
    name.remove_prefix(escaped ? 4 : 1);
  }
  return label;
}

}  // namespace

std::string LabelOfVolume(const HostPath& folder) {
  struct stat here = {};
  struct stat above = {};
  const fs::path native = NativePath(folder);
  if (stat(native.c_str(), &here) != 0 || stat((native / "..").c_str(), &above) != 0) return {};
  const bool isMount = here.st_dev != above.st_dev || here.st_ino == above.st_ino;
  if (!isMount) return {};

  std::error_code code;
  for (fs::directory_iterator entry(kLabelFolder, code), end; !code && entry != end; entry.increment(code)) {
    struct stat device = {};
    if (stat(entry->path().c_str(), &device) == 0 && device.st_rdev == here.st_dev) {
      return Unescape(entry->path().filename().native());
    }
  }
  return {};
}

}  // namespace quillbox
