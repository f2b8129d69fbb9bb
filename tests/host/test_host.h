// What these tests can have on one host and not on another. What wine lacks is in its functions for Windows, and
// nowhere else.
#pragma once

#include <cstddef>

#include "host/host_path.h"

namespace quillbox {

/// Makes a link to a folder; false where the system lets nobody, or not this user.
bool MakeLink(const HostPath& link, const HostPath& target);

/// How long a path can be that names are made in one by one, in bytes.
std::size_t LongestPath();

}  // namespace quillbox
