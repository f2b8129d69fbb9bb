// SPDX-License-Identifier: GPL-3.0-or-later
// The lines of a registry file as inner text. A file of gigabytes is read in pieces and never held or decoded as a
// whole; a line that is longer than such a piece comes in pieces too. A reader that has looked ahead in vain can go
// back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "registry/byte_source.h"
#include "registry/reg_file_limits.h"
#include "text/code_page.h"

namespace quillbox {

class RegFileLines {
 public:
  /// The byte-order mark decides the encoding; without one it is `codePage`. `source` is the file `name`; it must
  /// outlive this object. The constructor, Next, Extend and Return throw Error when it cannot be read or exceeds
  /// `limits.file`.
  RegFileLines(ByteSource& source, std::string name, const CodePage& codePage, const RegFileLimits& limits);

  /// Moves to the start of the next line, over what is left of the present one; false at the end. CR LF, LF and a lone
  /// CR end a line, and so does the end of the file.
  bool Next();
  /// What is at hand of the line without its end: whole characters, at least one unless the line is empty. Good until
  /// the next call of Next, Extend or Return.
  std::string_view Text() const { return text_; }
  /// Lets go of the first `used` bytes of Text() and adds the next piece of the line; false when the line has no more.
  bool Extend(std::size_t used);
  /// The characters that end the line, once Extend has answered false; empty for a last line that has none.
  std::string_view LineEnd() const { return lineEnd_; }
  std::size_t Number() const { return number_; }  ///< from 1
  /// True when the file ends in the middle of a UTF-16 unit; known once Next has answered false.
  bool EndsInHalfUnit() const { return encoding_ == Encoding::Utf16 && Available() == 1; }

  struct Mark {
    std::uint64_t offset = 0;
    std::size_t number = 0;
  };
  /// After Return(Start()) the next call of Next gives the present line again.
  Mark Start() const { return start_; }
  void Return(Mark mark);

 private:
  enum class Encoding { EightBit, Utf8, Utf16 };
  std::size_t UnitSize() const { return encoding_ == Encoding::Utf16 ? 2 : 1; }
  std::size_t Available() const { return buffer_.size() - at_; }
  char16_t UnitAt(std::size_t offset) const;
  void RequireSize(std::uint64_t size) const;
  void FillTo(std::size_t length);
  std::size_t FindLineEnd() const;
  std::size_t WholeCharacters() const;
  std::string_view TakePiece();
  std::string_view Decode(std::string_view bytes);
  std::string_view DecodeUtf16(std::string_view bytes);

  ByteSource& source_;
  std::string name_;
  CodePage codePage_;
  RegFileLimits limits_;
  Encoding encoding_ = Encoding::EightBit;

  std::string buffer_;      ///< a stretch of the file
  std::uint64_t base_ = 0;  ///< where in the file the buffer begins
  std::size_t at_ = 0;      ///< the first byte of the buffer that was not taken yet
  bool sourceEnded_ = false;

  Mark start_;
  std::size_t number_ = 0;
  bool lineEnded_ = true;
  std::string decoded_, extended_;
  std::string_view text_, lineEnd_;
};

}  // namespace quillbox
