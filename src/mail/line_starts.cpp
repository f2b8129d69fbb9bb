#include "mail/line_starts.h"

#include <algorithm>

#include "text/unicode.h"

namespace quillbox {
namespace {

bool Begins(std::string_view word, std::string_view start, bool ignoreCase) {
  if (start.size() > word.size()) return false;
  return std::equal(start.begin(), start.end(), word.begin(),
                    [=](char a, char b) { return a == b || (ignoreCase && AsciiUpper(a) == AsciiUpper(b)); });
}

}  // namespace

void Repeat(LineStarts::Listener& listener, std::string_view text, std::uint64_t count) {
  for (; count != 0; --count) listener.Text(text);
}

void LineStarts::Add(std::string_view piece) {
  while (!piece.empty()) {
    if (place_ == Place::LineStart) {
      if (TakeByte(piece.front())) piece.remove_prefix(1);
      continue;
    }
    const std::size_t end = afterHeader_ ? std::string_view::npos : piece.find('\n');
    const std::string_view line = piece.substr(0, end == std::string_view::npos ? end : end + 1);
    piece.remove_prefix(line.size());
    if (place_ == Place::InLine) listener_.Text(line);
    if (end != std::string_view::npos) place_ = Place::LineStart;
  }
}

bool LineStarts::TakeByte(char c) {
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
