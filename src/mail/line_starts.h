// SPDX-License-Identifier: GPL-3.0-or-later
// Finds lines that begin in a certain way in bytes that come piece by piece, whatever the pieces and however long the
// lines: mailbox files quote such lines, and unquote them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillbox {

class LineStarts {
 public:
  struct Rule {
    std::string_view quote;                   ///< may be repeated before the beginning; letters as they are
    std::span<const std::string_view> words;  ///< the beginnings; no one begins with the quote
    bool ignoreCase = false;
    bool headerOnly = false;  ///< only before the first empty line
  };

  class Listener {
   public:
    virtual ~Listener() = default;
    virtual void Text(std::string_view piece) = 0;
    /// A line begins with `quotes` quotes and `word` (as it was written). What follows is Text again, or nothing up to
    /// the end of the line when the answer is false.
    virtual bool Found(std::uint64_t quotes, std::string_view word) = 0;
  };

  LineStarts(const Rule& rule, Listener& listener);

  void Add(std::string_view piece);
  /// What was held back comes out; the next byte begins a line of a new text.
  void End();

 private:
  enum class Place { LineStart, InLine, Skipping };
  enum class Kind { Undecided, Plain, HeaderEnd, Found };
  /// What a line begins with, as far as the bytes at hand say.
  struct Beginning {
    Kind kind = Kind::Undecided;
    std::uint64_t quotes = 0;
    std::string_view word = {};
    std::size_t length = 0;  ///< of the quotes and the word
  };

  Beginning Look(std::string_view line) const;
  bool EndsHeader(char c) const { return rule_.headerOnly && (c == '\r' || c == '\n'); }
  /// Looks at a byte of a beginning that comes in several pieces; false when it belongs to the rest of the line.
  bool TakeByte(char c);
  void Match();
  void Flush();
  static std::size_t ToLineEnd(std::string_view piece);
  std::size_t ToNextCandidate(std::string_view piece) const;
  std::size_t WithoutCandidates(std::string_view piece) const;

  Rule rule_;
  Listener& listener_;
  std::size_t longest_ = 0;  ///< of the words and the quote
  char quoteStart_, wordStart_;
  Place place_ = Place::LineStart;
  bool afterHeader_ = false;
  std::array<bool, 256> mayBegin_ = {};  ///< by the first byte of a line: whether the rule may apply
  std::uint64_t quotes_ = 0;
  std::string pending_;  ///< of the line after its quotes; shorter than the longest word
};

/// Gives `text` to the listener `count` times.
void Repeat(LineStarts::Listener& listener, std::string_view text, std::uint64_t count);

}  // namespace quillbox
