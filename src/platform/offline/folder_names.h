// The names that are stored in a folder of the host, through its descriptor.
#pragma once

#include <functional>

namespace quillbox {

bool IsDots(const char* name);

/// Calls `see` with each name in the open folder (any descriptor of it) but "." and "..", in the order in which the
/// file system has them, until it returns true. False with errno when the folder cannot be read.
bool EachName(int folder, const std::function<bool(const char* name)>& see);

}  // namespace quillbox
