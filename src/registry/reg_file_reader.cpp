// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "registry/held_data.h"
#include "registry/hive.h"
#include "registry/reg_file.h"
#include "registry/reg_file_form.h"
#include "registry/reg_file_lines.h"
#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxNumberDigits = 8;
constexpr std::string_view kStatementStarts = "[\"@";
constexpr std::string_view kOpenQuote = "a quote is not closed";
constexpr std::string_view kBackslash = "\\";
constexpr std::string_view kNul("\0", 1);
constexpr std::size_t kBrackets = 3;  ///< those around a key's name, and the "-" of one that is deleted

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// Blanks between the parts of a line. The end-of-file character of old text files counts as one.
bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\x1A';
}

struct ParsedValue {
  explicit ParsedValue(std::uint64_t maxHeld) : data(maxHeld) {}

  std::string name;
  bool isNameWhole = true;  ///< false when the name is too long for any hive; `name` is its beginning then
  bool isDeletion = false;
  std::uint32_t type = 0;
  HeldData data;
};

struct Fault {
  std::size_t line = 0;
  std::string_view reason;
};

class Parser {
 public:
  Parser(RegFileLines& lines, bool textIs8Bit, const CodePage& codePage, const RegFileLimits& limits,
         RegFileVisitor& visitor)
      : lines_(lines), textIs8Bit_(textIs8Bit), codePage_(codePage), limits_(limits), visitor_(visitor) {}

  void Run();

 private:
  /// Where values are: below a key, before the first key, or below a key that is left out.
  enum class Under { NoKeyYet, Key, SkippedKey };

  void ReadKey();
  void ReadValue();
  void ReportMalformed(std::size_t number);
  void Deliver(ParsedValue value, std::size_t number);
  bool ParseValue(ParsedValue& value);
  bool ParseData(ParsedValue& value);
  template <typename Add>
  bool ParseQuoted(Add add);
  std::string_view TakeCharacter();
  bool ParseNumber(std::uint32_t& number);
  bool ParseHexType(std::uint32_t& type);
  bool ParseHex(HeldData& data);
  bool ParseByte(HeldData& data);
  bool MoveToContinuation();
  void PassOverContinuations();
  bool RestEndsInBackslash();
  bool RequireEnd();
  Bytes StoredText(Bytes data) const;

  bool Move();
  void ReturnTo(RegFileLines::Mark mark);
  bool Have(std::size_t count);
  void SkipBlanks();
  bool AtEnd() { return at_ >= line_.size() && !Have(1); }
  bool AtEndOrComment() { return AtEnd() || line_[at_] == ';'; }
  bool Accept(char c);
  bool Accept(std::string_view word);
  bool Fail(std::string_view reason);

  RegFileLines& lines_;
  bool textIs8Bit_;
  const CodePage& codePage_;
  const RegFileLimits& limits_;
  RegFileVisitor& visitor_;
  std::string_view line_;  ///< the part of the line that has been read; Have() reads more
  std::size_t at_ = 0;
  Under under_ = Under::NoKeyYet;
  Fault fault_;
  /// The second line of a quoted text, where reading goes on when the value at hand turns out to be malformed. Nothing:
  /// it goes on after the present line.
  std::optional<RegFileLines::Mark> resume_;
};

void Parser::Run() {
  while (Move()) {
    SkipBlanks();
    if (AtEndOrComment()) continue;
    if (line_[at_] == '[') {
      ReadKey();
    } else if (line_[at_] == '"' || line_[at_] == '@') {
      ReadValue();
    } else {
      visitor_.OnProblem(lines_.Number(), "this is neither a key nor a value nor a comment");
    }
  }
  if (lines_.EndsInHalfUnit()) visitor_.OnProblem(lines_.Number(), "the file ends in the middle of a character");
}

void Parser::ReadKey() {
  if (Have(kMaxKeyNameBytes + kBrackets + 1)) {
    under_ = Under::SkippedKey;
    visitor_.OnProblem(lines_.Number(), "the key's name is longer than any key's; its values are left out");
    return;
  }
  const std::size_t close = line_.rfind(']');
  if (close == std::string_view::npos) {
    under_ = Under::SkippedKey;
    visitor_.OnProblem(lines_.Number(), "the key's name has no closing bracket; its values are left out");
    return;
  }
  const std::string_view name = line_.substr(at_ + 1, close - at_ - 1);
  if (name.substr(0, 1) == "-") {
    under_ = Under::SkippedKey;
    visitor_.OnDeleteKey(name.substr(1), lines_.Number());
  } else {
    under_ = Under::Key;
    visitor_.OnKey(name, lines_.Number());
  }
}

void Parser::ReadValue() {
  const std::size_t number = lines_.Number();
  const RegFileLines::Mark start = lines_.Start();
  ParsedValue value(std::min(limits_.held, limits_.data));
  bool isGood = ParseValue(value);
  const std::uint64_t size = value.data.Size();
  if (isGood && under_ == Under::Key && !value.data.IsWhole() && size <= limits_.data) {
    ReturnTo(start);
    Move();
    SkipBlanks();
    value = ParsedValue(limits_.data);
    value.data.Reserve(size);
    isGood = ParseValue(value);
  }
  if (!isGood) {
    ReportMalformed(number);
  } else {
    Deliver(std::move(value), number);
  }
}

void Parser::ReportMalformed(std::size_t number) {
  // A text that ran on into later lines and is followed by nonsense there was meant to end in its own line.
  if (resume_ && fault_.line != number) fault_ = {number, kOpenQuote};
  if (resume_) ReturnTo(*resume_);
  if (under_ != Under::SkippedKey) visitor_.OnProblem(fault_.line, fault_.reason);
}

void Parser::Deliver(ParsedValue value, std::size_t number) {
  if (under_ == Under::SkippedKey) return;
  if (under_ == Under::NoKeyYet) {
    visitor_.OnProblem(number, "the value is before the first key");
  } else if (!value.isNameWhole) {
    visitor_.OnProblem(number, "the value's name has more than " + std::to_string(Hive::kMaxValueNameUnits) +
                                   " characters, and no hive holds such a name");
  } else if (value.isDeletion) {
    visitor_.OnDeleteValue(value.name, number);
  } else if (value.data.Size() > limits_.data) {
    visitor_.OnProblem(number, "the value's data are " + std::to_string(value.data.Size()) +
                                   " bytes long, and no hive holds more than " + std::to_string(limits_.data) +
                                   " in one value");
  } else {
    Bytes data = std::move(value.data).Take();
    if (IsTextInHex(value.type)) data = StoredText(std::move(data));
    visitor_.OnValue(value.name, value.type, data, number);
  }
}

bool Parser::ParseValue(ParsedValue& value) {
  resume_.reset();
  const auto addToName = [&value](std::string_view text) {
    value.isNameWhole &= value.name.size() + text.size() <= kMaxValueNameBytes;
    if (value.isNameWhole) value.name += text;
  };
  if (!Accept('@') && !ParseQuoted(addToName)) return false;
  SkipBlanks();
  if (!Accept('=')) return Fail("there is no \"=\" after the value's name");
  SkipBlanks();
  return ParseData(value);
}

bool Parser::ParseData(ParsedValue& value) {
  if (Accept('-')) {
    value.isDeletion = true;
    return RequireEnd();
  }
  if (!AtEnd() && line_[at_] == '"') {
    value.type = kRegSz;
    if (!ParseQuoted([&value](std::string_view text) { value.data.AddText(text); }) || !RequireEnd()) return false;
    value.data.AddText(kNul);
    return true;
  }
  if (Accept("dword:")) {
    std::uint32_t number = 0;
    SkipBlanks();
    if (!ParseNumber(number)) return Fail("a dword has 1 to 8 hexadecimal digits");
    value.type = kRegDword;
    for (const std::uint8_t byte : NumberBytes(number)) value.data.Add(byte);
    return RequireEnd();
  }
  if (!ParseHexType(value.type)) return Fail("the value is of no known kind");
  if (!ParseHex(value.data)) {
    PassOverContinuations();
    return false;
  }
  return true;
}

// Moves over a quoted text, which may hold raw line ends, and gives it to `add` part by part, in whole characters.
template <typename Add>
bool Parser::ParseQuoted(Add add) {
  ++at_;
  for (;;) {
    if (AtEnd()) {
      add(lines_.LineEnd());
      if (!Move()) return Fail(kOpenQuote);
      if (!resume_) resume_ = lines_.Start();
      continue;
    }
    const std::size_t special = std::min(line_.find_first_of("\"\\", at_), line_.size());
    add(line_.substr(at_, special - at_));
    at_ = special;
    if (special == line_.size()) continue;
    if (line_[at_++] == '"') return true;
    // At the end of a line a backslash is just a backslash.
    add(AtEnd() ? kBackslash : TakeCharacter());
  }
}

std::string_view Parser::TakeCharacter() {
  const std::size_t start = at_++;
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  while (at_ < line_.size() && isContinuation(line_[at_])) ++at_;
  return line_.substr(start, at_ - start);
}

bool Parser::ParseNumber(std::uint32_t& number) {
  std::size_t digits = 0;
  number = 0;
  for (; !AtEnd() && HexDigit(line_[at_]) >= 0; ++at_, ++digits) {
    number = (number << 4) | static_cast<std::uint32_t>(HexDigit(line_[at_]));
  }
  return digits > 0 && digits <= kMaxNumberDigits;
}

// "hex:" or "hex(type):".
bool Parser::ParseHexType(std::uint32_t& type) {
  type = kRegBinary;
  if (Accept("hex:")) return true;
  return Accept("hex(") && ParseNumber(type) && Accept("):");
}

bool Parser::ParseHex(HeldData& data) {
  for (bool byteExpected = true;;) {
    SkipBlanks();
    if (AtEndOrComment()) {
      return byteExpected && data.Size() > 0 ? Fail("the data break off after a comma") : true;
    }
    if (Accept('\\')) {
      if (!MoveToContinuation()) return false;
    } else if (byteExpected) {
      if (!ParseByte(data)) return Fail("there is no hexadecimal byte where one should be");
      byteExpected = false;
    } else if (Accept(',')) {
      byteExpected = true;
    } else {
      return Fail("there is no comma between two bytes");
    }
  }
}

bool Parser::ParseByte(HeldData& data) {
  if (AtEnd()) return false;
  int byte = HexDigit(line_[at_]);
  if (byte < 0) return false;
  ++at_;
  if (!AtEnd() && HexDigit(line_[at_]) >= 0) byte = byte * 16 + HexDigit(line_[at_++]);
  data.Add(static_cast<std::uint8_t>(byte));
  return true;
}

// After a backslash: the next line that is neither empty nor a comment.
bool Parser::MoveToContinuation() {
  if (!RequireEnd()) return false;
  fault_ = {lines_.Number(), "the data break off: the line that continues them is missing"};
  for (;;) {
    if (!Move()) return false;
    SkipBlanks();
    if (AtEndOrComment()) continue;
    if (kStatementStarts.find(line_[at_]) == std::string_view::npos) return true;
    ReturnTo(lines_.Start());
    return false;
  }
}

// The rest of malformed data says nothing on its own: reading goes on after its last line.
void Parser::PassOverContinuations() {
  resume_.reset();
  while (RestEndsInBackslash() && Move()) {
    SkipBlanks();
    if (AtEnd() || kStatementStarts.find(line_[at_]) == std::string_view::npos) continue;
    ReturnTo(lines_.Start());
    return;
  }
}

bool Parser::RestEndsInBackslash() {
  char last = 0;
  for (; !AtEnd(); at_ = line_.size()) {
    const std::size_t found = line_.find_last_not_of(" \t");
    if (found != std::string_view::npos && found >= at_) last = line_[found];
  }
  return last == '\\';
}

bool Parser::RequireEnd() {
  SkipBlanks();
  return AtEndOrComment() || Fail("there is more text after the value");
}

// Text data in hex digits as the registry stores them. An odd number of bytes is not text and stays as it is.
Bytes Parser::StoredText(Bytes data) const {
  if (textIs8Bit_) data = Utf16Bytes(ToUtf16(codePage_.Decode(std::string(data.begin(), data.end()))));
  const std::size_t size = data.size();
  if (size == 0 || size % 2 != 0) return data;
  if (data[size - 2] != 0 || data[size - 1] != 0) data.insert(data.end(), 2, 0);
  return data;
}

bool Parser::Move() {
  at_ = 0;
  const bool moved = lines_.Next();
  line_ = lines_.Text();
  return moved;
}

/// Lets Move() go to the line that begins at `mark`.
void Parser::ReturnTo(RegFileLines::Mark mark) {
  lines_.Return(mark);
  line_ = lines_.Text();
  at_ = 0;
}

/// True when the line has `count` more bytes, which are at hand then.
bool Parser::Have(std::size_t count) {
  while (line_.size() - at_ < count) {
    const bool found = lines_.Extend(at_);
    line_ = lines_.Text();
    at_ = 0;
    if (!found) return false;
  }
  return true;
}

void Parser::SkipBlanks() {
  while (!AtEnd() && IsBlank(line_[at_])) ++at_;
}

bool Parser::Accept(char c) {
  if (AtEnd() || line_[at_] != c) return false;
  ++at_;
  return true;
}

bool Parser::Accept(std::string_view word) {
  if (!Have(word.size()) || !EqualIgnoreCase(line_.substr(at_, word.size()), word)) return false;
  at_ += word.size();
  return true;
}

bool Parser::Fail(std::string_view reason) {
  fault_ = {lines_.Number(), reason};
  return false;
}

}  // namespace

void ReadRegFile(ByteSource& source, const std::string& name, const CodePage& codePage, RegFileVisitor& visitor,
                 const RegFileLimits& limits) {
  RegFileLines lines(source, name, codePage, limits);
  if (lines.Next()) {
    while (lines.Text().size() <= kUnicode5Header.size() && lines.Extend(0)) continue;
  }
  const bool is8Bit = lines.Text() == kRegedit4Header;
  if (!is8Bit && lines.Text() != kUnicode5Header) {
    throw Error("reading a registry file", {name, std::nullopt, 1},
                "this is not a registry file: it does not begin with \"" + std::string(kRegedit4Header) + "\" or \"" +
                    std::string(kUnicode5Header) + "\"");
  }
  Parser(lines, is8Bit, codePage, limits, visitor).Run();
}

void ReadRegFile(std::string_view bytes, const std::string& name, const CodePage& codePage, RegFileVisitor& visitor,
                 const RegFileLimits& limits) {
  TextSource source(bytes);
  ReadRegFile(source, name, codePage, visitor, limits);
}

}  // namespace quillbox
