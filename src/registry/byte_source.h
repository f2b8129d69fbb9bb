// SPDX-License-Identifier: GPL-3.0-or-later
// Where a reader of this layer gets its bytes from: a file that may be larger than the memory, or text in memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace quillbox {

/// Bytes that are read from their start, a piece at a time.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// How many bytes there are, as far as that is known before they are read.
  virtual std::optional<std::uint64_t> Size() const = 0;
  /// Fills `buffer` from its start, whole unless the bytes end first; how many were read. Throws Error.
  virtual std::size_t Read(std::span<char> buffer) = 0;
  /// Lets the next Read start at `offset`, counted from the start, which was read before. Throws Error.
  virtual void GoBackTo(std::uint64_t offset) = 0;
};

/// Bytes in memory, which must outlive the source.
class TextSource final : public ByteSource {
 public:
  explicit TextSource(std::string_view bytes) : bytes_(bytes) {}

  std::optional<std::uint64_t> Size() const override { return bytes_.size(); }
  std::size_t Read(std::span<char> buffer) override {
    const std::size_t length = bytes_.substr(at_).copy(buffer.data(), buffer.size());
    at_ += length;
    return length;
  }
  void GoBackTo(std::uint64_t offset) override { at_ = std::min<std::size_t>(offset, bytes_.size()); }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
};

}  // namespace quillbox
