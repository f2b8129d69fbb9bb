#include "registry/reg_file_lines.h"

#include <algorithm>

#include "registry/reg_file_form.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::string_view kCrLf = "\r\n";

}  // namespace

RegFileLines::RegFileLines(std::string_view bytes, const CodePage& codePage) : bytes_(bytes), codePage_(codePage) {
  if (bytes.substr(0, kUtf16Mark.size()) == kUtf16Mark) {
    encoding_ = Encoding::Utf16;
    offset_ = kUtf16Mark.size();
    bytes_ = bytes.substr(0, bytes.size() & ~std::size_t{1});
  } else if (bytes.substr(0, kUtf8Mark.size()) == kUtf8Mark) {
    encoding_ = Encoding::Utf8;
    offset_ = kUtf8Mark.size();
  }
}

bool RegFileLines::Next() {
  if (offset_ >= bytes_.size()) return false;
  ++number_;
  if (encoding_ == Encoding::Utf16) {
    NextUtf16();
  } else {
    NextBytes();
  }
  return true;
}

void RegFileLines::Return(Mark mark) {
  offset_ = mark.offset;
  number_ = mark.number;
}

char16_t RegFileLines::UnitAt(std::size_t offset) const {
  return static_cast<char16_t>(static_cast<unsigned char>(bytes_[offset]) |
                               (static_cast<unsigned char>(bytes_[offset + 1]) << 8));
}

void RegFileLines::NextUtf16() {
  decoded_.clear();
  bool ascii = true;
  std::size_t end = offset_;
  for (; end < bytes_.size(); end += 2) {
    const char16_t unit = UnitAt(end);
    if (unit == u'\r' || unit == u'\n') break;
    if (unit >= 0x80) ascii = false;
    decoded_ += static_cast<char>(unit & 0x7F);
  }
  if (!ascii) {
    std::u16string units;
    units.reserve((end - offset_) / 2);
    for (std::size_t at = offset_; at < end; at += 2) units += UnitAt(at);
    decoded_ = ToUtf8(units);
  }
  text_ = decoded_;
  lineEnd_ = {};
  offset_ = end;
  if (end == bytes_.size()) return;
  const bool pair = UnitAt(end) == u'\r' && end + 2 < bytes_.size() && UnitAt(end + 2) == u'\n';
  lineEnd_ = pair ? kCrLf : UnitAt(end) == u'\r' ? kCrLf.substr(0, 1) : kCrLf.substr(1);
  offset_ += lineEnd_.size() * 2;
}

// CR and LF are never the second byte of a double-byte character, so lines can be told before they are decoded.
void RegFileLines::NextBytes() {
  const std::size_t end = std::min(bytes_.find_first_of(kCrLf, offset_), bytes_.size());
  text_ = bytes_.substr(offset_, end - offset_);
  lineEnd_ = bytes_.substr(end, bytes_.substr(end, 2) == kCrLf ? 2 : 1);
  offset_ = end + lineEnd_.size();
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(text_.begin(), text_.end(), isAscii)) return;
  if (encoding_ == Encoding::EightBit) {
    decoded_ = codePage_.Decode(text_);
  } else if (IsInnerText(text_)) {
    return;
  } else {
    decoded_ = ToUtf8(ToUtf16(text_));
  }
  text_ = decoded_;
}

}  // namespace quillbox
