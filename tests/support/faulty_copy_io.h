// SPDX-License-Identifier: GPL-3.0-or-later
// The calls of copies on disks with faults: places that cannot be read, disks that are full, flushes that fail.
#pragma once

#include <cerrno>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/hosted/copy_io.h"

namespace quillbox {

struct FaultyCopyIo : CopyIo {
  struct Place {
    std::uint64_t offset, length;
  };
  /// Places that cannot be read, by the file's name.
  std::map<std::string, std::vector<Place>> unreadable;
  int createError = 0;           ///< an errno for every file that is made
  int writeError = 0;            ///< an errno for every write
  std::function<int()> onWrite;  ///< the errno of a write, or 0
  /// The errno of the flush of a file of that size, or 0; called on the thread that flushes.
  std::function<int(std::uint64_t size)> onFlush;

  std::unique_ptr<NewFile> Create(const HostPlace& target) override {
    if (createError != 0) ThrowErrno(createError);
    return CopyIo::Create(target);
  }
  /// A read that touches a bad place gives nothing at all, as it does below a page's size.
  std::size_t Read(const HostFile& from, std::uint64_t offset, std::span<char> buffer) override {
    for (const Place& place : unreadable[from.Name()]) {
      if (offset < place.offset + place.length && place.offset < offset + buffer.size()) ThrowErrno(EIO);
    }
    return CopyIo::Read(from, offset, buffer);
  }
  std::size_t CopyInKernel(const HostFile& /*from*/, NewFile& /*to*/, FilePart /*part*/) override { return 0; }
  void Write(NewFile& to, std::string_view bytes) override {
    const int code = onWrite ? onWrite() : writeError;
    if (code != 0) ThrowErrno(code);
    CopyIo::Write(to, bytes);
  }
  void Flush(NewFile& file) override {
    const int code = onFlush ? onFlush(file.Info().size) : 0;
    if (code != 0) ThrowErrno(code);
    CopyIo::Flush(file);
  }
};

}  // namespace quillbox
