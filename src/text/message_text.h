// SPDX-License-Identifier: GPL-3.0-or-later
// Names from files in messages, windows and reports: short enough to be read, and on one line whatever they hold. What
// is shown is not what is stored: never use a shown text as a key or a path.
#pragma once

#include <string>
#include <string_view>

namespace quillbox {

/// A name or path of more UTF-16 units than this is shortened in messages.
inline constexpr std::size_t kLongestName = 400;

/// `name` as messages show it: whole where it is not longer than kLongestName, else its beginning and its end with
/// "…" between and its length behind ("abc…xyz [16383 characters]").
std::string ShortName(std::string_view name);

/// `text` as one line that a terminal, a window and a log file show alike. Control characters and line ends become
/// their pictures (U+2400 and on); what cannot be shown (the C1 controls, line separators, marks that turn the
/// direction of writing, half characters, bytes that are not UTF-8) becomes U+FFFD.
std::string OneLine(std::string_view text);

/// The same for a text of several lines: "\n" stays.
std::string SeveralLines(std::string_view text);

}  // namespace quillbox
