// SPDX-License-Identifier: GPL-3.0-or-later
// A folder of its own for one test, removed with everything in it when the test ends.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace quillbox {

/// A name in UTF-8 as a path and back, whatever the host takes narrow names for.
inline std::filesystem::path PathOf(std::string_view name) {
  return std::u8string(name.begin(), name.end());
}
inline std::string NameOf(const std::filesystem::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

/// The names in a folder, sorted.
inline std::vector<std::string> Names(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(NameOf(entry.path().filename()));
  std::sort(names.begin(), names.end());
  return names;
}

/// The name under which the program sees a file of this computer that is on none of the disk's drives.
inline std::string OnZ(const std::filesystem::path& host) {
  std::string path = "Z:";
  // A host that has drives itself shows them as folders.
  if (host.has_root_name()) path += "\\" + NameOf(host.root_name()).substr(0, 1);
  for (const std::filesystem::path& name : host.relative_path()) path += "\\" + NameOf(name);
  return path;
}

/// What a test makes and reads below one place.
class FilesBelow {
 public:
  virtual ~FilesBelow() = default;
  virtual std::filesystem::path operator/(std::string_view relative) const = 0;

  /// Makes a folder and those above it.
  std::filesystem::path Folder(std::string_view relative) const {
    std::filesystem::create_directories(*this / relative);
    return *this / relative;
  }
  /// Makes or replaces a file, its folders included.
  std::filesystem::path File(std::string_view relative, std::string_view content = {}) const {
    std::filesystem::path file = *this / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
  }
  /// A file's bytes; empty when there is none.
  std::string Read(std::string_view relative) const {
    std::ifstream in(*this / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

class TempFolder : public FilesBelow {
 public:
  TempFolder() {
    std::random_device random;
    do path_ = std::filesystem::temp_directory_path() / ("quillbox-test-" + std::to_string(random()));
    while (!std::filesystem::create_directory(path_));
  }
  ~TempFolder() override {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(std::string_view relative) const override { return path_ / PathOf(relative); }

 private:
  std::filesystem::path path_;
};

}  // namespace quillbox
