// SPDX-License-Identifier: GPL-3.0-or-later
// Mail formats: what comes out is held against texts written by hand, and comes back byte for byte.
#include <array>
#include <random>

#include "mail/mbox.h"
#include "mail/message_digest.h"
#include "support/matchers.h"

namespace quillbox {
namespace {

struct Found {
  std::string text;
  MailState state;
  bool operator==(const Found&) const = default;
};

class Gathering final : public MboxListener {
 public:
  void Text(std::string_view piece) override { text_ += piece; }
  void Message(const MboxMessage& message) override {
    EXPECT_EQ(message.length, text_.size());
    found.push_back({std::move(text_), message.state});
    text_.clear();
  }
  std::vector<Found> found;

 private:
  std::string text_;
};

/// Gives out at most `step` bytes a time.
class SteppingSource final : public PositionedSource {
 public:
  SteppingSource(std::string_view text, std::size_t step) : text_(text), step_(step) {}
  std::uint64_t Size() const override { return text_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    const std::string_view rest = text_.substr(static_cast<std::size_t>(offset));
    return rest.copy(reinterpret_cast<char*>(buffer.data()), std::min(step_, buffer.size()));
  }

 private:
  std::string_view text_;
  std::size_t step_;
};

std::vector<Found> ReadAll(std::string_view mbox, std::size_t step = 1'000'000) {
  SteppingSource source(mbox, step);
  Gathering gathering;
  EXPECT_TRUE(ReadMbox(source, gathering));
  return gathering.found;
}

std::string WriteAll(const std::vector<Found>& messages, std::size_t step = 1'000'000) {
  std::string mbox;
  MboxWriter writer([&](std::string_view piece) { mbox += piece; });
  for (const Found& message : messages) {
    writer.Begin({"ann@example.com", 1'079'518'272, message.state});
    for (std::size_t at = 0; at < message.text.size(); at += step) {
      writer.Add(std::string_view(message.text).substr(at, step));
    }
    writer.End();
  }
  return mbox;
}

TEST(Mbox, IsWhatMailProgramsRead) {
  const std::string keys = "X-Mozilla-Keys: " + std::string(80, ' ') + "\r\n";
  EXPECT_EQ(
      WriteAll({{"Subject: a\r\nStatus: RO\r\n\r\nFrom here\r\n>>From there\r\nStatus: x\r\n",
                 {.read = true, .answered = true}},
                {"X-Original-x-mozilla-STATUS: 8\n\nlast", {.flagged = true, .forwarded = true}}}),
      "From ann@example.com Wed Mar 17 10:11:12 2004\r\nX-Mozilla-Status: 0003\r\nX-Mozilla-Status2: 00000000\r\n" +
          keys +
          "Status: RO\r\nX-Status: A\r\n"
          "Subject: a\r\nX-Original-Status: RO\r\n\r\n>From here\r\n>>>From there\r\nStatus: x\r\n\r\n"
          "From ann@example.com Wed Mar 17 10:11:12 2004\r\nX-Mozilla-Status: 1004\r\nX-Mozilla-Status2: 00000000\r\n" +
          keys +
          "Status: O\r\nX-Status: F\r\n"
          "X-Original-X-Original-x-mozilla-STATUS: 8\n\nlast\r\n\n");
  std::string line;
  MboxWriter([&](std::string_view piece) { line += piece; }).Begin({"a b\r\nX: y\xFF", -5, {}});
  EXPECT_THAT(line, StartsWith("From abX:y Thu Jan  1 00:00:00 1970\r\n"));
  line.clear();
  MboxWriter([&](std::string_view piece) { line += piece; }).Begin({"", INT64_MAX, {}});
  EXPECT_THAT(line, StartsWith("From - Fri Dec 31 23:59:59 9999\r\n"));
}

TEST(Mbox, GivesEveryMessageBackAsItWas) {
  constexpr std::array<std::string_view, 16> kParts = {
      ">", "From ", "\r\n", "\n", "\r",       "X-Original-",     "Status:",   "x-status: ", "X-Mozilla-Status:",
      "a", " ",     "Fro",  "X-", "\r\n\r\n", "X-Mozilla-Keys:", "\r\n>From "};
  std::mt19937 random(14);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 3000; ++round) {
    std::vector<Found> messages(1 + below(3));
    for (Found& message : messages) {
      for (std::size_t parts = below(12); parts != 0; --parts) message.text += kParts[below(kParts.size())];
      message.state = {below(2) == 0, below(2) == 0, below(2) == 0, below(2) == 0};
    }
    const std::string mbox = WriteAll(messages, 1 + below(5));
    ASSERT_EQ(mbox, WriteAll(messages));
    ASSERT_EQ(ReadAll(mbox, 5 + below(9)), messages) << mbox;
    ASSERT_EQ(ReadAll(mbox), messages);
  }
}

TEST(Mbox, QuotesALineWhereverItBeginsInALargePiece) {
  const std::string before = "Subject: a\r\n\r\n";
  for (std::size_t shift = 0; shift < 300; ++shift) {
    for (const std::size_t behind : {0U, 40U, 200U}) {
      for (const std::string line : {"From ", ">From ", "Frome", "> From", ">"}) {
        const std::string quote = line.ends_with("From ") && line[1] != ' ' ? ">" : "";
        const std::string fill(shift, 'x');
        const std::string end = std::string(behind, 'y') + "\n";
        const std::string mbox = WriteAll({{before + fill + "\n" + line + end, {}}});
        ASSERT_THAT(mbox, EndsWith(before + fill + "\n" + quote + line + end + "\n")) << shift << " " << behind;
      }
    }
  }
}

TEST(Mbox, ReadsWhatOtherProgramsWrote) {
  EXPECT_EQ(
      ReadAll("From a@b.c Sat Jan  1 00:00:00 2000\nSubject: one\nStatus: RO\nX-Status: F\n\n>From me\n\n"
              "From - Sat Jan  1 00:00:00 2000\nX-Mozilla-Status: 0001\nX-Mozilla-Status2: 00000000\nA: b\n\ntext\n"),
      (std::vector<Found>{{"Subject: one\n\nFrom me\n", {.read = true, .flagged = true}},
                          {"A: b\n\ntext\n", {.read = true}}}));
  EXPECT_THAT(ReadAll(""), IsEmpty());
  Gathering nothing;
  SteppingSource other("Subject: a letter\n\nFrom here\n", 100);
  EXPECT_FALSE(ReadMbox(other, nothing));
  EXPECT_THAT(nothing.found, IsEmpty());
}

TEST(MessageDigest, IsXxh3InAnyPieces) {
  // Known answers of `xxhsum -H2`.
  MessageDigest digest;
  EXPECT_EQ(digest.Finish(), (MessageDigest::Value{0x99AA06D3014798D8, 0x6001C324468D497F}));
  std::string input = "From: Ann <ann@example.org>\r\nSubject: x\r\n\r\n";
  for (int line = 0; line < 40; ++line) input += "0123456789abcdef\r\n";
  for (const std::size_t cut : {std::size_t{0}, std::size_t{3}, std::size_t{256}, input.size()}) {
    digest.Add(input.substr(0, cut));
    digest.Add(input.substr(cut));
    EXPECT_EQ(digest.Finish(), (MessageDigest::Value{0x7456A16EB2564235, 0x1A14B025856AD7F8})) << cut;
  }
}

TEST(MessageIdentity, DiffersByIdAndByContent) {
  IdentityCollector collector;
  const auto identityOf = [&](std::string_view text) {
    for (const char c : text) collector.Add({&c, 1});
    return collector.Finish();
  };
  const MessageIdentity first = identityOf("Message-ID:\r\n <1@a>\r\n\r\none");
  EXPECT_EQ(first.messageId, "<1@a>");
  EXPECT_EQ(first.length, 26u);
  EXPECT_EQ(identityOf("Message-ID:\r\n <1@a>\r\n\r\none"), first);
  EXPECT_NE(identityOf("Message-ID:\r\n <1@a>\r\n\r\ntwo"), first);
  EXPECT_EQ(identityOf("\r\nMessage-ID: <1@a>\r\n").messageId, "");
}

}  // namespace
}  // namespace quillbox
