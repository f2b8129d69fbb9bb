// SPDX-License-Identifier: GPL-3.0-or-later
// Opens what is beneath an open folder without following any link on the way: this call is what
// guarantees that nothing on a disk leads out of it.
#pragma once

#include <string>

#include "host/host_handle.h"
#include "host/host_path.h"

namespace quillbox {

/// Opens `names` (relative, without ".."; empty for the folder itself) beneath the folder `root`, with `flags`
/// as for open. None with errno when it fails: ELOOP for a link anywhere in `names`, the last name included.
HostHandle OpenBeneath(const HostHandle& root, const HostPath& names, int flags);

/// The same for one name in the folder.
HostHandle OpenEntry(int folder, const std::string& name, int flags);

/// False makes OpenBeneath go name by name, as it does where the kernel lacks openat2 or a sandbox forbids it.
void UseOpenat2(bool use);

}  // namespace quillbox
