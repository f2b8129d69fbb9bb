// SPDX-License-Identifier: GPL-3.0-or-later
// What a program that was started writes to its standard error.
#pragma once

#include <string>

#include "host/host_file.h"

namespace quillbox {

/// Everything that comes out of a pipe, until it is closed, of which the first part is kept.
std::string ErrorsFrom(const HostFile& pipe);

}  // namespace quillbox
