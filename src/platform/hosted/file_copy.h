// SPDX-License-Identifier: GPL-3.0-or-later
// Reads one file of the host into a file in the making: whole, and only what the source held at one moment. Where the
// user agrees, places that the disk cannot read become zeros; a bad sector then costs one sector.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/hosted/copy_io.h"
#include "platform/hosted/disk_fault.h"

namespace quillbox {

/// Both ends of a copy. What the two functions throw is a std::system_error.
struct CopyEnds {
  std::function<HostFile()> openSource;
  std::function<std::unique_ptr<NewFile>()> createTarget;
};

/// Why a copy failed, by the end that it failed at.
class CopyFault : public std::exception {
 public:
  enum class At { Source, Target };
  CopyFault(At at, const std::error_code& code) : at_(at), code_(code), why_(ReasonOf(code)) {}
  CopyFault(At at, std::string why) : at_(at), why_(std::move(why)) {}

  At End() const { return at_; }
  /// The system's error; none for a reason of the copy's own.
  const std::error_code& Code() const { return code_; }
  /// A clause without a final full stop.
  const char* what() const noexcept override { return why_.c_str(); }

 private:
  At at_;
  std::error_code code_;
  std::string why_;
};

enum class UnreadableAnswer { Keep, LeaveOut, Cancel };

/// What happens to a copy while it runs, on the calling thread.
class CopyWatcher {
 public:
  virtual ~CopyWatcher() = default;
  /// Bytes done and in all; false stops the copy.
  virtual bool OnProgress(std::uint64_t done, std::uint64_t total) = 0;
  /// The first place of a file that cannot be read, after all retries.
  virtual UnreadableAnswer OnUnreadable(std::uint64_t offset, const std::error_code& code) = 0;
};

struct ByteRange {
  std::uint64_t offset = 0, length = 0;
};

struct FilledFile {
  enum class End { Filled, LeftOut, Stopped };
  End end = End::Stopped;
  std::unique_ptr<NewFile> file =
      {};  ///< Filled: everything is written, with the source's times, and nothing is flushed
  std::uint64_t size = 0;
  std::vector<ByteRange> unreadable = {};  ///< in order; zeros in the file
};

/// How often a copy is tried when the source changes while it is read.
inline constexpr int kCopyAttempts = 3;

/// Throws CopyFault. A file of which nothing can be read is left out whatever the answer was.
FilledFile FillFromSource(const CopyEnds& ends, CopyIo& io, CopyWatcher& watcher);

}  // namespace quillbox
