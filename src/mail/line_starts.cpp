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

}  // namespace

void Repeat(LineStarts::Listener& listener, std::string_view text, std::uint64_t count) {
  for (; count != 0; --count) listener.Text(text);
}

LineStarts::LineStarts(const Rule& rule, Listener& listener) : rule_(rule), listener_(listener) {
  const auto note = [this](char c) { mayBegin_[static_cast<unsigned char>(c)] = true; };
  note(rule.quote.front());
  for (const std::string_view word : rule.words) {
    note(word.front());
    if (rule.ignoreCase) note(AsciiLower(word.front()));
  }
  // The first empty line ends the header.
  if (rule.headerOnly) {
    note('\r');
    note('\n');
  }
}

void LineStarts::Add(std::string_view piece) {
  while (!piece.empty()) {
    if (place_ == Place::LineStart) {
      if (TakeByte(piece.front())) piece.remove_prefix(1);
      continue;
    }
    const std::size_t length = place_ == Place::Skipping ? ToLineEnd(piece) : ToNextCandidate(piece);
    if (place_ == Place::InLine) listener_.Text(piece.substr(0, length));
    if (length != 0 && piece[length - 1] == '\n' && !afterHeader_) place_ = Place::LineStart;
    piece.remove_prefix(length);
  }
}

std::size_t LineStarts::ToLineEnd(std::string_view piece) {
  const std::size_t end = piece.find('\n');
  return end == std::string_view::npos ? piece.size() : end + 1;
}

/// Most lines don't begin with a byte that matters: they are passed on together.
std::size_t LineStarts::ToNextCandidate(std::string_view piece) const {
  if (afterHeader_) return piece.size();
  std::size_t length = 0;
  do {
    length += ToLineEnd(piece.substr(length));
  } while (length < piece.size() && !mayBegin_[static_cast<unsigned char>(piece[length])]);
  return length;
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
  if (rule_.headerOnly && quotes_ == 0 && pending_.empty() && (c == '\r' || c == '\n')) afterHeader_ = true;
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
