// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_names.h"

namespace quillbox {

std::string WindowsName(std::string_view hostName) {
  return std::string(hostName);
}

std::string HostName(std::string_view windowsName) {
  return std::string(windowsName);
}

bool LeavesItsFolder(std::string_view hostName) {
  constexpr std::string_view kLeading("\\/:\0", 4);  // after a colon comes another stream of the same file
  return hostName.empty() || hostName == "." || hostName == ".." ||
         hostName.find_first_of(kLeading) != std::string_view::npos;
}

}  // namespace quillbox
