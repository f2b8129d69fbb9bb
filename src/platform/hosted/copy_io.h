// SPDX-License-Identifier: GPL-3.0-or-later
// The host's calls of a copy, behind an interface so that tests can make them fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "host/host_file.h"
#include "host/new_file.h"
#include "platform/hosted/host_place.h"

namespace quillbox {

/// Every call throws std::system_error when it fails, unless it says otherwise.
class CopyIo {
 public:
  virtual ~CopyIo() = default;
  virtual std::unique_ptr<NewFile> Create(const HostPlace& target);
  /// Reads from `offset`, at most as much as `buffer` holds; the bytes read, 0 at the file's end.
  virtual std::size_t Read(const HostFile& from, std::uint64_t offset, std::span<char> buffer);
  /// Appends `part`, or its beginning, without bringing it here; the bytes copied. 0 when the kernel cannot
  /// copy between these files, or cannot read there: Read then reports the reason.
  virtual std::size_t CopyInKernel(const HostFile& from, NewFile& to, FilePart part);
  virtual void Write(NewFile& to, std::string_view bytes);
  /// Flushes the file to the disk. Called on another thread than the rest.
  virtual void Flush(NewFile& file);
};

}  // namespace quillbox
