// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a golden text: plain lines of words, "quoted texts" and `texts with "quotes"`, "#" before a comment. An
// indented line says more about the last one that is not indented.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillbox {

struct GoldenLine {
  std::string file;
  int number = 0;
  std::vector<std::string> words;
  std::vector<GoldenLine> facts;  ///< the indented lines below it

  /// Empty beyond the last word.
  std::string operator[](std::size_t index) const { return index < words.size() ? words[index] : ""; }
  /// The first fact of that kind, or one without words.
  GoldenLine Fact(const std::string& kind) const {
    for (const GoldenLine& fact : facts) {
      if (fact[0] == kind) return fact;
    }
    return {};
  }
  std::string Place() const { return file + ":" + std::to_string(number) + ": " + (*this)[0] + " " + (*this)[1]; }
};

inline std::vector<std::string> GoldenWords(const std::string& line) {
  std::vector<std::string> words;
  for (std::size_t at = 0; (at = line.find_first_not_of(' ', at)) != std::string::npos && line[at] != '#';) {
    const bool quoted = line[at] == '"' || line[at] == '`';
    const std::size_t start = at + (quoted ? 1 : 0);
    at = std::min(line.find(quoted ? line[at] : ' ', start), line.size());
    words.push_back(line.substr(start, at - start));
    if (quoted) ++at;
  }
  return words;
}

/// `name` is the file's below tests/.
inline std::vector<std::string> GoldenTexts(const std::string& name) {
  std::ifstream in(std::filesystem::path(QUILLBOX_TESTS_DIR) / name);
  EXPECT_TRUE(in.is_open()) << name;
  std::vector<std::string> lines;
  for (std::string text; std::getline(in, text);) lines.push_back(std::move(text));
  return lines;
}

inline std::vector<GoldenLine> ReadGolden(const std::string& name) {
  std::vector<GoldenLine> lines;
  int number = 0;
  for (const std::string& text : GoldenTexts(name)) {
    GoldenLine line{name, ++number, GoldenWords(text), {}};
    if (line.words.empty()) continue;
    (text.front() == ' ' ? lines.back().facts : lines).push_back(std::move(line));
  }
  return lines;
}

/// Whether `text` is `pattern`, in which "{}" is for any text.
inline bool FitsGolden(std::string_view text, std::string_view pattern) {
  const std::size_t gap = std::min(pattern.find("{}"), pattern.size());
  if (gap == pattern.size()) return text == pattern;
  if (!text.starts_with(pattern.substr(0, gap))) return false;
  for (std::size_t at = gap; at <= text.size(); ++at) {
    if (FitsGolden(text.substr(at), pattern.substr(gap + 2))) return true;
  }
  return false;
}

/// Requires a line of the golden text for each of `texts`; a line break is "\\n" there.
inline void ExpectInGolden(const std::set<std::string>& texts, const std::string& name) {
  const std::vector<std::string> lines = GoldenTexts(name);
  for (std::string text : texts) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, "\\n");
    EXPECT_TRUE(
        std::any_of(lines.begin(), lines.end(), [&](const std::string& line) { return FitsGolden(text, line); }))
        << name << " does not have: " << text;
  }
}

}  // namespace quillbox
