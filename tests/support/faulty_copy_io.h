// The calls of copies on disks with faults: places that cannot be read, disks that are full, flushes that fail.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/offline/copy_io.h"

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
  std::size_t Read(int from, std::uint64_t offset, std::span<char> buffer) override {
    const std::string name = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(from)).filename();
    for (const Place& place : unreadable[name]) {
      if (offset < place.offset + place.length && place.offset < offset + buffer.size()) ThrowErrno(EIO);
    }
    return CopyIo::Read(from, offset, buffer);
  }
  std::size_t CopyInKernel(int /*from*/, NewFile& /*to*/, FilePart /*part*/) override { return 0; }
  void Write(NewFile& to, std::string_view bytes) override {
    const int code = onWrite ? onWrite() : writeError;
    if (code != 0) ThrowErrno(code);
    CopyIo::Write(to, bytes);
  }
  void Flush(NewFile& file) override {
    struct stat info = {};
    if (fstat(file.Fd(), &info) != 0) ThrowErrno(errno);
    const int code = onFlush ? onFlush(static_cast<std::uint64_t>(info.st_size)) : 0;
    if (code != 0) ThrowErrno(code);
    CopyIo::Flush(file);
  }
};

}  // namespace quillbox
