// SPDX-License-Identifier: GPL-3.0-or-later
// A log that a test can read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace quillbox {

struct TestLog : Log {
  void Write(std::string_view text) override { lines.emplace_back(text); }
  /// All lines, each with a line end.
  std::string Text() const {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }
  std::vector<std::string> lines;
};

}  // namespace quillbox
