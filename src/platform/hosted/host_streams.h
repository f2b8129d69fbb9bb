// SPDX-License-Identifier: GPL-3.0-or-later
// Files of the host as the platform's readers and writers: piece by piece; errors name the file as the user knows it.
#pragma once

#include <memory>
#include <string>

#include "platform/file_system.h"
#include "platform/hosted/host_place.h"

namespace quillbox {

/// For the errors: what was being done.
inline constexpr const char* kReading = "reading a file";
inline constexpr const char* kWriting = "writing a file";

/// `name` is what errors call the file. Throws Error.
std::unique_ptr<FileReader> OpenHostFile(const HostPlace& file, std::string name);
/// The file is made whole or not at all; a device or pipe, which only the host's own drive has, is written to
/// directly. Throws Error.
std::unique_ptr<FileWriter> StartHostFile(const HostPlace& file, std::string name);
/// `name` is what errors call the folder. Throws Error.
std::unique_ptr<FolderWriter> StartHostFolder(const HostPlace& folder, std::string name);

}  // namespace quillbox
