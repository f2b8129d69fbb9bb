// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_path.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quillbox {

namespace {

constexpr std::string_view kUp = "..";

/// How many names at the beginning are the same.
std::size_t CommonNames(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  const auto [end, ignored] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), IsSameHostName);
  return static_cast<std::size_t>(std::distance(a.begin(), end));
}

}  // namespace

HostPath HostPath::Root() {
  return {true, {}};
}

HostPath HostPath::Parent() const {
  HostPath parent = *this;
  if (!parent.names_.empty()) parent.names_.pop_back();
  return parent;
}

HostPath HostPath::Join(std::string_view name) const {
  HostPath longer = *this;
  longer.names_.emplace_back(name);
  return longer;
}

HostPath HostPath::Join(const HostPath& below) const {
  HostPath longer = *this;
  longer.names_.insert(longer.names_.end(), below.names_.begin(), below.names_.end());
  return longer;
}

HostPath HostPath::operator/(std::string_view below) const {
  const HostPath path(below);
  return path.isAbsolute_ ? path : Join(path);
}

HostPath HostPath::Normal() const {
  HostPath normal(isAbsolute_, {});
  for (const std::string& name : names_) {
    const bool goesUp = name == kUp;
    if (goesUp && !normal.names_.empty() && normal.names_.back() != kUp) {
      normal.names_.pop_back();
    } else if (!goesUp || !isAbsolute_) {
      normal.names_.push_back(name);
    }
  }
  return normal;
}

std::optional<HostPath> HostPath::Below(const HostPath& folder) const {
  const std::size_t common = CommonNames(names_, folder.names_);
  if (isAbsolute_ != folder.isAbsolute_ || common < folder.names_.size()) return std::nullopt;
  return HostPath(false, {names_.begin() + static_cast<std::ptrdiff_t>(common), names_.end()});
}

HostPath HostPath::RelativeTo(const HostPath& folder) const {
  const std::size_t common = CommonNames(names_, folder.names_);
  HostPath way(false, std::vector<std::string>(folder.names_.size() - common, std::string(kUp)));
  way.names_.insert(way.names_.end(), names_.begin() + static_cast<std::ptrdiff_t>(common), names_.end());
  return way;
}

}  // namespace quillbox
