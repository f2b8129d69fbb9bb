// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <chrono>
#include <optional>
#include <string_view>
#include <vector>

#include "mail/message_header.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxWords = 12;
constexpr std::array<std::string_view, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

struct ZoneRow {
  std::string_view name;
  int hours;
};
// RFC 822. The single letters are used the wrong way round so often that they count as UTC.
constexpr ZoneRow kZones[] = {{"EST", -5}, {"EDT", -4}, {"CST", -6}, {"CDT", -5},
                              {"MST", -7}, {"MDT", -6}, {"PST", -8}, {"PDT", -7}};

std::optional<int> Digits(std::string_view text) {
  if (text.empty() || text.size() > 4) return std::nullopt;
  int number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return number;
}

/// Words between blanks and commas; comments left out.
std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  while (words.size() < kMaxWords) {
    const std::size_t start = text.find_first_not_of(" \t,");
    if (start == std::string_view::npos || text[start] == '(') break;
    text.remove_prefix(start);
    const std::size_t end = text.find_first_of(" \t,");
    words.push_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end);
  }
  return words;
}

std::optional<unsigned> MonthOf(std::string_view word) {
  for (unsigned month = 0; month < kMonths.size(); ++month) {
    if (word.size() >= 3 && EqualIgnoreCase(word.substr(0, 3), kMonths[month])) return month + 1;
  }
  return std::nullopt;
}

std::optional<int> YearOf(std::string_view word) {
  const auto year = Digits(word);
  if (!year || word.size() > 3) return year;
  return *year + (word.size() == 2 && *year < 50 ? 2000 : 1900);
}

/// "10:11" or "10:11:12", in seconds.
std::optional<int> ClockOf(std::string_view word) {
  std::array<int, 3> parts = {};
  for (std::size_t i = 0; i < parts.size() && !word.empty(); ++i) {
    const std::size_t colon = word.find(':');
    const auto number = Digits(word.substr(0, colon));
    if (!number || *number > (i == 0 ? 23 : 60) || (i == 0 && colon == std::string_view::npos)) return std::nullopt;
    parts[i] = *number;
    word.remove_prefix(colon == std::string_view::npos ? word.size() : colon + 1);
  }
  return parts[0] * 3600 + parts[1] * 60 + parts[2];
}

int ZoneSeconds(std::string_view word) {
  if (word.size() == 5 && (word[0] == '+' || word[0] == '-')) {
    const int number = Digits(word.substr(1)).value_or(0);
    const int seconds = number / 100 * 3600 + number % 100 * 60;
    return word[0] == '-' ? -seconds : seconds;
  }
  for (const ZoneRow& zone : kZones) {
    if (EqualIgnoreCase(word, zone.name)) return zone.hours * 3600;
  }
  return 0;
}

}  // namespace

std::optional<std::int64_t> ParseMailDate(std::string_view date) {
  using namespace std::chrono;
  const std::vector<std::string_view> words = Words(date);
  // The day of the week may be missing.
  const std::size_t first = !words.empty() && Digits(words[0]) ? 0 : 1;
  if (words.size() < first + 4) return std::nullopt;
  const auto dayOfMonth = Digits(words[first]);
  const auto monthOfYear = MonthOf(words[first + 1]);
  const auto inYear = YearOf(words[first + 2]);
  const auto clock = ClockOf(words[first + 3]);
  if (!dayOfMonth || !monthOfYear || !inYear || !clock) return std::nullopt;
  const year_month_day day{year{*inYear}, month{*monthOfYear}, std::chrono::day{static_cast<unsigned>(*dayOfMonth)}};
  if (!day.ok()) return std::nullopt;
  const int zone = words.size() > first + 4 ? ZoneSeconds(words[first + 4]) : 0;
  return std::int64_t{sys_days(day).time_since_epoch().count()} * 86'400 + *clock - zone;
}

}  // namespace quillbox
