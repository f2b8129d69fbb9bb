// SPDX-License-Identifier: GPL-3.0-or-later
// How far an export is, for the person who waits: messages, bytes, and the time that is left.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "platform/dialogs.h"

namespace quillbox {

/// Thrown when the person has cancelled: through readers that collect other errors and go on.
struct ExportCancelled {};

/// What there is to do, or was done.
struct ExportAmount {
  std::uint64_t messages = 0;
  std::uint64_t bytes = 0;
};

/// "1.2 GB", "340 MB", "12 KB".
std::string SizeText(std::uint64_t bytes);

class ExportProgress {
 public:
  /// `shown` must outlive this; it is asked every so many milliseconds.
  ExportProgress(Progress& shown, ExportAmount total, std::chrono::milliseconds shownEvery);

  /// Begins a store of so many bytes, whose messages count for them evenly.
  void BeginStore(const std::string& folder, std::uint64_t size, std::uint64_t messages);
  void MessageDone();
  void EndStore();
  /// Shows how far it is, when it is time to. Throws ExportCancelled.
  void Tick();

 private:
  using Clock = std::chrono::steady_clock;

  std::string Text(std::uint64_t bytes) const;
  std::string TimeLeft(std::uint64_t bytes) const;

  Progress& shown_;
  ExportAmount total_;
  std::chrono::milliseconds shownEvery_;
  ExportAmount done_;
  std::string folder_;
  std::uint64_t storeSize_ = 0, storeMessages_ = 0, storeDone_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;  ///< when it is shown again
};

}  // namespace quillbox
