#include "platform/offline/folder_sweep.h"

#include "platform/offline/host_open.h"

namespace quillbox {

void FolderSweep::Sweep(const HostPlace& folder) {
  if (swept_.insert(folder.Path()).second) RemoveAbandonedFilesIn(folder);
}

}  // namespace quillbox
