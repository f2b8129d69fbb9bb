// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing open descriptors to the last byte: calls that are interrupted or do a part of the work are made
// again. Failures are std::system_error.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "host/host_handle.h"

namespace quillbox {

/// Fills `buffer`, whole unless the file ends first; the bytes read.
std::size_t ReadUpTo(const HostHandle& file, std::span<char> buffer);
/// The same from `offset` bytes on, wherever the file's own position is.
std::size_t ReadUpToAt(const HostHandle& file, std::uint64_t offset, std::span<char> buffer);
/// Writes all of `bytes`.
void WriteAll(const HostHandle& file, std::string_view bytes);

}  // namespace quillbox
