// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/sample_mail.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "text/file_time.h"

namespace quillbox {
namespace {

struct Person {
  std::string_view name, address;
};

constexpr Person kMe = {"Ann Miller", "ann.miller@example.com"};
constexpr Person kOthers[] = {
    {"Ben Okafor", "ben@example.org"},         {"Clara Lindqvist", "clara@post.example"},
    {"Dev Patel", "dev.patel@example.net"},    {"Elena Rossi", "elena@rossi.example"},
    {"Town Library", "loans@library.example"}, {"Garden Club", "news@garden.example"},
    {"Hugo Martin", "hugo@example.com"},
};

struct TopicRow {
  std::string_view account;
  std::string_view label;  ///< part of every Message-ID, so that no two stores share one
  bool fromMe;
  std::array<std::string_view, 6> subjects;
};

// By MailTopic.
constexpr TopicRow kTopics[] = {
    {"mail.example.com",
     "in",
     false,
     {"Supper on Saturday?", "Photos from the lake", "Your book is due", "Train times", "Minutes of the meeting",
      "Seeds for the spring"}},
    {"mail.example.com",
     "out",
     true,
     {"Re: Supper on Saturday?", "The recipe you asked for", "Re: Train times", "New address", "Thank you!",
      "Re: Minutes of the meeting"}},
    {"mail.example.com",
     "gone",
     false,
     {"You have won", "Special offer", "Last chance", "Undeliverable: hello", "Test", "Newsletter"}},
    {"mail.example.com",
     "draft",
     true,
     {"Letter to the landlord", "Speech", "Shopping list", "Ideas", "To do", "Poem"}},
    {"Choir (IMAP)",
     "choir",
     false,
     {"[choir] Rehearsal moved", "[choir] Concert programme", "[choir] Sheet music", "[choir] Who can drive?",
      "[choir] Summer tour", "[choir] Altos, please read"}},
    {"news.example.net",
     "news",
     false,
     {"Template argument deduction", "Order of constructors", "Re: Order of constructors", "Reading a file twice",
      "Re: Template argument deduction", "[FAQ] Where to start"}},
    {"B\xFCro Z\xFCrich",
     "office",
     false,
     {"Rechnung 2004-117", "Sitzung am Montag", "Angebot", "Re: Angebot", "Urlaubsplan", "Lieferschein"}},
};

constexpr std::string_view kSentences[] = {
    "It has been raining here since Tuesday and the cellar is finally dry again.",
    "Could you bring the blue folder when you come, the one with the old maps?",
    "I counted the chairs twice: we are still three short.",
    "The train leaves at a quarter past seven and there is only one change.",
    "Please have a look at the list below and tell me what is missing.",
    "My neighbour has offered to lend us his trailer for the weekend.",
    "We can talk about the rest on the telephone, I am at home after six.",
    "The printer ran out of ink, so the last two pages are a little pale.",
    "There were more people than last year and nearly all the cake was eaten.",
    "Do not worry about the deposit, it has already been paid.",
    "I found the photograph behind the cupboard, together with two stamps.",
};

constexpr std::size_t kAttachmentEvery = 7;
constexpr std::size_t kAttachmentLines = 160;

/// A row of numbers that looks arbitrary and is the same on every machine.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : state_(seed * 2654435761u + 97u) {}
  std::size_t Roll(std::size_t sides) {
    state_ = state_ * 1664525u + 1013904223u;
    return (state_ >> 8) % sides;
  }

 private:
  std::uint32_t state_;
};

std::string Format(const char* format, auto... values) {
  char text[160];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

std::string Prose(Dice& dice) {
  std::string text;
  const std::size_t paragraphs = 2 + dice.Roll(5);
  for (std::size_t p = 0; p < paragraphs; ++p) {
    const std::size_t sentences = 2 + dice.Roll(4);
    for (std::size_t s = 0; s < sentences; ++s) {
      text += kSentences[dice.Roll(std::size(kSentences))];
      text += "\r\n";
    }
    text += "\r\n";
  }
  return text;
}

std::string Attachment(Dice& dice) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t line = 0; line < kAttachmentLines; ++line) {
    for (int i = 0; i < 76; ++i) text += kDigits[dice.Roll(kDigits.size())];
    text += "\r\n";
  }
  return text;
}

std::string Body(Dice& dice, bool attachment) {
  constexpr std::string_view kPlain =
      "Content-Type: text/plain;\r\n\tcharset=\"iso-8859-1\"\r\nContent-Transfer-Encoding: 7bit\r\n";
  if (!attachment) return std::string(kPlain) + "\r\n" + Prose(dice);
  constexpr std::string_view kBoundary = "----=_NextPart_000_0008_01C48A1D.5B2F7A40";
  std::string text = "Content-Type: multipart/mixed;\r\n\tboundary=\"" + std::string(kBoundary) + "\"\r\n\r\n";
  text += "This is a multi-part message in MIME format.\r\n\r\n--" + std::string(kBoundary) + "\r\n";
  text += std::string(kPlain) + "\r\n" + Prose(dice) + "--" + std::string(kBoundary) + "\r\n";
  text += "Content-Type: image/jpeg;\r\n\tname=\"lake.jpg\"\r\nContent-Transfer-Encoding: base64\r\n";
  text += "Content-Disposition: attachment;\r\n\tfilename=\"lake.jpg\"\r\n\r\n";
  return text + Attachment(dice) + "\r\n--" + std::string(kBoundary) + "--\r\n";
}

struct SentTime {
  std::string text;
  std::uint64_t stamp;
};

SentTime TimeOf(std::size_t index, Dice& dice) {
  using namespace std::chrono;
  static constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const sys_days day = sys_days(year{2004} / 1 / 5) + days{index * 2};
  const seconds inDay{6L * 3600 + static_cast<long>(dice.Roll(std::size_t{15} * 3600))};
  const year_month_day date(day);
  const hh_mm_ss clock(inDay);
  SentTime sent;
  sent.text = Format("%s, %u %s %d %02d:%02d:%02d +0000", kDays[weekday(day).c_encoding()], unsigned{date.day()},
                     kMonths[unsigned{date.month()} - 1], int{date.year()}, static_cast<int>(clock.hours().count()),
                     static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
  sent.stamp = FileTimeOfUnix((day.time_since_epoch() + inDay) / seconds{1});
  return sent;
}

DbxMessage MakeMessage(const TopicRow& topic, std::size_t index, Dice& dice) {
  const Person& other = kOthers[dice.Roll(std::size(kOthers))];
  const Person& from = topic.fromMe ? kMe : other;
  const Person& to = topic.fromMe ? other : kMe;
  const SentTime sent = TimeOf(index, dice);
  DbxMessage message;
  message.subject = topic.subjects[index % topic.subjects.size()];
  message.senderName = from.name;
  message.senderAddress = from.address;
  message.receiverName = to.name;
  message.receiverAddress = to.address;
  message.messageId =
      Format("<%06zu$%06zx$", index + 1, dice.Roll(0xFFFFFF)) + std::string(topic.label) + "@example.com>";
  message.account = topic.account;
  message.sent = sent.stamp;
  message.read = dice.Roll(6) != 0;
  message.text = "Message-ID: " + message.messageId + "\r\nFrom: \"" + message.senderName + "\" <" +
                 message.senderAddress + ">\r\nTo: \"" + message.receiverName + "\" <" + message.receiverAddress +
                 ">\r\nSubject: " + message.subject + "\r\nDate: " + sent.text + "\r\nMIME-Version: 1.0\r\n" +
                 "X-Priority: 3\r\n" + Body(dice, index % kAttachmentEvery == kAttachmentEvery - 1);
  return message;
}

}  // namespace

std::vector<DbxMessage> SampleMail(MailTopic topic, std::size_t count) {
  Dice dice(static_cast<std::uint32_t>(topic) + 1);
  std::vector<DbxMessage> messages;
  for (std::size_t i = 0; i < count; ++i)
    messages.push_back(MakeMessage(kTopics[static_cast<std::size_t>(topic)], i, dice));
  return messages;
}

}  // namespace quillbox
