// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console.h"

#include <istream>
#include <ostream>
#include <utility>

#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kName = "quillbox-cli: ";
constexpr const char* kClearLine = "\r\x1B[K";

}  // namespace

void Console::Result(const std::string& line) {
  EndProgress();
  out << SeveralLines(line) << '\n';
}

void Console::Note(const std::string& line) {
  EndProgress();
  err << kName << SeveralLines(line) << '\n';
}

void Console::NotDone(const std::string& line) {
  incomplete = true;
  Note(line);
}

void Console::Progress(const std::string& text) {
  if (!isTerminal) {
    err << OneLine(text) << '\n';
    return;
  }
  progressLine = true;
  err << kClearLine << OneLine(text) << std::flush;
}

void Console::EndProgress() {
  if (std::exchange(progressLine, false)) err << kClearLine;
}

}  // namespace quillbox
