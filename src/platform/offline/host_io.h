// Reading and writing open files of the host to the last byte: calls that are interrupted or do a part of the work are
// made again. Failures are std::system_error.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace quillbox {

/// Fills `buffer`, whole unless the file ends first; the bytes read.
std::size_t ReadUpTo(int fd, std::span<char> buffer);
/// The same from `offset` bytes on, wherever the file's own position is.
std::size_t ReadUpToAt(int fd, std::uint64_t offset, std::span<char> buffer);
/// Writes all of `bytes`.
void WriteAll(int fd, std::string_view bytes);

}  // namespace quillbox
