// SPDX-License-Identifier: GPL-3.0-or-later
// The data of a value while they are read from text: counted to their end, and kept only up to a limit, so that a value
// that is too large or never ends needs no more memory than the limit.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "text/unicode.h"

namespace quillbox {

class HeldData {
 public:
  explicit HeldData(std::uint64_t limit) : limit_(limit) {}

  void Add(std::uint8_t byte) {
    if (size_++ < limit_) bytes_.push_back(byte);
  }
  /// Adds inner text as UTF-16.
  void AddText(std::string_view text) {
    if (size_ >= limit_) {
      size_ += IsAscii(text) ? text.size() * 2 : ToUtf16(text).size() * 2;
    } else if (IsAscii(text)) {
      const std::size_t start = bytes_.size();
      bytes_.resize(start + text.size() * 2);
      for (std::size_t i = 0; i < text.size(); ++i) bytes_[start + i * 2] = static_cast<std::uint8_t>(text[i]);
      size_ += text.size() * 2;
    } else {
      const Bytes units = Utf16Bytes(ToUtf16(text));
      bytes_.insert(bytes_.end(), units.begin(), units.end());
      size_ += units.size();
    }
  }

  /// Makes room for `size` bytes at once, where the size is known.
  void Reserve(std::uint64_t size) { bytes_.reserve(static_cast<std::size_t>(std::min(size, limit_))); }

  std::uint64_t Size() const { return size_; }
  bool IsWhole() const { return size_ == bytes_.size(); }
  /// The data; only when they are whole.
  Bytes Take() && { return std::move(bytes_); }

 private:
  std::uint64_t limit_;
  std::uint64_t size_ = 0;
  Bytes bytes_;
};

}  // namespace quillbox
