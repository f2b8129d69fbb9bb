// SPDX-License-Identifier: GPL-3.0-or-later
// An open file of the host that is read. Failures are std::system_error; callers know the name that a person would
// recognise, and ReasonOf has the words.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "host/entry.h"
#include "host/host_handle.h"
#include "host/host_path.h"

namespace quillbox {

class HostFile {
 public:
  /// Opens a file, device or pipe, links followed; never waits for a pipe's other end.
  static HostFile Open(const HostPath& path);
  /// A handle that is open for reading, under its entry's name.
  HostFile(HostHandle handle, std::string name) : handle_(std::move(handle)), name_(std::move(name)) {}

  const HostHandle& Handle() const { return handle_; }
  /// Of its entry, when it was opened.
  const std::string& Name() const { return name_; }
  EntryInfo Info() const;

  /// Fills `buffer`, whole unless the file ends first; the bytes read.
  std::size_t Read(std::span<char> buffer) const;
  /// The next Read() starts at `offset` bytes. A pipe cannot.
  void GoTo(std::uint64_t offset) const;
  /// As Read, from `offset` bytes on. Where Read() goes on is undefined afterwards.
  std::size_t ReadAt(std::uint64_t offset, std::span<char> buffer) const;
  /// The same in one call of the system, which may do a part of it; 0 at the file's end.
  std::size_t ReadOnceAt(std::uint64_t offset, std::span<char> buffer) const;
  /// Reads no more ahead of what is asked for: on a damaged disk that means more bad places.
  void StopReadingAhead() const;
  /// All of it from the start. A folder is refused (is_a_directory).
  std::string ReadWhole() const;

 private:
  HostHandle handle_;
  std::string name_;
};

}  // namespace quillbox
