// SPDX-License-Identifier: GPL-3.0-or-later
// The disks that the program had open last, for the start window: a small file in the state folder.
#pragma once

#include <cstdint>
#include <vector>

#include "app/options.h"

namespace quillbox {

struct KnownDisk {
  DiskChoice disk;
  std::int64_t opened = 0;  ///< seconds since 1970 UTC; 0 when it is not known
  bool operator==(const KnownDisk&) const = default;
};

/// The last one first. Lines that are not understood are left out.
std::vector<KnownDisk> LoadDisks(const HostPath& stateFolder);
/// Puts a disk on top of the list, in place of an earlier entry for that folder and profile. Throws Error; a failure is
/// not a reason to stop.
void RememberDisk(const HostPath& stateFolder, const KnownDisk& disk);

}  // namespace quillbox
