// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <charconv>
#include <optional>

#include "mail/mbox.h"
#include "mail/mbox_words.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

constexpr std::size_t kPieceSize = std::size_t{256} * 1024;
/// More of an own line's value isn't looked at.
constexpr std::size_t kMaxValue = 64;

/// How much of the end of a message in the file the format has added. See MboxWriter::End.
std::size_t AddedAtEnd(std::string_view end) {
  if (end.ends_with("\r\n\n")) return 3;
  if (end.ends_with("\n\n")) return 1;
  return end.ends_with("\n\r\n") ? 2 : 0;
}

std::uint32_t HexNumber(std::string_view text) {
  std::uint32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return number;
}

/// Lines between "From " lines as messages: takes the own header lines and the added end away.
class MessageReading final : public LineStarts::Listener {
 public:
  explicit MessageReading(MboxListener& listener) : listener_(listener) {}

  void Begin() { message_ = {}; }
  void Add(std::string_view piece) { lines_.Add(piece); }
  void End() {
    lines_.End();
    ownLine_.reset();
    Give(std::string_view(held_).substr(0, held_.size() - AddedAtEnd(held_)));
    held_.clear();
    listener_.Message(message_);
  }

  void Text(std::string_view piece) override {
    if (ownLine_) return AddValue(piece);
    // The last bytes wait, since they may be the format's.
    if (piece.size() >= kHeldBack) {
      Give(held_);
      Give(piece.substr(0, piece.size() - kHeldBack));
      held_ = piece.substr(piece.size() - kHeldBack);
      return;
    }
    held_ += piece;
    const std::size_t ready = held_.size() - std::min(held_.size(), kHeldBack);
    Give(std::string_view(held_).substr(0, ready));
    held_.erase(0, ready);
  }

  bool Found(std::uint64_t quotes, std::string_view word) override {
    if (quotes == 0) {
      const auto known = std::find_if(kOwnLines.begin(), kOwnLines.end(),
                                      [&](std::string_view line) { return EqualIgnoreCase(line, word); });
      ownLine_ = static_cast<OwnLine>(known - kOwnLines.begin());
      value_.clear();
      return true;
    }
    Repeat(*this, kOwnLineRule.quote, quotes - 1);
    Text(word);
    return true;
  }

 private:
  static constexpr std::size_t kHeldBack = 3;

  void Give(std::string_view piece) {
    if (piece.empty()) return;
    message_.length += piece.size();
    listener_.Text(piece);
  }

  /// The value goes to the end of its line; the rest is the message's again.
  void AddValue(std::string_view piece) {
    const std::size_t end = piece.find('\n');
    value_ += piece.substr(0, std::min(end, kMaxValue - std::min(kMaxValue, value_.size())));
    if (end == std::string_view::npos) return;
    NoteState(*ownLine_, Trim(value_.substr(0, value_.find('\r'))));
    ownLine_.reset();
    Text(piece.substr(end + 1));
  }

  void NoteState(OwnLine line, const std::string& value) {
    MailState& state = message_.state;
    const auto has = [&](char flag) { return value.find(flag) != std::string::npos; };
    if (line == OwnLine::MozillaStatus) {
      const std::uint32_t bits = HexNumber(value);
      state.read = (bits & kMozillaRead) != 0;
      state.answered = (bits & kMozillaAnswered) != 0;
      state.flagged = (bits & kMozillaFlagged) != 0;
      state.forwarded = (bits & kMozillaForwarded) != 0;
    } else if (line == OwnLine::Status) {
      state.read = state.read || has('R');
    } else if (line == OwnLine::XStatus) {
      state.answered = state.answered || has('A');
      state.flagged = state.flagged || has('F');
    }
  }

  MboxListener& listener_;
  LineStarts lines_{kOwnLineRule, *this};
  std::optional<OwnLine> ownLine_;
  std::string value_;
  std::string held_;
  MboxMessage message_;
};

/// The lines of the file: "From " lines divide it, and lose a quote.
class FileReading final : public LineStarts::Listener {
 public:
  explicit FileReading(MboxListener& listener) : message_(listener) {}

  void Add(std::string_view piece) { lines_.Add(piece); }
  void End() {
    lines_.End();
    if (inMessage_) message_.End();
  }

  void Text(std::string_view piece) override { message_.Add(piece); }
  bool Found(std::uint64_t quotes, std::string_view word) override {
    if (quotes == 0) {
      if (inMessage_) message_.End();
      inMessage_ = true;
      message_.Begin();
      return false;
    }
    Repeat(*this, kFromRule.quote, quotes - 1);
    Text(word);
    return true;
  }

 private:
  MessageReading message_;
  LineStarts lines_{kFromRule, *this};
  bool inMessage_ = false;
};

}  // namespace

bool ReadMbox(PositionedSource& source, MboxListener& listener) {
  Bytes buffer(kPieceSize);
  FileReading reading(listener);
  for (std::uint64_t at = 0;;) {
    const std::size_t size = source.ReadAt(at, buffer);
    if (size == 0) break;
    const std::string_view piece(reinterpret_cast<const char*>(buffer.data()), size);
    if (at == 0 && !piece.starts_with(kFromWord[0])) return false;
    reading.Add(piece);
    at += size;
  }
  reading.End();
  return true;
}

}  // namespace quillbox
