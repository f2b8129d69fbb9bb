// SPDX-License-Identifier: GPL-3.0-or-later
// Small questions to the file system that several commands ask.
#pragma once

#include <string>
#include <vector>

#include "platform/file_system.h"

namespace quillbox {

/// True when the folder exists: when listing it, folders included, yields a first name.
bool DirExists(FileSystem& files, const WinPath& path);

/// Why DirExists does not find a folder, to follow the folder's name: "does not exist", or why it is refused.
std::string WhyNoFolder(FileSystem& files, const WinPath& path);

/// The names of the files that match a pattern (folder plus wildcard), in the file system's order; folders, hidden and
/// system files are left out. One empty text when nothing matches.
std::vector<std::string> FileList(FileSystem& files, const WinPath& pattern);

}  // namespace quillbox
