// SPDX-License-Identifier: GPL-3.0-or-later
// Messages on their way from the thread that reads them to the one that writes them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "export/background_work.h"

namespace quillbox {

/// `Start` is what the writing needs to begin a message.
template <class Start>
class MessageQueue {
 public:
  /// A message, or the beginning or another part of a long one.
  struct Piece {
    std::optional<Start> start = {};  ///< nothing for a part that goes on
    std::string bytes = {};
    bool ends = false;
  };
  using Put = std::function<void(std::vector<Piece>& pieces)>;

  /// `put` is called on the writing thread. What it throws is thrown by one of the next calls here.
  explicit MessageQueue(Put put) : put_(std::move(put)) {}

  /// Begin, Write for each piece, End; then the next one.
  void Begin(Start start) { pieces_.push_back({.start = std::move(start)}); }
  void Write(std::string_view bytes) {
    if (pieces_.empty()) pieces_.emplace_back();
    pieces_.back().bytes += bytes;
    size_ += bytes.size();
    if (size_ >= kPostedSize) Post();
  }
  void End() {
    if (pieces_.empty()) pieces_.emplace_back();
    pieces_.back().ends = true;
    if (pieces_.size() >= kPostedPieces) Post();
  }
  /// Returns when everything is written.
  void Finish() {
    if (!pieces_.empty()) Post();
    work_.WaitForAll();
  }

 private:
  /// Bytes and messages that are posted together: waking a thread takes as long as writing a small message.
  static constexpr std::size_t kPostedSize = std::size_t{64} * 1024;
  static constexpr std::size_t kPostedPieces = 64;
  static constexpr std::size_t kMostWaiting = std::size_t{2} * 1024 * 1024;

  void Post() {
    work_.Post(std::exchange(size_, 0), [this, pieces = std::exchange(pieces_, {})]() mutable { put_(pieces); });
  }

  Put put_;
  std::vector<Piece> pieces_;          ///< not yet posted
  std::size_t size_ = 0;               ///< their bytes
  BackgroundWork work_{kMostWaiting};  ///< the last member: it has ended before the others go
};

}  // namespace quillbox
