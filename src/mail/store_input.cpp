// SPDX-License-Identifier: GPL-3.0-or-later
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

std::optional<ReadFault> StoreInput::MakeAvailable(std::uint64_t offset, std::size_t size) {
  if (auto fault = OutsideFault(offset, size)) return fault;
  if (!windows_[1 - last_].Has(offset, size)) return Fill(offset, size);
  last_ = 1 - last_;
  return std::nullopt;
}

bool StoreInput::Window::IsFollowedBy(std::uint64_t offset) const {
  return length != 0 && offset >= start && offset - start <= length + kSmallestWindow;
}

StoreInput::Window& StoreInput::WindowFor(std::uint64_t offset) {
  if (!windows_[last_].IsFollowedBy(offset)) last_ = 1 - last_;
  return windows_[last_];
}

std::optional<ReadFault> StoreInput::Fill(std::uint64_t offset, std::size_t size) {
  Window& window = WindowFor(offset);
  window.ahead = window.IsFollowedBy(offset) ? std::min(window.ahead * 2, kLargestWindow) : kSmallestWindow;
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(std::max(window.ahead, size), size_ - offset));
  auto fault = ReadInto(window, offset, wanted);
  // A place further on that cannot be read must not take this one with it.
  if (fault && wanted > size) fault = ReadInto(window, offset, size);
  if (!fault && window.length < size) return ReadFault{DamageReason::Shrunk};
  return fault;
}

std::optional<ReadFault> StoreInput::ReadInto(Window& window, std::uint64_t offset, std::size_t size) {
  window.length = 0;
  if (window.bytes.size() < size) window.bytes.resize(size);
  try {
    window.length = source_.ReadAt(offset, std::span(window.bytes).first(size));
    window.start = offset;
    return std::nullopt;
  } catch (const Error& error) {
    return ReadFault{DamageReason::Unreadable, error.Why()};
  }
}

}  // namespace quillbox
