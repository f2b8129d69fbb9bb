// SPDX-License-Identifier: GPL-3.0-or-later
// Mailbox files: any bytes come back as they were, whatever the pieces; any file can be read, and what was read can be
// written and read again. The input's first byte says how it is cut into pieces and messages.
#include "harness.h"
#include "mail/mbox.h"

namespace quillbox {
namespace {

class Gathering final : public MboxListener {
 public:
  void Text(std::string_view piece) override { text_ += piece; }
  void Message(const MboxMessage& message) override {
    Require(message.length == text_.size(), "a message's length is what was given out");
    texts.push_back(std::move(text_));
    states.push_back(message.state);
    text_.clear();
  }
  std::vector<std::string> texts;
  std::vector<MailState> states;

 private:
  std::string text_;
};

std::string Written(const std::vector<std::string>& texts, const std::vector<MailState>& states, std::size_t step) {
  std::string mbox;
  MboxWriter writer([&](std::string_view piece) { mbox += piece; });
  for (std::size_t i = 0; i < texts.size(); ++i) {
    writer.Begin({"a@b", 0, states[i]});
    for (std::size_t at = 0; at < texts[i].size(); at += step) writer.Add(std::string_view(texts[i]).substr(at, step));
    writer.End();
  }
  return mbox;
}

bool Read(const std::string& mbox, Gathering& gathering) {
  const Bytes bytes = BytesFrom(mbox);
  MemorySource source(bytes);
  return ReadMbox(source, gathering);
}

void RequireRoundTrip(const std::vector<std::string>& texts, const std::vector<MailState>& states, std::size_t step) {
  const std::string mbox = Written(texts, states, step);
  Require(mbox == Written(texts, states, SIZE_MAX / 2), "pieces make no difference");
  Gathering again;
  Require(Read(mbox, again), "what was written is a mailbox file");
  Require(again.texts == texts && again.states == states, "every message comes back as it was");
}

void RunMbox(ByteView input) {
  InputReader reader(input);
  const std::uint8_t form = reader.Byte();
  const std::size_t step = 1 + form % 16;
  const MailState state{(form & 16) != 0, (form & 32) != 0, (form & 64) != 0, (form & 128) != 0};
  const std::string text = TextFrom(reader.Rest());
  const std::size_t cut = text.size() * (form % 16) / 16;
  RequireRoundTrip({text.substr(0, cut), text.substr(cut)}, {state, {}}, step);
  Gathering gathering;
  if (Read(text, gathering) && !gathering.texts.empty()) {
    RequireRoundTrip(gathering.texts, gathering.states, step);
  }
}

std::vector<Seed> MboxSeeds() {
  const std::string letter =
      "Subject: a\r\nStatus: RO\r\nX-Original-X-Status: A\r\n\r\nFrom here\r\n>From there\r\nlast";
  return {{"message", BytesFrom("\x15" + letter)},
          {"bare-lines", BytesFrom("\x07"
                                   "A: b\n\nFrom\n>>From \n\r")},
          {"file", BytesFrom("\x03" + Written({letter, letter + "\n", ""}, {{}, {true}, {}}, 7))}};
}

}  // namespace

const Harness kMboxHarness = {"mbox", 4096, RunMbox, MboxSeeds};

}  // namespace quillbox
