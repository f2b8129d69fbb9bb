#include "mail/store_input.h"

#include <algorithm>

#include "text/error.h"

namespace quillbox {
namespace {

// What a miss after a jump reads, and what one reads at most when the parts follow each other.
constexpr std::size_t kSmallestWindow = std::size_t{4} * 1024;
constexpr std::size_t kLargestWindow = std::size_t{256} * 1024;

}  // namespace

std::optional<ReadFault> StoreInput::OutsideFault(std::uint64_t offset, std::uint64_t size) const {
  if (offset >= size_) return ReadFault{DamageReason::OutsideFile};
  if (size_ - offset < size) return ReadFault{DamageReason::CutOff};
  return std::nullopt;
}

std::variant<ByteView, ReadFault> StoreInput::Read(std::uint64_t offset, std::size_t size) {
  if (auto fault = OutsideFault(offset, size)) return *fault;
  if (!Has(offset, size)) {
    if (auto fault = Fill(offset, size)) return *fault;
  }
  return ByteView(window_).subspan(static_cast<std::size_t>(offset - start_), size);
}

bool StoreInput::Has(std::uint64_t offset, std::size_t size) const {
  return offset >= start_ && offset - start_ <= length_ && length_ - (offset - start_) >= size;
}

std::optional<ReadFault> StoreInput::Fill(std::uint64_t offset, std::size_t size) {
  const bool follows = length_ != 0 && offset >= start_ && offset - start_ <= length_ + kSmallestWindow;
  ahead_ = follows ? std::min(ahead_ * 2, kLargestWindow) : kSmallestWindow;
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(std::max(ahead_, size), size_ - offset));
  auto fault = ReadFrom(offset, wanted);
  // A place further on that cannot be read must not take this one with it.
  if (fault && wanted > size) fault = ReadFrom(offset, size);
  if (!fault && length_ < size) return ReadFault{DamageReason::Shrunk};
  return fault;
}

std::optional<ReadFault> StoreInput::ReadFrom(std::uint64_t offset, std::size_t size) {
  length_ = 0;
  if (window_.size() < size) window_.resize(size);
  try {
    length_ = source_.ReadAt(offset, std::span(window_).first(size));
    start_ = offset;
    return std::nullopt;
  } catch (const Error& error) {
    return ReadFault{DamageReason::Unreadable, error.Why()};
  }
}

}  // namespace quillbox
