// The bytes of a store through a window: parts of a store are small and mostly one after another, so one read of the
// source serves many of them, and a jump reads no more than it needs.
#pragma once

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
  std::variant<ByteView, ReadFault> Read(std::uint64_t offset, std::size_t size);
  /// Whether `size` bytes at `offset` are within the file; the reason when they aren't.
  std::optional<ReadFault> OutsideFault(std::uint64_t offset, std::uint64_t size) const;

 private:
  bool Has(std::uint64_t offset, std::size_t size) const;
  std::optional<ReadFault> Fill(std::uint64_t offset, std::size_t size);
  std::optional<ReadFault> ReadFrom(std::uint64_t offset, std::size_t size);

  PositionedSource& source_;
  std::uint64_t size_;
  Bytes window_;
  std::uint64_t start_ = 0;
  std::size_t length_ = 0;
  std::size_t ahead_ = 0;  ///< how much the last miss read; grows while parts follow each other
};

}  // namespace quillbox
