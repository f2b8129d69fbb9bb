// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/inspection_progress.h"

#include <algorithm>

#include "text/error.h"

namespace quillbox {

void InspectionProgress::Begin(const std::string& text, std::uint64_t bytes) {
  before_ += step_;
  text_ = text;
  step_ = bytes;
  done_ = 0;
  Advance(0);
}

void InspectionProgress::Advance(std::uint64_t bytes) {
  done_ += bytes;
  const auto now = Clock::now();
  if (now < next_) return;
  next_ = now + shownEvery_;
  if (!shown_.Update(text_, std::min(before_ + std::min(done_, step_), total_), total_)) throw InspectionCancelled();
}

std::size_t InspectedSource::ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) {
  const std::size_t length = file_.ReadAt(offset, buffer);
  progress_.Advance(length);
  return length;
}

std::size_t SequentialSource::Read(std::span<char> buffer) {
  const std::size_t length = source_.ReadAt(at_, {reinterpret_cast<std::uint8_t*>(buffer.data()), buffer.size()});
  at_ += length;
  return length;
}

Bytes ReadWhole(PositionedSource& source) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  Bytes bytes(static_cast<std::size_t>(source.Size()));
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t length = source.ReadAt(at, std::span(bytes).subspan(at, std::min(kPiece, bytes.size() - at)));
    if (length == 0) throw Error("reading a file", {{}, at, {}}, "it has become shorter while it was read");
    at += length;
  }
  return bytes;
}

}  // namespace quillbox
