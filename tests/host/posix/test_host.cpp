// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/test_host.h"

#include <filesystem>

namespace quillbox {

bool MakeLink(const HostPath& link, const HostPath& target) {
  std::filesystem::create_directory_symlink(NativePath(target), NativePath(link));
  return true;
}

std::size_t LongestPath() {
  return 6000;
}

}  // namespace quillbox
