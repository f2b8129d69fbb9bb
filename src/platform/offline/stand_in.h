// SPDX-License-Identifier: GPL-3.0-or-later
// For a disk whose registry cannot be opened: an empty registry of the program's own takes its place, so that the disk
// can be searched for mail files all the same.
#pragma once

#include <map>

#include "platform/offline/windows_disk.h"
#include "registry/hive.h"

namespace quillbox {

/// `folder` as C:\ of a Windows, as far as one is found there: any folder will do. Its machine hives are left out.
/// Throws Error when it is not a folder.
WindowsDisk FindDiskToSearch(const HostPath& folder, const std::map<char, HostPath>& drives);

/// A profile whose hive is below `stateFolder`, or in a temporary folder where nothing can be kept there. It has the
/// key of the identities and nothing else; what is stored in it is there the next time. Throws Error.
ProfileFolder MakeStandIn(const WindowsDisk& disk, const HostPath& stateFolder, FileTime now);

}  // namespace quillbox
