#include <algorithm>
#include <optional>

#include "registry/reg_file.h"
#include "registry/reg_file_form.h"
#include "registry/reg_file_lines.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kMaxNumberDigits = 8;
constexpr std::string_view kStatementStarts = "[\"@";
constexpr std::string_view kOpenQuote = "a quote is not closed";

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
  std::string name;
  bool isDeletion = false;
  std::uint32_t type = 0;
  Bytes data;
};

struct Fault {
  std::size_t line = 0;
  std::string_view reason;
};

class Parser {
 public:
  Parser(RegFileLines& lines, bool textIs8Bit, const CodePage& codePage, RegFileVisitor& visitor)
      : lines_(lines), textIs8Bit_(textIs8Bit), codePage_(codePage), visitor_(visitor) {}

  void Run();

 private:
  /// What becomes of values: they belong to a key, stand before every key, or go with a key that is passed over.
  enum class Under { NoKeyYet, Key, SkippedKey };

  void ReadKey();
  void ReadValue();
  bool ParseValue(ParsedValue& value);
  bool ParseData(ParsedValue& value);
  bool ParseQuoted(std::string& text);
  bool ParseNumber(std::uint32_t& number);
  bool ParseHexType(std::uint32_t& type);
  bool ParseHex(Bytes& data);
  bool ParseByte(Bytes& data);
  bool MoveToContinuation();
  void PassOverContinuations();
  bool RequireEnd();
  Bytes StoredText(Bytes data) const;

  bool Move();
  void SkipBlanks();
  bool AtEnd() const { return at_ >= line_.size(); }
  bool AtEndOrComment() const { return AtEnd() || line_[at_] == ';'; }
  bool Accept(char c);
  bool Accept(std::string_view word);
  bool Fail(std::string_view reason);

  RegFileLines& lines_;
  bool textIs8Bit_;
  const CodePage& codePage_;
  RegFileVisitor& visitor_;
  std::string_view line_;
  std::size_t at_ = 0;
  Under under_ = Under::NoKeyYet;
  Fault fault_;
  RegFileLines::Mark resume_;  ///< where reading goes on when the value at hand turns out to be malformed
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
      visitor_.OnProblem(lines_.Number(), "this is no key, no value and no comment");
    }
  }
}

void Parser::ReadKey() {
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
  resume_ = lines_.Here();
  ParsedValue value;
  if (!ParseValue(value)) {
    // A text that ran on into later lines and is followed by nonsense there was meant to end in its own line.
    if (resume_.number == number && fault_.line != number) fault_ = {number, kOpenQuote};
    lines_.Return(resume_);
    if (under_ != Under::SkippedKey) visitor_.OnProblem(fault_.line, fault_.reason);
  } else if (under_ == Under::NoKeyYet) {
    visitor_.OnProblem(number, "the value stands before the first key");
  } else if (under_ == Under::Key && value.isDeletion) {
    visitor_.OnDeleteValue(value.name, number);
  } else if (under_ == Under::Key) {
    visitor_.OnValue(value.name, value.type, value.data, number);
  }
}

bool Parser::ParseValue(ParsedValue& value) {
  if (!Accept('@') && !ParseQuoted(value.name)) return false;
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
    std::string text;
    if (!ParseQuoted(text) || !RequireEnd()) return false;
    value.type = kRegSz;
    value.data = Utf16Bytes(ToUtf16(text));
    value.data.insert(value.data.end(), 2, 0);
    return true;
  }
  if (Accept("dword:")) {
    std::uint32_t number = 0;
    SkipBlanks();
    if (!ParseNumber(number)) return Fail("a dword has 1 to 8 hexadecimal digits");
    value.type = kRegDword;
    for (unsigned shift = 0; shift < 32; shift += 8) value.data.push_back(static_cast<std::uint8_t>(number >> shift));
    return RequireEnd();
  }
  if (!ParseHexType(value.type)) return Fail("the value is of no known kind");
  if (!ParseHex(value.data)) {
    PassOverContinuations();
    return false;
  }
  if (IsTextInHex(value.type)) value.data = StoredText(std::move(value.data));
  return true;
}

// Moves over a quoted text, which may hold raw line ends.
bool Parser::ParseQuoted(std::string& text) {
  ++at_;
  for (;;) {
    const std::size_t special = std::min(line_.find_first_of("\"\\", at_), line_.size());
    text += line_.substr(at_, special - at_);
    at_ = special + 1;
    if (special < line_.size() && line_[special] == '"') return true;
    if (special + 1 < line_.size()) {
      text += line_[at_++];
      continue;
    }
    if (special < line_.size()) text += '\\';
    text += lines_.LineEnd();
    if (!Move()) return Fail(kOpenQuote);
  }
}

bool Parser::ParseNumber(std::uint32_t& number) {
  const std::size_t start = at_;
  number = 0;
  for (; !AtEnd() && HexDigit(line_[at_]) >= 0; ++at_) {
    number = (number << 4) | static_cast<std::uint32_t>(HexDigit(line_[at_]));
  }
  return at_ > start && at_ - start <= kMaxNumberDigits;
}

// "hex:" or "hex(type):".
bool Parser::ParseHexType(std::uint32_t& type) {
  type = kRegBinary;
  if (Accept("hex:")) return true;
  return Accept("hex(") && ParseNumber(type) && Accept("):");
}

bool Parser::ParseHex(Bytes& data) {
  for (bool byteExpected = true;;) {
    SkipBlanks();
    if (AtEndOrComment()) {
      return byteExpected && !data.empty() ? Fail("the data break off after a comma") : true;
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

bool Parser::ParseByte(Bytes& data) {
  if (AtEnd()) return false;
  int byte = HexDigit(line_[at_]);
  if (byte < 0) return false;
  ++at_;
  if (!AtEnd() && HexDigit(line_[at_]) >= 0) byte = byte * 16 + HexDigit(line_[at_++]);
  data.push_back(static_cast<std::uint8_t>(byte));
  return true;
}

// After a backslash: the next line that is neither empty nor a comment.
bool Parser::MoveToContinuation() {
  if (!RequireEnd()) return false;
  fault_ = {lines_.Number(), "the data break off: the line that continues them is missing"};
  for (;;) {
    const RegFileLines::Mark before = lines_.Here();
    if (!Move()) return false;
    SkipBlanks();
    if (AtEndOrComment()) continue;
    if (kStatementStarts.find(line_[at_]) == std::string_view::npos) return true;
    lines_.Return(before);
    line_ = {};
    return false;
  }
}

// The rest of malformed data says nothing on its own: reading goes on after its last line.
void Parser::PassOverContinuations() {
  for (;;) {
    resume_ = lines_.Here();
    const std::size_t last = line_.find_last_not_of(" \t");
    if (last == std::string_view::npos || line_[last] != '\\' || !Move()) return;
    SkipBlanks();
    if (!AtEnd() && kStatementStarts.find(line_[at_]) != std::string_view::npos) return;
  }
}

bool Parser::RequireEnd() {
  SkipBlanks();
  return AtEndOrComment() || Fail("there is more text after the value");
}

// Text data in hex digits as the registry stores them. An odd number of bytes is no text and stays what it is.
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
  line_ = moved ? lines_.Text() : std::string_view{};
  return moved;
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
  if (!EqualIgnoreCase(line_.substr(std::min(at_, line_.size()), word.size()), word)) return false;
  at_ += word.size();
  return true;
}

bool Parser::Fail(std::string_view reason) {
  fault_ = {lines_.Number(), reason};
  return false;
}

}  // namespace

void ReadRegFile(std::string_view bytes, const std::string& name, const CodePage& codePage, RegFileVisitor& visitor) {
  RegFileLines lines(bytes, codePage);
  const std::string_view header = lines.Next() ? lines.Text() : std::string_view{};
  if (header != kRegedit4Header && header != kUnicode5Header) {
    throw Error("reading a registry file", {name, std::nullopt, 1},
                "this is no registry file: it does not begin with \"" + std::string(kRegedit4Header) + "\" or \"" +
                    std::string(kUnicode5Header) + "\"");
  }
  Parser(lines, header == kRegedit4Header, codePage, visitor).Run();
}

}  // namespace quillbox
