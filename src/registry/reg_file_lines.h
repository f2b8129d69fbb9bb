// The lines of a registry file as inner text, one at a time: a file of hundreds of megabytes is never decoded as a
// whole, and a reader that has looked ahead in vain can go back.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "text/code_page.h"

namespace quillbox {

class RegFileLines {
 public:
  /// The byte-order mark tells the encoding; without one it is `codePage`. `bytes` must outlive this object.
  RegFileLines(std::string_view bytes, const CodePage& codePage);

  /// Moves to the next line; false at the end. CR LF, LF and a lone CR end a line, and so does the end of the file.
  bool Next();
  /// The line without its end; good until the next call of Next.
  std::string_view Text() const { return text_; }
  /// The characters that end the line; empty for a last line that has none.
  std::string_view LineEnd() const { return lineEnd_; }
  std::size_t Number() const { return number_; }  ///< from 1

  struct Mark {
    std::size_t offset = 0;
    std::size_t number = 0;
  };
  /// After Return(Here()) the next call of Next gives the line after the present one.
  Mark Here() const { return {offset_, number_}; }
  void Return(Mark mark);

 private:
  enum class Encoding { EightBit, Utf8, Utf16 };
  char16_t UnitAt(std::size_t offset) const;
  void NextUtf16();
  void NextBytes();

  std::string_view bytes_;
  CodePage codePage_;
  Encoding encoding_ = Encoding::EightBit;
  std::size_t offset_ = 0;
  std::size_t number_ = 0;
  std::string decoded_;
  std::string_view text_, lineEnd_;
};

}  // namespace quillbox
