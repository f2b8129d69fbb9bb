// SPDX-License-Identifier: GPL-3.0-or-later
// Mailbox files (mbox in the form "mboxrd") as Thunderbird, mutt and other programs read them, so that every message
// comes back byte for byte:
//
// - The message's bytes, CR LF and all, are written as they are. The lines that the format adds end with CR LF, too.
// - A line that begins with "From ", after any number of ">", gets one ">" more.
// - The format's own header lines come before the message's: X-Mozilla-Status, X-Mozilla-Status2 and X-Mozilla-Keys for
//   Thunderbird, which changes them in place, Status and X-Status for the others. A message that has such a line in its
//   own header would be taken for read, or for deleted, by it: the line gets "X-Original-" before its name, once more
//   when it has it already.
// - Each message is followed by an empty line. A message that ends with CR LF gets CR LF, one that ends with LF alone
// gets
//   LF, and one whose last line has no end gets CR LF LF: so which it was can be seen from the file.
//
// The reader undoes exactly this, and leaves out the own header lines wherever in the header a mail program put them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "mail/line_starts.h"
#include "mail/mail_state.h"
#include "mail/segment_chain.h"
#include "text/positioned_source.h"

namespace quillbox {

/// What is around a message in the file.
struct MboxEnvelope {
  std::string sender;         ///< an address; "-" is written for none
  std::int64_t received = 0;  ///< seconds since 1970 UTC
  MailState state;
};

class MboxWriter {
 public:
  explicit MboxWriter(TextSink sink);

  /// Begin, Add for each piece of the message, End; then the next one.
  void Begin(const MboxEnvelope& envelope);
  void Add(std::string_view piece);
  void End();

 private:
  /// Quotes lines, and passes them on.
  template <class Next>
  class Quoting final : public LineStarts::Listener {
   public:
    Quoting(std::string_view quote, Next next) : quote_(quote), next_(std::move(next)) {}
    void Text(std::string_view piece) override { next_(piece); }
    bool Found(std::uint64_t quotes, std::string_view word) override {
      Repeat(*this, quote_, quotes + 1);
      next_(word);
      return true;
    }

   private:
    std::string_view quote_;
    Next next_;
  };
  struct ToFromLines {
    LineStarts& lines;
    void operator()(std::string_view piece) const { lines.Add(piece); }
  };

  TextSink sink_;
  Quoting<const TextSink&> fromQuoting_;
  LineStarts fromLines_;
  Quoting<ToFromLines> headerQuoting_;
  LineStarts headerLines_;
  std::array<char, 2> end_ = {};  ///< the last bytes of the message
};

/// A message as ReadMbox found it.
struct MboxMessage {
  std::uint64_t length = 0;  ///< of the message itself
  MailState state;
};

class MboxListener {
 public:
  virtual ~MboxListener() = default;
  /// A piece of the message that Message names afterwards.
  virtual void Text(std::string_view piece) = 0;
  virtual void Message(const MboxMessage& message) = 0;
};

/// Reads a mailbox file in pieces. False, and nothing more is read, when it isn't one: it is not empty and doesn't
/// begin with "From ". Throws what the source throws.
bool ReadMbox(PositionedSource& source, MboxListener& listener);

}  // namespace quillbox
