// SPDX-License-Identifier: GPL-3.0-or-later
// A log: one file that several programs append to, and standard error.
#pragma once

#include <string>

#include "host/host_path.h"

namespace quillbox {

/// Appends to the file, made for the user alone when missing, in one call, so that lines of several programs do not
/// mix. What does not fit on a full disk is lost.
void AppendToFile(const HostPath& file, const std::string& line);
void WriteToStandardError(const std::string& line);

}  // namespace quillbox
