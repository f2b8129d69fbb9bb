// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/reg_file_lines.h"

#include <algorithm>
#include <utility>

#include "registry/reg_file_form.h"
#include "text/byte_order.h"
#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr std::string_view kCrLf = "\r\n";

/// The longest character of any encoding and the longest line end, in bytes.
constexpr std::size_t kLongestCharacter = 4;

std::string SizeText(std::uint64_t bytes) {
  constexpr unsigned kGigabyteBits = 30;
  const std::uint64_t gigabytes = bytes >> kGigabyteBits;
  return gigabytes << kGigabyteBits == bytes ? std::to_string(gigabytes) + " GB" : std::to_string(bytes) + " bytes";
}

bool IsHighSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}

}  // namespace

RegFileLines::RegFileLines(ByteSource& source, std::string name, const CodePage& codePage, const RegFileLimits& limits)
    : source_(source), name_(std::move(name)), codePage_(codePage), limits_(limits) {
  RequireSize(source.Size().value_or(0));
  FillTo(kUtf8Mark.size());
  if (buffer_.starts_with(kUtf16Mark)) {
    encoding_ = Encoding::Utf16;
    at_ = kUtf16Mark.size();
  } else if (buffer_.starts_with(kUtf8Mark)) {
    encoding_ = Encoding::Utf8;
    at_ = kUtf8Mark.size();
  }
}

bool RegFileLines::Next() {
  while (!lineEnded_) TakePiece();
  text_ = lineEnd_ = {};
  FillTo(UnitSize());
  if (Available() < UnitSize()) return false;
  start_ = {base_ + at_, number_};
  ++number_;
  lineEnded_ = false;
  text_ = Decode(TakePiece());
  return true;
}

bool RegFileLines::Extend(std::size_t used) {
  if (lineEnded_) {
    text_.remove_prefix(used);
    return false;
  }
  extended_ = text_.substr(used);
  const std::string_view more = Decode(TakePiece());
  const bool found = !more.empty();
  if (extended_.empty()) {
    text_ = more;
  } else {
    extended_ += more;
    text_ = extended_;
  }
  return found;
}

void RegFileLines::Return(Mark mark) {
  if (mark.offset >= base_ && mark.offset - base_ <= buffer_.size()) {
    at_ = static_cast<std::size_t>(mark.offset - base_);
  } else {
    source_.GoBackTo(mark.offset);
    buffer_.clear();
    base_ = mark.offset;
    at_ = 0;
    sourceEnded_ = false;
  }
  number_ = mark.number;
  lineEnded_ = true;
  text_ = lineEnd_ = {};
}

char16_t RegFileLines::UnitAt(std::size_t offset) const {
  const auto* at = reinterpret_cast<const std::uint8_t*>(buffer_.data() + offset);
  return encoding_ == Encoding::Utf16 ? Load16(at) : *at;
}

void RegFileLines::RequireSize(std::uint64_t size) const {
  if (size <= limits_.file) return;
  throw Error("reading a registry file", {name_, {}, {}},
              "it is larger than " + SizeText(limits_.file) + ", and no registry file of such a size is read");
}

/// Makes `length` bytes available, or all that there are.
void RegFileLines::FillTo(std::size_t length) {
  if (Available() >= length || sourceEnded_) return;
  buffer_.erase(0, at_);
  base_ += at_;
  at_ = 0;
  while (buffer_.size() < length && !sourceEnded_) {
    const std::size_t before = buffer_.size();
    buffer_.resize(before + limits_.piece);
    const std::size_t got = source_.Read({buffer_.data() + before, limits_.piece});
    buffer_.resize(before + got);
    sourceEnded_ = got < limits_.piece;
    RequireSize(base_ + buffer_.size());
  }
}

/// Where in the buffer the line ends; the buffer's size (without half a unit) when that is not in it.
std::size_t RegFileLines::FindLineEnd() const {
  std::size_t end = at_;
  if (encoding_ != Encoding::Utf16) {
    while (end < buffer_.size() && buffer_[end] != '\r' && buffer_[end] != '\n') ++end;
    return end;
  }
  for (; end + 1 < buffer_.size(); end += 2) {
    const char16_t unit = UnitAt(end);
    if (unit == u'\r' || unit == u'\n') break;
  }
  return end;
}

/// How many of the available bytes make whole characters, where more bytes follow.
std::size_t RegFileLines::WholeCharacters() const {
  const std::string_view bytes = std::string_view(buffer_).substr(at_);
  if (encoding_ == Encoding::EightBit) return codePage_.WholeCharacters(bytes);
  if (encoding_ == Encoding::Utf16) {
    const std::size_t size = bytes.size() & ~std::size_t{1};
    return size >= 2 && IsHighSurrogate(UnitAt(at_ + size - 2)) ? size - 2 : size;
  }
  for (std::size_t back = 1; back < std::min(kLongestCharacter, bytes.size()); ++back) {
    if (static_cast<unsigned char>(bytes[bytes.size() - back]) >= 0xC0) return bytes.size() - back;
  }
  return bytes.size();
}

/// The next bytes of the line, and the line's end when they reach to it. CR and LF are never the second byte of a
/// double-byte character, so lines can be divided before they are decoded.
std::string_view RegFileLines::TakePiece() {
  std::size_t end = FindLineEnd();
  if (end + UnitSize() > buffer_.size() && !sourceEnded_) {
    FillTo(std::max(limits_.piece, kLongestCharacter));
    end = FindLineEnd();
  }
  const bool found = end + UnitSize() <= buffer_.size();
  std::size_t length = end - at_;
  if (found) {
    FillTo(length + 2 * UnitSize());
    const bool isCr = UnitAt(at_ + length) == u'\r';
    const std::size_t next = at_ + length + UnitSize();
    const bool isPair = isCr && next + UnitSize() <= buffer_.size() && UnitAt(next) == u'\n';
    lineEnd_ = isPair ? kCrLf : isCr ? kCrLf.substr(0, 1) : kCrLf.substr(1);
  } else if (!sourceEnded_) {
    length = WholeCharacters();
  }
  lineEnded_ = found || sourceEnded_;
  const std::string_view piece = std::string_view(buffer_).substr(at_, length);
  at_ += length + lineEnd_.size() * UnitSize();
  return piece;
}

std::string_view RegFileLines::Decode(std::string_view bytes) {
  if (encoding_ == Encoding::Utf16) return DecodeUtf16(bytes);
  if (IsAscii(bytes)) return bytes;
  if (encoding_ == Encoding::EightBit) {
    decoded_ = codePage_.Decode(bytes);
  } else if (IsInnerText(bytes)) {
    return bytes;
  } else {
    decoded_ = ToUtf8(ToUtf16(bytes));
  }
  return decoded_;
}

std::string_view RegFileLines::DecodeUtf16(std::string_view bytes) {
  decoded_.resize(bytes.size() / 2);
  bool isAscii = true;
  for (std::size_t at = 0; at < decoded_.size(); ++at) {
    decoded_[at] = bytes[at * 2];
    isAscii &= bytes[at * 2 + 1] == 0 && static_cast<unsigned char>(bytes[at * 2]) < 0x80;
  }
  if (!isAscii) {
    decoded_ = ToUtf8(Utf16FromBytes({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}));
  }
  return decoded_;
}

}  // namespace quillbox
