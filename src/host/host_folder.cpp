// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_folder.h"

namespace quillbox {

bool HostFolder::EachName(const std::function<bool(const std::string& name)>& see) const try {
  // The folder may be open for work on its entries only, and lists once.
  const HostFolder own = OpenAgain();
  std::vector<ListedEntry> entries;
  while (own.ListSome(entries)) {
    for (const ListedEntry& entry : entries) {
      if (see(entry.name)) return true;
    }
  }
  return true;
} catch (const std::system_error&) {
  return false;
}

}  // namespace quillbox
