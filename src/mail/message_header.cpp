// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/message_header.h"

#include <algorithm>
#include <array>

#include "mail/header_charset.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

struct FieldRow {
  std::string_view name;
  std::string MessageHeader::*to;
};

constexpr FieldRow kFields[] = {{"Subject", &MessageHeader::subject},
                                {"From", &MessageHeader::from},
                                {"Date", &MessageHeader::date},
                                {"Message-ID", &MessageHeader::messageId},
                                {"Newsgroups", &MessageHeader::newsgroups}};

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && (IsBlank(text.back()) || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

/// The first line of `text`, without its end; `text` goes on after it.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool IsFieldNameCharacter(char c) {
  return c > ' ' && c < 0x7F && c != ':';
}

/// The length of the field's name at the start of `line`; 0 when there is none.
std::size_t FieldNameLength(std::string_view line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || colon == 0) return 0;
  const std::string_view name = line.substr(0, colon);
  return std::all_of(name.begin(), name.end(), IsFieldNameCharacter) ? colon : 0;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char upper = AsciiUpper(c);
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::string DecodeQ(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape =
        text[i] == '=' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0;
    if (isEscape) {
      bytes += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      bytes += text[i] == '_' ? ' ' : text[i];
    }
  }
  return bytes;
}

std::string DecodeBase64(std::string_view text) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char c : text) {
    const std::size_t digit = kDigits.find(c);
    if (digit == std::string_view::npos) continue;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

/// "=?charset?Q?text?=" at the start of a text.
struct EncodedWord {
  std::string_view charset;
  std::string bytes;
  std::size_t length;  ///< with its marks
};

std::optional<EncodedWord> ParseWord(std::string_view text) {
  if (!text.starts_with("=?")) return std::nullopt;
  const std::size_t charsetEnd = text.find('?', 2);
  if (charsetEnd == std::string_view::npos || charsetEnd + 2 >= text.size() || text[charsetEnd + 2] != '?') {
    return std::nullopt;
  }
  const std::size_t end = text.find("?=", charsetEnd + 3);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view encoded = text.substr(charsetEnd + 3, end - charsetEnd - 3);
  const char form = AsciiUpper(text[charsetEnd + 1]);
  if ((form != 'Q' && form != 'B') || encoded.find('\n') != std::string_view::npos) return std::nullopt;
  // RFC 2231 may put a language behind the charset.
  std::string_view charset = text.substr(2, charsetEnd - 2);
  charset = charset.substr(0, charset.find('*'));
  return EncodedWord{charset, form == 'Q' ? DecodeQ(encoded) : DecodeBase64(encoded), end + 2};
}

std::string DecodePlain(std::string_view bytes, const CodePage& page) {
  if (IsInnerText(bytes)) return std::string(bytes);
  return page.Decode(bytes);
}

/// Joins words and the text between them.
class WordDecoder {
 public:
  explicit WordDecoder(const CodePage& page) : page_(page) {}

  DecodedText Run(std::string_view raw) {
    while (!raw.empty()) {
      if (const auto word = ParseWord(raw)) {
        AddWord(*word, raw.substr(0, word->length));
        raw.remove_prefix(word->length);
      } else {
        const std::size_t next = raw.find("=?", 1);
        plain_ += raw.substr(0, next);
        raw.remove_prefix(std::min(raw.size(), next));
      }
    }
    Flush();
    result_.text += DecodePlain(plain_, page_);
    return std::move(result_);
  }

 private:
  void AddWord(const EncodedWord& word, std::string_view asItCame) {
    // Blanks between two words are not part of the text; a character may begin in one and end in the next.
    const bool onlyBlanks = std::all_of(plain_.begin(), plain_.end(), IsBlank);
    if (!charset_.empty() && onlyBlanks && EqualIgnoreCase(charset_, word.charset)) {
      plain_.clear();
    } else {
      const bool followsWord = !charset_.empty() && onlyBlanks;
      Flush();
      if (!followsWord) result_.text += DecodePlain(plain_, page_);
      plain_.clear();
      charset_ = word.charset;
    }
    bytes_ += word.bytes;
    asItCame_ += asItCame;
  }

  void Flush() {
    if (charset_.empty()) return;
    if (const auto text = DecodeCharset({charset_, bytes_})) {
      result_.text += *text;
    } else {
      result_.text += DecodePlain(asItCame_, page_);
      result_.isComplete = false;
    }
    charset_.clear();
    bytes_.clear();
    asItCame_.clear();
  }

  const CodePage& page_;
  DecodedText result_;
  std::string plain_;                       ///< since the last word
  std::string charset_, bytes_, asItCame_;  ///< words of one charset that have not been decoded yet
};

}  // namespace

MessageHeader ParseHeader(std::string_view text) {
  MessageHeader header;
  text = text.substr(0, kMaxHeaderSize);
  std::string* field = nullptr;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    if (line.empty()) break;
    if (IsBlank(line.front())) {
      if (field != nullptr) *field += (field->empty() ? "" : " ") + std::string(TrimBlanks(line));
      continue;
    }
    field = nullptr;
    const std::string_view name = line.substr(0, FieldNameLength(line));
    for (const FieldRow& row : kFields) {
      // Of a field that is there twice the first counts.
      if (name.size() != row.name.size() || !EqualIgnoreCase(name, row.name) || !(header.*row.to).empty()) continue;
      field = &(header.*row.to);
      *field = TrimBlanks(line.substr(name.size() + 1));
    }
  }
  return header;
}

void HeaderCollector::Add(std::string_view piece) {
  if (complete_) return;
  const std::size_t checked = text_.size() < 3 ? 0 : text_.size() - 3;
  text_ += piece.substr(0, kMaxHeaderSize - text_.size());
  complete_ = text_.size() == kMaxHeaderSize || text_.find("\n\r\n", checked) != std::string::npos ||
              text_.find("\n\n", checked) != std::string::npos;
}

bool LooksLikeHeader(std::string_view start) {
  return FieldNameLength(TakeLine(start)) != 0;
}

DecodedText DecodeWords(std::string_view raw, const CodePage& page) {
  return WordDecoder(page).Run(raw);
}

Mailbox ParseMailbox(std::string_view field) {
  Mailbox mailbox;
  bool quoted = false;
  int comments = 0;
  std::string* to = &mailbox.name;
  std::string comment;
  bool hasAngle = false;
  for (std::size_t i = 0; i < field.size(); ++i) {
    char c = field[i];
    if (c == '\\' && (quoted || comments > 0) && i + 1 < field.size()) {
      c = field[++i];
    } else if (c == '"' && comments == 0) {
      quoted = !quoted;
      continue;
    } else if (!quoted && c == '(') {
      if (comments++ == 0) continue;
    } else if (!quoted && c == ')' && comments > 0) {
      if (--comments == 0) continue;
    } else if (!quoted && comments == 0 && c == '<') {
      hasAngle = true;
      to = &mailbox.address;
      continue;
    } else if (!quoted && comments == 0 && (c == '>' || c == ',')) {
      break;
    }
    (comments > 0 ? comment : *to) += c;
  }
  mailbox.name = TrimBlanks(mailbox.name);
  if (!hasAngle) {
    // "ann@example.com (Ann)"
    mailbox.address = mailbox.name;
    mailbox.name = TrimBlanks(comment);
  }
  mailbox.address = TrimBlanks(mailbox.address);
  return mailbox;
}

void CompleteFromHeader(StoredMessage& message, const MessageHeader& header) {
  const auto complete = [](std::string& text, const std::string& from) {
    if (text.empty()) text = from;
  };
  complete(message.subject, header.subject);
  complete(message.messageId, header.messageId);
  if (message.senderAddress.empty()) {
    Mailbox sender = ParseMailbox(header.from);
    message.senderAddress = std::move(sender.address);
    complete(message.senderName, sender.name);
  }
  if (message.sent && *message.sent != 0) return;
  if (const auto sent = ParseMailDate(header.date)) message.sent = FileTimeOfUnix(*sent);
}

}  // namespace quillbox
