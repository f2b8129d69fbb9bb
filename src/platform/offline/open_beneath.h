// Opens what is beneath an open folder without following any link on the way: this call is what
// guarantees that nothing on a disk leads out of it.
#pragma once

#include <filesystem>

#include "platform/offline/host_fd.h"

namespace quillbox {

/// Opens `names` (relative, without "."  and ".."; empty for the folder itself) beneath the folder `root`, with `flags`
/// as for open. None with errno when it fails: ELOOP for a link anywhere in `names`, the last name included.
HostFd OpenBeneath(int root, const std::filesystem::path& names, int flags);

/// False makes OpenBeneath go name by name, as it does where the kernel lacks openat2 or a sandbox forbids it.
void UseOpenat2(bool use);

}  // namespace quillbox
