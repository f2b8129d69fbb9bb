// SPDX-License-Identifier: GPL-3.0-or-later
// Questions about paths of the host, and the few changes that are made by path. Links are followed.
#pragma once

#include <optional>
#include <string>
#include <system_error>

#include "host/entry.h"
#include "host/host_path.h"

namespace quillbox {

/// The path as seen from the current folder, with each ".." taken out by the names alone.
HostPath Absolute(const HostPath& path);

/// Without links. Fails where nothing is there.
struct RealPath {
  HostPath path;
  std::error_code fault;
};
RealPath RealPathOf(const HostPath& path);
/// Without links as far as it exists; with a fault where that cannot be found out.
RealPath RealPathAsFarAsThere(const HostPath& path);

/// What is there; with a fault when nothing is.
struct PathInfo {
  std::optional<EntryInfo> info;
  std::error_code fault;
};
PathInfo InfoOf(const HostPath& path, Links links = Links::Follow);
bool Exists(const HostPath& path);
bool IsFolder(const HostPath& path);
/// True for a disk or a part of one, seen as a file.
bool IsDiskDevice(const HostPath& path);
/// True when both are there and are one.
bool IsSameEntry(const HostPath& a, const HostPath& b);

/// Gives `from` the name `to`. Replaces nothing but a file.
std::error_code Move(const HostPath& from, const HostPath& to);

/// The folder of the program that is running.
HostPath ProgramFolder();
/// Where the system wants temporary files.
HostPath TemporaryFolder();
/// Makes a new folder in `parent`, open to the user alone, called `beginning` and six random letters. Throws
/// std::system_error.
HostPath MakeNewFolder(const HostPath& parent, const std::string& beginning);

/// The places where the system shows itself as files: nothing is kept there.
bool IsSystemsOwn(const HostPath& path);

}  // namespace quillbox
