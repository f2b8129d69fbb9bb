// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/general_date.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "core/identity_catalogue.h"
#include "text/file_time.h"
#include "text/local_time.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kInternational = "Control Panel\\International";
constexpr int kHoursOfHalf = 12;
constexpr std::size_t kAbbreviated = 3;

constexpr std::string_view kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                        "July",    "August",   "September", "October", "November", "December"};
constexpr std::string_view kDays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

struct StyleRow {
  const char* value;
  std::string DateStyle::*field;
};
constexpr StyleRow kStyle[] = {
    {"sShortDate", &DateStyle::shortDate}, {"sTimeFormat", &DateStyle::time}, {"sDate", &DateStyle::dateSeparator},
    {"sTime", &DateStyle::timeSeparator},  {"s1159", &DateStyle::morning},    {"s2359", &DateStyle::afternoon},
};

std::string Padded(const std::string& digits, std::size_t width) {
  return std::string(width - std::min(width, digits.size()), '0') + digits;
}

/// A day or month as a number of one or two digits, as an abbreviated name, or as a full name.
std::string NumberOrName(int number, std::string_view name, std::size_t width) {
  if (width <= 2) return Padded(std::to_string(number), width);
  return std::string(width == kAbbreviated ? name.substr(0, kAbbreviated) : name);
}

class Picture {
 public:
  Picture(const std::tm& when, const DateStyle& style) : when_(when), style_(style) {}

  /// A picture consists of runs of one letter, texts in single quotes, and other characters, which are copied.
  std::string Fill(std::string_view picture) const {
    std::string text;
    for (std::size_t at = 0; at < picture.size();) {
      const char letter = picture[at];
      if (letter == '\'') {
        const std::size_t end = std::min(picture.find('\'', at + 1), picture.size());
        text += picture.substr(at + 1, end - at - 1);
        at = end + 1;
        continue;
      }
      const std::size_t end = std::min(picture.find_first_not_of(letter, at), picture.size());
      text += Part(letter, end - at);
      at = end;
    }
    return text;
  }

 private:
  std::string Part(char letter, std::size_t width) const {
    const int half = (when_.tm_hour + kHoursOfHalf - 1) % kHoursOfHalf + 1;
    const std::string& mark = when_.tm_hour < kHoursOfHalf ? style_.morning : style_.afternoon;
    const int year = when_.tm_year + 1900;
    switch (letter) {
      case 'd':
        return NumberOrName(when_.tm_mday, kDays[when_.tm_wday], width);
      case 'M':
        return NumberOrName(when_.tm_mon + 1, kMonths[when_.tm_mon], width);
      case 'y':
        return width > 2 ? std::to_string(year) : Padded(std::to_string(year % 100), width);
      case 'h':
        return Padded(std::to_string(half), width);
      case 'H':
        return Padded(std::to_string(when_.tm_hour), width);
      case 'm':
        return Padded(std::to_string(when_.tm_min), width);
      case 's':
        return Padded(std::to_string(when_.tm_sec), width);
      case 't':
        return width == 1 ? ToUtf8(ToUtf16(mark).substr(0, 1)) : mark;
      case '/':
        return style_.dateSeparator;
      case ':':
        return style_.timeSeparator;
      default:
        return std::string(width, letter);
    }
  }

  const std::tm& when_;
  const DateStyle& style_;
};

}  // namespace

DateStyle ReadDateStyle(RegistryStore& store) {
  DateStyle style;
  for (const StyleRow& row : kStyle) {
    const RegValue read = store.RegistryGetKeyValue(CurrentUser(kInternational), row.value);
    const std::string* text = read.Text();
    const bool mayBeEmpty = row.field == &DateStyle::morning || row.field == &DateStyle::afternoon;
    if (text && (mayBeEmpty || !text->empty())) style.*row.field = *text;
  }
  return style;
}

std::string FormatGeneralDate(const std::tm& when, const DateStyle& style) {
  const Picture picture(when, style);
  return picture.Fill(style.shortDate) + " " + picture.Fill(style.time);
}

std::string GeneralDate(RegistryStore& store, std::uint64_t fileTime) {
  const std::optional<std::tm> local = LocalTime(UnixSeconds(fileTime).value_or(0));
  return local ? FormatGeneralDate(*local, ReadDateStyle(store)) : std::string();
}

}  // namespace quillbox
