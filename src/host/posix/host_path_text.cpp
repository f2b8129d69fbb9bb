// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "host/host_path.h"

namespace quillbox {

HostPath::HostPath(std::string_view text) : isAbsolute_(text.starts_with('/')) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('/'), text.size());
    const std::string_view name = text.substr(0, end);
    if (!name.empty() && name != ".") names_.emplace_back(name);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

HostPath HostPath::FromStandard(const std::filesystem::path& path) {
  return HostPath(std::string_view(path.native()));
}

std::string HostPath::Text() const {
  std::string text = IsRoot() ? "/" : "";
  for (const std::string& name : names_) {
    if (isAbsolute_ || !text.empty()) text += '/';
    text += name;
  }
  return text;
}

bool IsSameHostName(std::string_view a, std::string_view b) {
  return a == b;
}

std::filesystem::path NativePath(const HostPath& path) {
  return path.Empty() ? "." : path.Text();
}

}  // namespace quillbox
