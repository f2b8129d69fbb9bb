// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a mailbox file back while it is being written, on a thread of its own: what was written a moment ago is still
// in the memory, and the export does not wait for it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/file_system.h"

namespace quillbox {

class MboxCheck {
 public:
  /// `file` must outlive the check, and let itself be read while it is written.
  explicit MboxCheck(FileWriter& file);
  /// Ends the reading, wherever it is.
  ~MboxCheck();
  MboxCheck(const MboxCheck&) = delete;
  MboxCheck& operator=(const MboxCheck&) = delete;

  /// So many bytes of the file are written by now. From any thread.
  void Written(std::uint64_t size);

  /// After the last byte: the first half of the digest of each message, in the file's order; none when the file is not
  /// a mailbox file. `tick` is called while this waits. Throws Error when the file cannot be read.
  std::vector<std::uint64_t> Digests(const std::function<void()>& tick);

 private:
  class Source;

  void Run();
  std::uint64_t WaitForMoreThan(std::uint64_t size);

  FileWriter& file_;
  std::vector<std::uint64_t> digests_;
  std::exception_ptr fault_;

  std::mutex mutex_;  ///< of what follows
  std::condition_variable changed_;
  std::uint64_t size_ = 0;
  bool isWhole_ = false;  ///< nothing more will be written
  bool isRead_ = false;

  std::thread thread_;
};

}  // namespace quillbox
