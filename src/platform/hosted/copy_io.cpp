// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/copy_io.h"

#include "platform/hosted/host_open.h"

namespace quillbox {

std::unique_ptr<NewFile> CopyIo::Create(const HostPlace& target) {
  return StartNewFile(target);
}

std::size_t CopyIo::Read(const HostFile& from, std::uint64_t offset, std::span<char> buffer) {
  return from.ReadOnceAt(offset, buffer);
}

std::size_t CopyIo::CopyInKernel(const HostFile& from, NewFile& to, FilePart part) {
  return to.Append(from, part);
}

void CopyIo::Write(NewFile& to, std::string_view bytes) {
  to.Write(bytes);
}

void CopyIo::Flush(NewFile& file) {
  file.Flush();
}

}  // namespace quillbox
