// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/line_starts.h"

#include <algorithm>

#include "text/unicode.h"

namespace quillbox {
namespace {

char AsciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool Begins(std::string_view word, std::string_view start, bool ignoreCase) {
  if (start.size() > word.size()) return false;
  return std::equal(start.begin(), start.end(), word.begin(),
                    [=](char a, char b) { return a == b || (ignoreCase && AsciiUpper(a) == AsciiUpper(b)); });
}

constexpr std::size_t kBlock = 128;

struct Starts {
  char quote, word;
};

/// Whether one of the first kBlock bytes ends a line that is followed by one of the starts. Compilers make vector
/// instructions of it.
bool HasCandidate(const char* block, Starts starts) {
  std::uint8_t found = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const std::uint8_t ends = block[i] == '\n' ? 1 : 0;
    const std::uint8_t mayBegin = block[i + 1] == starts.quote || block[i + 1] == starts.word ? 1 : 0;
    found = static_cast<std::uint8_t>(found | (ends & mayBegin));
  }
  return found != 0;
}

}  // namespace

void Repeat(LineStarts::Listener& listener, std::string_view text, std::uint64_t count) {
  for (; count != 0; --count) listener.Text(text);
}

LineStarts::LineStarts(const Rule& rule, Listener& listener)
    : rule_(rule), listener_(listener), quoteStart_(rule.quote.front()), wordStart_(rule.words.front().front()) {
  const auto note = [this](char c) { mayBegin_[static_cast<unsigned char>(c)] = true; };
  note(rule.quote.front());
  longest_ = rule.quote.size();
  for (const std::string_view word : rule.words) {
    note(word.front());
    if (rule.ignoreCase) note(AsciiLower(word.front()));
    longest_ = std::max(longest_, word.size());
  }
  // The first empty line ends the header.
  if (rule.headerOnly) {
    note('\r');
    note('\n');
  }
}

void LineStarts::Add(std::string_view piece) {
  std::size_t given = 0;  // of the piece: what the listener has
  std::size_t at = 0;
  const auto giveTo = [&](std::size_t end) {
    if (end > given) listener_.Text(piece.substr(given, end - given));
    given = end;
  };
  while (at < piece.size()) {
    const std::string_view rest = piece.substr(at);
    if (place_ != Place::LineStart) {
      const bool skips = place_ == Place::Skipping;
      at += skips ? ToLineEnd(rest) : ToNextCandidate(rest);
      if (skips) given = at;
      if (piece[at - 1] == '\n' && !afterHeader_) place_ = Place::LineStart;
      continue;
    }
    const Beginning beginning = quotes_ == 0 && pending_.empty() ? Look(rest) : Beginning();
    if (beginning.kind == Kind::Undecided) {
      giveTo(at);
      if (TakeByte(rest.front())) given = ++at;
    } else if (beginning.kind == Kind::Found) {
      giveTo(at);
      given = at += beginning.length;
      place_ = listener_.Found(beginning.quotes, beginning.word) ? Place::InLine : Place::Skipping;
    } else {
      afterHeader_ = afterHeader_ || beginning.kind == Kind::HeaderEnd;
      place_ = Place::InLine;
    }
  }
  giveTo(at);
}

/// Most beginnings are in one piece, and most lines whose first byte matters need nothing done all the same.
LineStarts::Beginning LineStarts::Look(std::string_view line) const {
  if (!mayBegin_[static_cast<unsigned char>(line.front())]) return {.kind = Kind::Plain};
  if (EndsHeader(line.front())) return {.kind = Kind::HeaderEnd};
  Beginning beginning;
  std::string_view rest = line;
  for (; rest.starts_with(quoteStart_) && rest.starts_with(rule_.quote); rest.remove_prefix(rule_.quote.size()))
    ++beginning.quotes;
  if (rest.size() < longest_) return {};
  const auto isWord = [&](std::string_view word) {
    return Begins(word, rest.substr(0, word.size()), rule_.ignoreCase);
  };
  const auto word = std::find_if(rule_.words.begin(), rule_.words.end(), isWord);
  if (word == rule_.words.end()) return {.kind = Kind::Plain};
  beginning.kind = Kind::Found;
  beginning.word = rest.substr(0, word->size());
  beginning.length = line.size() - rest.size() + word->size();
  return beginning;
}

std::size_t LineStarts::ToLineEnd(std::string_view piece) {
  const std::size_t end = piece.find('\n');
  return end == std::string_view::npos ? piece.size() : end + 1;
}

/// Most lines don't begin with a byte that matters: they are passed on together.
std::size_t LineStarts::ToNextCandidate(std::string_view piece) const {
  if (afterHeader_) return piece.size();
  std::size_t length = rule_.words.size() == 1 && !rule_.ignoreCase ? WithoutCandidates(piece) : 0;
  if (length == piece.size()) return length;
  do {
    length += ToLineEnd(piece.substr(length));
  } while (length < piece.size() && !mayBegin_[static_cast<unsigned char>(piece[length])]);
  return length;
}

/// How many bytes of the piece, in whole blocks or all of them, have no line within that may begin with the quote or
/// the one word. A block takes a few vector instructions; looking for the end of each line takes as long as copying it.
std::size_t LineStarts::WithoutCandidates(std::string_view piece) const {
  const auto isFree = [&](std::size_t at) { return !HasCandidate(piece.data() + at, {quoteStart_, wordStart_}); };
  if (piece.size() <= kBlock) return 0;
  const std::size_t last = piece.size() - kBlock - 1;
  for (std::size_t at = 0; at < last; at += kBlock) {
    if (!isFree(at)) return at;
  }
  return isFree(last) ? piece.size() : last;
}

bool LineStarts::TakeByte(char c) {
  if (quotes_ == 0 && pending_.empty() && !mayBegin_[static_cast<unsigned char>(c)]) {
    place_ = Place::InLine;
    return false;
  }
  pending_ += c;
  if (pending_ == rule_.quote) {
    ++quotes_;
    pending_.clear();
    return true;
  }
  const auto begins = [&](std::string_view word) { return Begins(word, pending_, rule_.ignoreCase); };
  const auto* const word = std::find_if(rule_.words.data(), rule_.words.data() + rule_.words.size(), begins);
  if (word != rule_.words.data() + rule_.words.size()) {
    if (word->size() == pending_.size()) Match();
    return true;
  }
  if (rule_.quote.starts_with(pending_)) return true;
  pending_.pop_back();
  // The first empty line ends the header; the rest is one long line to us.
  if (quotes_ == 0 && pending_.empty() && EndsHeader(c)) afterHeader_ = true;
  Flush();
  place_ = Place::InLine;
  return false;
}

void LineStarts::Match() {
  const std::uint64_t quotes = quotes_;
  const std::string word = std::move(pending_);
  quotes_ = 0;
  pending_.clear();
  place_ = listener_.Found(quotes, word) ? Place::InLine : Place::Skipping;
}

void LineStarts::Flush() {
  Repeat(listener_, rule_.quote, quotes_);
  if (!pending_.empty()) listener_.Text(pending_);
  quotes_ = 0;
  pending_.clear();
}

void LineStarts::End() {
  Flush();
  place_ = Place::LineStart;
  afterHeader_ = false;
}

}  // namespace quillbox
