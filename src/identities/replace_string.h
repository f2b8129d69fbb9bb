// SPDX-License-Identifier: GPL-3.0-or-later
// Replacement of one text by another wherever it occurs, in 8-bit text and in UTF-16 alike.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace quillbox {

enum class Case { Ignore, Match };

/// Whether two characters are equal without regard to case; the case of letters beyond ASCII counts.
template <class Unit>
bool IsSameLetter(Unit a, Unit b) {
  const auto lower = [](Unit c) { return c >= 'A' && c <= 'Z' ? static_cast<Unit>(c | 0x20) : c; };
  return lower(a) == lower(b);
}

/// The position of `search` in `text` at or after `from`, or npos. `search` must not be empty.
template <class Unit>
std::size_t FindString(std::basic_string_view<Unit> text, std::basic_string_view<Unit> search, std::size_t from,
                       Case matchCase) {
  if (matchCase == Case::Match) return text.find(search, from);
  const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(std::min(from, text.size())), text.end(),
                                 search.begin(), search.end(), IsSameLetter<Unit>);
  return found == text.end() ? text.npos : static_cast<std::size_t>(found - text.begin());
}

/// What is searched for, and what takes its place.
template <class Unit>
struct Replacement {
  std::basic_string_view<Unit> search;
  std::basic_string_view<Unit> with;
};

/// `text` with every occurrence of `what.search` replaced; what was put in is not searched again.
template <class Unit>
std::basic_string<Unit> ReplaceString(std::basic_string_view<Unit> text, const Replacement<Unit>& what,
                                      Case matchCase) {
  std::basic_string<Unit> replaced;
  std::size_t done = 0;
  while (!what.search.empty()) {
    const std::size_t at = FindString(text, what.search, done, matchCase);
    if (at == text.npos) break;
    replaced.append(text, done, at - done).append(what.with);
    done = at + what.search.size();
  }
  return replaced.append(text, done, text.npos);
}

inline std::string ReplaceString(std::string_view text, const Replacement<char>& what, Case matchCase) {
  return ReplaceString<char>(text, what, matchCase);
}

}  // namespace quillbox
