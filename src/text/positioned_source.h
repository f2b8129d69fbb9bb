// SPDX-License-Identifier: GPL-3.0-or-later
// Where a reader gets bytes from whose places it learns on the way: a file that may be larger than the memory, or bytes
// in memory. What is read from the start to the end in one go has ByteSource of `registry` instead.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "text/unicode.h"

namespace quillbox {

class PositionedSource {
 public:
  PositionedSource() = default;
  PositionedSource(const PositionedSource&) = delete;
  PositionedSource& operator=(const PositionedSource&) = delete;
  virtual ~PositionedSource() = default;

  /// How many bytes there are. Must not change while the source is read, even if the file behind it does.
  virtual std::uint64_t Size() const = 0;
  /// Fills `buffer` with the bytes from `offset` on, whole unless they end first; how many were read. Throws Error.
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) = 0;
};

/// Bytes in memory, which must outlive the source.
class MemorySource final : public PositionedSource {
 public:
  explicit MemorySource(ByteView bytes) : bytes_(bytes) {}

  std::uint64_t Size() const override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    if (offset >= bytes_.size()) return 0;
    const ByteView rest = bytes_.subspan(static_cast<std::size_t>(offset));
    const std::size_t length = std::min(rest.size(), buffer.size());
    std::copy_n(rest.begin(), length, buffer.begin());
    return length;
  }

 private:
  ByteView bytes_;
};

}  // namespace quillbox
