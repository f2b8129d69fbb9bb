// Copies one file of the host: whole or not at all, and only what the source held at one moment.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/offline/host_place.h"

namespace quillbox {

/// A file of a copy, and how the person knows it.
struct CopySide {
  HostPlace file;
  std::string shownAs;  ///< stands in errors
};

/// Bytes done and in all; false stops the copy.
using CopyProgress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

/// How often a copy is begun when the source changes while it is read.
inline constexpr int kCopyAttempts = 3;

/// Copies `source` to `target`, replacing it; the source's times are kept. True when the target is the copy. False when
/// `progress` stopped it. Throws Error. In both of these cases the target is as it was and nothing else is left.
bool CopyWholeFile(const CopySide& source, const CopySide& target, const CopyProgress& progress);

}  // namespace quillbox
