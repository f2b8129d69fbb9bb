// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/command_failures.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace quillbox {
namespace {

constexpr std::size_t kLinesShown = 12;

}  // namespace

void CommandFailures::Add(const std::string& lines) {
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && std::find(lines_.begin(), lines_.end(), line) == lines_.end()) lines_.push_back(line);
  }
  if (depth_ == 0) Show();
}

CommandFailures::Scope::~Scope() {
  if (--failures_.depth_ == 0) failures_.Show();
}

void CommandFailures::Show() {
  const std::vector<std::string> lines = std::exchange(lines_, {});
  if (lines.empty()) return;
  std::string text = "Not everything was done:\n";
  for (std::size_t i = 0; i < std::min(lines.size(), kLinesShown); ++i) text += "\n" + lines[i];
  if (lines.size() > kLinesShown) {
    text += "\n\n" + std::to_string(lines.size() - kLinesShown) + " more such lines are in the log.";
  }
  dialogs_.Show({.text = text, .icon = MessageIcon::Exclamation});
}

}  // namespace quillbox
