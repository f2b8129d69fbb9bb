// SPDX-License-Identifier: GPL-3.0-or-later
// Recognises the images of disks, so that someone who chooses one instead of a folder learns how to mount it.
#pragma once

#include <optional>
#include <string>

#include "host/host_path.h"

namespace quillbox {

struct MountAdvice {
  std::string what;     ///< "the image of a disk (a VMware disk)"
  std::string command;  ///< one line for a shell, which mounts it without writing to it
  std::string where;    ///< what to choose then: "/mnt"

  /// All of it as a clause without a full stop.
  std::string Clause() const;
};

/// What `file`, an ordinary file or a disk's device, is by its content and how it is mounted; nothing when it is not an
/// image that is known here, and when it cannot be read. Sources: the boot sectors of NTFS, FAT and exFAT, the
/// partition tables of the PC (its extended partitions included) and of UEFI, ISO 9660, and the published headers of
/// the images of virtual machines and of evidence files.
std::optional<MountAdvice> AdviceOnMounting(const HostPath& file);

}  // namespace quillbox
