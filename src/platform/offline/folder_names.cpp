#include "platform/offline/folder_names.h"

#include <dirent.h>
#include <fcntl.h>

#include <memory>

#include "platform/offline/host_fd.h"

namespace quillbox {

bool IsDots(const char* name) {
  return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

bool EachName(int folder, const std::function<bool(const char* name)>& see) {
  // A descriptor of its own: the folder's may be good for opening entries only, and has a position of its own.
  HostFd own(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const std::unique_ptr<DIR, int (*)(DIR*)> dir(own ? fdopendir(own.Get()) : nullptr, closedir);
  if (!dir) return false;
  own.Release();
  while (const dirent* entry = readdir(dir.get())) {
    if (!IsDots(entry->d_name) && see(entry->d_name)) break;
  }
  return true;
}

}  // namespace quillbox
