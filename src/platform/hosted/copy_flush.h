// SPDX-License-Identifier: GPL-3.0-or-later
// Flushes a copy on a second thread: the flush takes most of a copy's time, and the next file can be read meanwhile.
#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>

#include "platform/hosted/copy_io.h"

namespace quillbox {

/// A written file on its way to the disk. It gets its name when its bytes are there; when that fails, nothing of it is
/// left. Destroyed early, it waits for the end.
class CopyFlush {
 public:
  /// `io` must outlive the flush.
  CopyFlush(std::unique_ptr<NewFile> file, CopyIo& io);
  CopyFlush(const CopyFlush&) = delete;
  CopyFlush& operator=(const CopyFlush&) = delete;

  /// True when the flush has ended, after at most `time`.
  bool EndsWithin(std::chrono::milliseconds time) const;
  /// Waits for the end; the error, if any. To be called once.
  std::error_code Result() { return end_.get(); }

 private:
  std::packaged_task<std::error_code()> task_;
  std::future<std::error_code> end_;
  std::jthread thread_;  ///< the last member: it has ended before the others go
};

}  // namespace quillbox
