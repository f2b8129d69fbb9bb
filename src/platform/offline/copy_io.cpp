#include "platform/offline/copy_io.h"

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>

namespace quillbox {

std::unique_ptr<NewFile> CopyIo::Create(const HostPlace& target) {
  return std::make_unique<NewFile>(target);
}

std::size_t CopyIo::Read(int from, std::uint64_t offset, std::span<char> buffer) {
  for (;;) {
    const ssize_t got = pread(from, buffer.data(), buffer.size(), static_cast<off_t>(offset));
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EINTR) ThrowErrno(errno);
  }
}

std::size_t CopyIo::CopyInKernel(int from, NewFile& to, FilePart part) {
  auto position = static_cast<off_t>(part.offset);
  const ssize_t copied = copy_file_range(from, &position, to.Fd(), nullptr, part.size, 0);
  if (copied < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) ThrowErrno(errno);
  return copied > 0 ? static_cast<std::size_t>(copied) : 0;
}

void CopyIo::Write(NewFile& to, std::string_view bytes) {
  to.Write(bytes);
}

void CopyIo::Flush(NewFile& file) {
  file.Flush();
}

}  // namespace quillbox
