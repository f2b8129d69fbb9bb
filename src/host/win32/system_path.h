// SPDX-License-Identifier: GPL-3.0-or-later
// Paths in the form that the system is given: "\\?\E:\Users\Ann", which is taken as it is, whatever its length and
// whatever its names mean elsewhere ("NUL", a full stop at the end).
#pragma once

#include <string>

#include "host/host_path.h"

namespace quillbox {

/// A relative path as seen from the current folder; each ".." is taken out by the names alone, since that form keeps
/// them.
std::wstring SystemPath(const HostPath& path);
/// True for a SystemPath below no drive, share or device: nothing is there, and the system refuses to make anything.
bool IsNowhere(const std::wstring& systemPath);
/// The reverse, for what the system answers.
HostPath PathOfSystem(std::wstring_view text);

HostPath CurrentFolder();

/// Folders that only this program shows: the root, which holds the drives, and those above network shares.
bool IsVirtualFolder(const HostPath& path);

/// True for a disk, pipe or other device: "\\.\PhysicalDrive1".
bool IsDevice(const HostPath& path);

}  // namespace quillbox
