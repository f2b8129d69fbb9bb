// SPDX-License-Identifier: GPL-3.0-or-later
// What a registry file says, written by this system or by another program.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "registry/hive_tools.h"
#include "registry/reg_file.h"

namespace quillbox {

class RegFileRecorder : public RegFileVisitor {
 public:
  void OnKey(std::string_view fullName, std::size_t line) override {
    key_ = fullName;
    Add(line, "+ " + key_);
    if (key_.ends_with("\\")) key_.pop_back();  // other programs end a root's name so
    contents_.push_back(key_);
  }
  void OnDeleteKey(std::string_view fullName, std::size_t line) override { Add(line, "- " + std::string(fullName)); }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t line) override {
    contents_.push_back(ValueLine(key_, {std::string(name), type, Bytes(data.begin(), data.end())}));
    std::string text = std::string(name) + " " + std::to_string(type);
    if (type == 1 || type == 2 || type == 7) {
      std::u16string units = Utf16FromBytes(data);
      std::replace(units.begin(), units.end(), u'\0', u'|');
      text += " " + ToUtf8(units);
    } else {
      for (const std::uint8_t byte : data) text += " " + std::to_string(byte);
    }
    Add(line, std::move(text));
  }
  void OnDeleteValue(std::string_view name, std::size_t line) override { Add(line, "delete " + std::string(name)); }
  void OnProblem(std::size_t line, std::string_view reason) override {
    Add(line, "! " + std::to_string(line));
    problems.push_back(std::to_string(line) + " " + std::string(reason));
  }

  /// Keys and values in the form of Lines(), sorted; what must not be in an export is among them.
  std::vector<std::string> Contents() const {
    std::vector<std::string> sorted = contents_;
    sorted.insert(sorted.end(), problems.begin(), problems.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }

  std::vector<std::string> said;   ///< `+ key`, `- key`, `name type data`, `delete name`, `! line`
  std::vector<std::size_t> lines;  ///< where each of them is
  std::vector<std::string> problems;

 private:
  void Add(std::size_t line, std::string text) {
    said.push_back(std::move(text));
    lines.push_back(line);
  }

  std::string key_;
  std::vector<std::string> contents_;
};

/// What an export holds.
inline std::vector<std::string> ContentsOf(std::string_view file) {
  RegFileRecorder recorder;
  ReadRegFile(file, "export", CodePage(), recorder);
  return recorder.Contents();
}

}  // namespace quillbox
