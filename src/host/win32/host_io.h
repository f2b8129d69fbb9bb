// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing open handles to the last byte. Failures are std::system_error.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "host/host_handle.h"

namespace quillbox {

/// One call of the system: reads from `offset` bytes on, or from the handle's own position, what there is; 0 at the end
/// of a file or pipe.
std::size_t ReadOnce(const HostHandle& file, std::optional<std::uint64_t> offset, std::span<char> buffer);
/// Fills `buffer`, whole unless the file ends first; the bytes read.
std::size_t ReadUpTo(const HostHandle& file, std::span<char> buffer);
std::size_t ReadUpToAt(const HostHandle& file, std::uint64_t offset, std::span<char> buffer);

enum class WriteAt { Position, End };
/// Writes all of `bytes`, at the handle's own position or at the file's end.
void WriteAll(const HostHandle& file, std::string_view bytes, WriteAt at);

}  // namespace quillbox
