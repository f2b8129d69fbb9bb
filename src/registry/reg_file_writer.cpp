// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <utility>

#include "registry/reg_file.h"
#include "registry/reg_file_form.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::size_t kLastColumn = 77;  ///< a line of hex digits is broken once it has reached this length
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kContinuation = "\\\r\n  ";
constexpr std::size_t kIndent = 2;

std::size_t LengthInUnits(std::string_view text) {
  return IsAscii(text) ? text.size() : ToUtf16(text).size();
}

std::string Quoted(std::string_view text) {
  std::string quoted;
  quoted.reserve(text.size() + 2);
  quoted += '"';
  for (char c : text) {
    if (c == '\\' || c == '"') quoted += '\\';
    quoted += c;
  }
  quoted += '"';
  return quoted;
}

std::string TextUpToNul(ByteView data) {
  std::u16string units = Utf16FromBytes(data);
  units.resize(std::min(units.find(u'\0'), units.size()));
  return ToUtf8(units);
}

std::string HexPrefix(std::uint32_t type) {
  if (type == kRegBinary) return "hex:";
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "hex(%x):", static_cast<unsigned>(type));
  return text.data();
}

std::string DwordText(ByteView data) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "dword:%08x", static_cast<unsigned>(Load32(data.data())));
  return text.data();
}

}  // namespace

RegFileWriter::RegFileWriter(RegFileForm form, const CodePage& codePage) : form_(form), codePage_(codePage) {
  if (form_ == RegFileForm::Regedit4) {
    Put(kRegedit4Header);
  } else {
    out_ = kUtf16Mark;
    Put(kUnicode5Header);
  }
  Put(kLineEnd);
}

void RegFileWriter::Key(std::string_view fullName) {
  currentKey_ = fullName;
  Put("\r\n[");
  if (!Put(fullName)) NoteLoss("");
  Put("]\r\n");
}

void RegFileWriter::Value(std::string_view name, std::uint32_t type, ByteView data) {
  const std::string quotedName = name.empty() ? std::string(1, '@') : Quoted(name);
  bool held = Put(quotedName);
  Put("=");
  if (type == kRegSz) {
    held &= Put(Quoted(TextUpToNul(data)));
  } else if (type == kRegDword && data.size() == 4) {
    Put(DwordText(data));
  } else {
    const std::string prefix = HexPrefix(type);
    Put(prefix);
    const std::size_t column = LengthInUnits(quotedName) + 1 + prefix.size();
    if (form_ == RegFileForm::Regedit4 && IsTextInHex(type)) {
      PutHex(column, ShownText(data, held));
    } else {
      PutHex(column, data);
    }
  }
  Put(kLineEnd);
  if (!held) NoteLoss(quotedName);
}

std::string RegFileWriter::Take() {
  return std::exchange(out_, {});
}

std::string RegFileWriter::Finish() {
  Put(kLineEnd);
  return Take();
}

void RegFileWriter::PutHex(std::size_t column, ByteView data) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(data.size() * 3 + data.size() / 20 * kContinuation.size());
  for (std::size_t i = 0; i < data.size(); ++i) {
    text += kDigits[data[i] >> 4];
    text += kDigits[data[i] & 0xF];
    if (i + 1 == data.size()) break;
    text += ',';
    column += 3;
    if (column >= kLastColumn) {
      text += kContinuation;
      column = kIndent;
    }
  }
  Put(text);
}

Bytes RegFileWriter::ShownText(ByteView data, bool& held) {
  if (data.size() % 2 != 0) held = false;
  const std::string text = ToUtf8(Utf16FromBytes(data));
  std::optional<std::string> bytes = codePage_.Encode(text);
  if (!bytes) {
    held = false;
    bytes = codePage_.EncodeLossy(text);
  }
  return Bytes(bytes->begin(), bytes->end());
}

bool RegFileWriter::Put(std::string_view text) {
  if (form_ == RegFileForm::Unicode5) {
    if (IsAscii(text)) {
      const std::size_t start = out_.size();
      out_.resize(start + text.size() * 2);
      for (std::size_t i = 0; i < text.size(); ++i) out_[start + i * 2] = text[i];
    } else {
      const Bytes bytes = Utf16Bytes(ToUtf16(text));
      out_.append(bytes.begin(), bytes.end());
    }
    return true;
  }
  if (IsAscii(text)) {
    out_ += text;
    return true;
  }
  if (const std::optional<std::string> bytes = codePage_.Encode(text)) {
    out_ += *bytes;
    return true;
  }
  out_ += codePage_.EncodeLossy(text);
  return false;
}

void RegFileWriter::NoteLoss(std::string_view quotedName) {
  if (holdsEverything_) {
    firstLoss_.append("[").append(currentKey_).append("]");
    if (!quotedName.empty()) firstLoss_.append(" ").append(quotedName);
  }
  holdsEverything_ = false;
}

}  // namespace quillbox
