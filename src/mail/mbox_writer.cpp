// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "mail/mbox.h"
#include "mail/mbox_words.h"

namespace quillbox {
namespace {

/// Thunderbird writes the names of tags into this room without moving what is behind it.
constexpr std::size_t kKeysRoom = 80;

/// The moment as asctime writes it: "Wed Mar 17 10:11:12 2004".
std::string DateText(std::int64_t unixSeconds) {
  using namespace std::chrono;
  constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  // A year has four digits in this form.
  constexpr std::int64_t kLast = 253'402'300'799;
  const sys_seconds moment{seconds{std::clamp<std::int64_t>(unixSeconds, 0, kLast)}};
  const auto days = floor<std::chrono::days>(moment);
  const year_month_day day(days);
  const hh_mm_ss clock(moment - days);
  char text[40];
  std::snprintf(text, sizeof text, "%s %s %2u %02d:%02d:%02d %04d", kDays[weekday(days).c_encoding()],
                kMonths[unsigned{day.month()} - 1], unsigned{day.day()}, static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()), int{day.year()});
  return text;
}

std::string SenderText(std::string_view sender) {
  constexpr std::size_t kMaxSender = 250;
  std::string text;
  for (const char c : sender.substr(0, kMaxSender)) {
    if (c > ' ' && c < 0x7F) text += c;
  }
  return text.empty() ? "-" : text;
}

/// Four hexadecimal digits.
std::string MozillaStatus(const MailState& state) {
  const std::uint32_t bits = (state.read ? kMozillaRead : 0) | (state.answered ? kMozillaAnswered : 0) |
                             (state.flagged ? kMozillaFlagged : 0) | (state.forwarded ? kMozillaForwarded : 0);
  std::string digits;
  for (int shift = 12; shift >= 0; shift -= 4) digits += "0123456789abcdef"[bits >> shift & 0xF];
  return digits;
}

std::string OwnLines(const MailState& state) {
  const std::array<std::string, kOwnLines.size()> values = {
      MozillaStatus(state), "00000000", std::string(kKeysRoom, ' '), state.read ? "RO" : "O",
      std::string(state.answered ? "A" : "") + (state.flagged ? "F" : "")};
  std::string lines;
  for (std::size_t i = 0; i < values.size(); ++i)
    lines.append(kOwnLines[i]).append(" ").append(values[i]).append("\r\n");
  return lines;
}

}  // namespace

MboxWriter::MboxWriter(TextSink sink)
    : sink_(std::move(sink)),
      fromQuoting_(kFromRule.quote, sink_),
      fromLines_(kFromRule, fromQuoting_),
      headerQuoting_(kOwnLineRule.quote, ToFromLines{fromLines_}),
      headerLines_(kOwnLineRule, headerQuoting_) {}

void MboxWriter::Begin(const MboxEnvelope& envelope) {
  sink_("From " + SenderText(envelope.sender) + " " + DateText(envelope.received) + "\r\n" + OwnLines(envelope.state));
  end_ = {};
}

void MboxWriter::Add(std::string_view piece) {
  if (piece.empty()) return;
  headerLines_.Add(piece);
  end_ = {piece.size() == 1 ? end_[1] : piece[piece.size() - 2], piece.back()};
}

void MboxWriter::End() {
  headerLines_.End();
  fromLines_.End();
  const bool hasLineEnd = end_[1] == '\n';
  sink_(hasLineEnd && end_[0] == '\r' ? "\r\n" : hasLineEnd ? "\n" : "\r\n\n");
}

}  // namespace quillbox
