// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/folder_sweep.h"

#include "platform/hosted/host_open.h"

namespace quillbox {

void FolderSweep::Sweep(const HostPlace& folder) {
  if (swept_.insert(folder.Path()).second) RemoveAbandonedFilesIn(folder);
}

}  // namespace quillbox
