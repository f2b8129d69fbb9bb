// SPDX-License-Identifier: GPL-3.0-or-later
// The bytes of a store through two windows: parts of a store are small and mostly one after another, so one read of the
// source serves many of them, and a jump reads no more than it needs. Records and texts take turns, each in their own
// order: with one window only, each record would cost what was read ahead of the texts.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>

#include "mail/store_damage.h"
#include "text/positioned_source.h"

namespace quillbox {

/// Why bytes cannot be had.
struct ReadFault {
  DamageReason reason;
  std::string detail = {};

  StoreDamage At(std::uint64_t offset, StorePart part) const { return {offset, part, reason, detail}; }
};

class StoreInput {
 public:
  /// `source` must outlive the input.
  explicit StoreInput(PositionedSource& source) : source_(source), size_(source.Size()) {}

  std::uint64_t Size() const { return size_; }
  /// The `size` bytes at `offset`, valid until the next call. A fault when there aren't that many, or when the source
  /// fails or has become shorter. Never throws Error.
  std::variant<ByteView, ReadFault> Read(std::uint64_t offset, std::size_t size) {
    if (!windows_[last_].Has(offset, size)) {
      if (auto fault = MakeAvailable(offset, size)) return *std::move(fault);
    }
    return windows_[last_].View(offset, size);
  }
  /// Whether `size` bytes at `offset` are within the file; the reason when they aren't.
  std::optional<ReadFault> OutsideFault(std::uint64_t offset, std::uint64_t size) const;

 private:
  struct Window {
    Bytes bytes;
    std::uint64_t start = 0;  ///< in the file
    std::size_t length = 0;   ///< of what is there
    std::size_t ahead = 0;    ///< how much the last miss read; grows while parts follow each other

    bool Has(std::uint64_t offset, std::size_t size) const {
      return offset >= start && offset - start < length && length - (offset - start) >= size;
    }
    ByteView View(std::uint64_t offset, std::size_t size) const {
      return ByteView(bytes).subspan(static_cast<std::size_t>(offset - start), size);
    }
    /// Whether a part at `offset` goes on where the window ends, or nearly there.
    bool IsFollowedBy(std::uint64_t offset) const;
  };

  /// Has the part in the window that is used last.
  std::optional<ReadFault> MakeAvailable(std::uint64_t offset, std::size_t size);
  /// The window that a part which is in none of them is read into.
  Window& WindowFor(std::uint64_t offset);
  std::optional<ReadFault> Fill(std::uint64_t offset, std::size_t size);
  std::optional<ReadFault> ReadInto(Window& window, std::uint64_t offset, std::size_t size);

  PositionedSource& source_;
  std::uint64_t size_;
  std::array<Window, 2> windows_;
  std::size_t last_ = 0;  ///< the window that was used last
};

}  // namespace quillbox
