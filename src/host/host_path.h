// SPDX-License-Identifier: GPL-3.0-or-later
// A path on the machine that the program runs on. It holds UTF-8 on every host, and names instead of separators, so
// that nobody above takes one apart by its text. On POSIX the bytes of a name are kept whatever they are.
#pragma once

#include <compare>
#include <concepts>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillbox {

class HostPath {
 public:
  HostPath() = default;
  /// A path as the host's people write it: absolute or relative. Empty and "." names are left out, ".." are kept. On
  /// Windows both slashes separate, "E:" is the drive's root, and the forms with "\\?\" are taken as well.
  explicit HostPath(std::string_view text);
  /// The standard library's paths are no other thing; what could be made into one is not meant.
  template <std::same_as<std::filesystem::path> StandardPath>
  HostPath(const StandardPath& path) : HostPath(FromStandard(path)) {}  // NOLINT: see above

  /// What everything on the host is below: "/". On Windows, which has no such folder, it is one that holds the drives
  /// by their letters ("E") and network shares as UNC\server\share; its text is "\".
  static HostPath Root();

  /// As the host's people write it; empty for no path.
  std::string Text() const;
  /// The names from the root, or from where a relative path begins.
  const std::vector<std::string>& Names() const { return names_; }

  bool Empty() const { return !isAbsolute_ && names_.empty(); }
  bool IsAbsolute() const { return isAbsolute_; }
  bool IsRoot() const { return isAbsolute_ && names_.empty(); }
  /// True where there is a name that can be taken off.
  bool HasName() const { return !names_.empty(); }
  /// The last name; empty when there is none.
  std::string Name() const { return names_.empty() ? std::string() : names_.back(); }
  /// Without the last name. The root's is the root.
  HostPath Parent() const;
  /// One name more, which is not taken apart.
  HostPath Join(std::string_view name) const;
  /// Below this, whatever `below` is relative to.
  HostPath Join(const HostPath& below) const;
  /// The relative path `below`, taken apart as the host's people write it; an absolute one is itself.
  HostPath operator/(std::string_view below) const;

  /// With each ".." and the name before it taken out, by their names alone.
  HostPath Normal() const;
  /// The part below `folder`, or nothing when it is not inside it. Compares names only, as the host does.
  std::optional<HostPath> Below(const HostPath& folder) const;
  /// The way from `folder` to this, up where it must be, by their names alone.
  HostPath RelativeTo(const HostPath& folder) const;

  friend bool operator==(const HostPath& a, const HostPath& b) = default;
  friend auto operator<=>(const HostPath& a, const HostPath& b) = default;

 private:
  static HostPath FromStandard(const std::filesystem::path& path);
  HostPath(bool isAbsolute, std::vector<std::string> names) : isAbsolute_(isAbsolute), names_(std::move(names)) {}

  bool isAbsolute_ = false;
  std::vector<std::string> names_;
};

/// True when the host takes two names for one.
bool IsSameHostName(std::string_view a, std::string_view b);

/// For the standard library's functions. A path longer than the host's usual limit is in the form that has none.
std::filesystem::path NativePath(const HostPath& path);

}  // namespace quillbox
